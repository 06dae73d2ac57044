// Shared parts of the port-access tests: a line (a pseudo-terminal; a named
// pipe on Windows) with a peer on its far end, a driver document with chosen
// variables, settings and waits routed to the test, and a count of open
// descriptors (handles on Windows).
#pragma once

#ifdef _WIN32
// kerfline.h has a VARDESC of its own, as OLE has: leave OLE out.
#  define WIN32_LEAN_AND_MEAN
#  include <windows.h>
#endif

#include <atomic>
#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "device/port_access.hpp"
#include "driver/drv_item.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"
#include "fixtures/driver_items.hpp"
#include "fixtures/host_recorder.hpp"
#include "fixtures/temp_dir.hpp"
#include "platform/line_pair.hpp"
#include "platform/paths.hpp"

namespace kerfline::test {

inline int open_descriptors() {
#ifdef _WIN32
  DWORD n = 0;
  GetProcessHandleCount(GetCurrentProcess(), &n);
  return static_cast<int>(n);
#else
  int n = 0;
  for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator("/proc/self/fd")) ++n;
  return n;
#endif
}

// A raw line whose far end a test serves; its device path is what the
// library opens as a port.
class Line {
 public:
  Line() {
    auto pair = platform::LinePair::open();
    if (pair) pair_.emplace(std::move(*pair));
  }
  ~Line() { stop(); }
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  [[nodiscard]] std::string path() const { return pair_ ? pair_->device_path() : ""; }

  // Sends bytes from the device's side.
  bool send(const std::string& bytes) {
    auto w = pair_->stream().write(bytes.data(), bytes.size(), 1000);
    return w.ok() && *w == bytes.size();
  }

  // Reads what arrives until `instruction_end` is seen, then after `delay`
  // writes `answer` (which may be huge) and keeps reading until stopped.
  void serve(char instruction_end = '\0', std::chrono::milliseconds delay = {}, std::string answer = "") {
    peer_ = std::thread([this, instruction_end, delay, answer = std::move(answer)] {
      bool answered = false;
      char buf[512];
      while (!stop_) {
        auto r = pair_->stream().read(buf, sizeof buf, 20);
        if (!r.ok() || r->closed) break;
        received_.append(buf, r->count);
        if (answered || received_.find(instruction_end) == std::string::npos) continue;
        answered = true;
        std::this_thread::sleep_for(delay);
        for (std::size_t at = 0; at < answer.size() && !stop_;) {
          auto w = pair_->stream().write(answer.data() + at, answer.size() - at, 20);
          if (!w.ok()) break;
          at += *w;
        }
      }
    });
  }
  // The device disappears: this end is closed.
  void hang_up() {
    stop();
    pair_.reset();
  }
  // Ends the peer; what it received.
  std::string stop() {
    stop_ = true;
    if (peer_.joinable()) peer_.join();
    return received_;
  }

 private:
  std::optional<platform::LinePair> pair_;
  std::thread peer_;
  std::atomic<bool> stop_{false};
  std::string received_;
};

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
// state as at load, a temp suite directory and a recording host; all undone
// afterwards.
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

  // Opens `device` into error, read and write, for a driver without
  // variables unless one is given.
  std::int32_t open(const char* device, VMV6DRV* drv = nullptr) {
    return device::OpenDevicePort(drv != nullptr ? drv : no_vars.drv(), device, &error, &read, &write);
  }

  TempDir dir;
  HostRecorder host;
  std::map<std::string, device::PortSettings> devices;
  std::vector<std::uint32_t> waits;
  DriverVars no_vars{{}};
  std::int32_t error = 1;
  device::Handle read = platform::port::kInvalidHandle;
  device::Handle write = platform::port::kInvalidHandle;
};

}  // namespace kerfline::test
