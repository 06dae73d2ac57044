// Shared parts of the port-access tests: a pseudo-terminal with a peer on
// its master side, a driver document with chosen variables, settings and
// waits routed to the test, and a count of open descriptors.
#pragma once

#ifndef _WIN32
#  include <fcntl.h>
#  include <poll.h>
#  include <pty.h>
#  include <termios.h>
#  include <unistd.h>
#endif

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "device/port_access.hpp"
#include "driver/drv_item.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"
#include "fixtures/driver_items.hpp"
#include "fixtures/temp_dir.hpp"
#include "platform/paths.hpp"

namespace kerfline::test {

#ifndef _WIN32
inline int open_descriptors() {
  int n = 0;
  for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator("/proc/self/fd")) ++n;
  return n;
}

// A raw pseudo-terminal; the slave side is closed until a test opens its path.
class Pty {
 public:
  Pty() {
    int slave = -1;
    if (::openpty(&master_, &slave, nullptr, nullptr, nullptr) != 0) return;
    termios t{};
    ::tcgetattr(slave, &t);
    ::cfmakeraw(&t);
    ::tcsetattr(slave, TCSANOW, &t);
    path_ = ::ttyname(slave);
    // The peer must notice a stop while the slave side reads nothing.
    ::fcntl(master_, F_SETFL, ::fcntl(master_, F_GETFL) | O_NONBLOCK);
    // Kept open so the master never sees a hang-up between the test's opens.
    keep_slave_ = slave;
  }
  ~Pty() {
    stop();
    if (keep_slave_ >= 0) ::close(keep_slave_);
    if (master_ >= 0) ::close(master_);
  }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] int master() const { return master_; }

  // Reads what arrives until `instruction_end` is seen, then after `delay`
  // writes `answer` (which may be huge) and keeps reading until stopped.
  void serve(char instruction_end, std::chrono::milliseconds delay, std::string answer) {
    peer_ = std::thread([this, instruction_end, delay, answer = std::move(answer)] {
      bool answered = false;
      while (!stop_) {
        pollfd p{master_, POLLIN, 0};
        if (::poll(&p, 1, 20) <= 0) continue;
        char buf[512];
        const ssize_t n = ::read(master_, buf, sizeof buf);
        if (n <= 0) continue;
        received_.append(buf, static_cast<std::size_t>(n));
        if (!answered && received_.find(instruction_end) != std::string::npos) {
          answered = true;
          std::this_thread::sleep_for(delay);
          for (std::size_t at = 0; at < answer.size() && !stop_;) {
            const ssize_t w = ::write(master_, answer.data() + at, answer.size() - at);
            if (w > 0) at += static_cast<std::size_t>(w);
            if (w <= 0) {
              pollfd out{master_, POLLOUT, 0};
              ::poll(&out, 1, 20);
            }
          }
        }
      }
    });
  }
  // The device disappears: the master side is closed.
  void hang_up() {
    stop();
    if (master_ >= 0) ::close(master_);
    master_ = -1;
  }
  // Ends the peer; what it received.
  std::string stop() {
    stop_ = true;
    if (peer_.joinable()) peer_.join();
    return received_;
  }

 private:
  int master_ = -1;
  int keep_slave_ = -1;
  std::string path_;
  std::thread peer_;
  std::atomic<bool> stop_{false};
  std::string received_;
};
#endif

// A driver document held by a VMV6DRV record, with the given variables.
class DriverVars {
 public:
  explicit DriverVars(const std::vector<std::pair<std::string, std::string>>& vars)
      : doc_(std::make_unique<driver::CVm6Drv>()) {
    for (const auto& [name, value] : vars) doc_->Root().AddChild(named(name, value));
    drv_.pDrv = doc_.get();
  }
  VMV6DRV* drv() { return &drv_; }

 private:
  std::unique_ptr<driver::CVm6Drv> doc_;
  VMV6DRV drv_{};
};

// Devices with test settings, waits recorded instead of spent, the link
// state as at load, and a temp suite directory; all undone afterwards.
class DeviceEnv {
 public:
  DeviceEnv() {
    device::reset_link_state();
    platform::set_home_dir(dir.str());
    device::set_settings_reader([this](const std::string& name) {
      const auto it = devices.find(name);
      return it == devices.end() ? device::PortSettings{} : it->second;
    });
    device::set_wait_function([this](std::uint32_t ms) { waits.push_back(ms); });
  }
  ~DeviceEnv() {
    device::set_settings_reader(nullptr);
    device::set_wait_function(nullptr);
    device::reset_link_state();
    platform::set_home_dir("");
  }
  DeviceEnv(const DeviceEnv&) = delete;
  DeviceEnv& operator=(const DeviceEnv&) = delete;

  TempDir dir;
  std::map<std::string, device::PortSettings> devices;
  std::vector<std::uint32_t> waits;
};

}  // namespace kerfline::test
