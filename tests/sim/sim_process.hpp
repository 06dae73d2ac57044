// Runs the built kerfline-sim as a child process and reads the line it
// gives when it is ready (its device path, directory or port) from the
// path file it is asked to write.
#pragma once

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "fixtures/temp_dir.hpp"
#include "platform/process.hpp"

namespace kerfline::test {

// The built simulator: where the build says, else below the test binary
// directory CTest names.
inline std::string sim_program() {
#ifdef KERFLINE_SIM
  return KERFLINE_SIM;
#else
  const char* dir = std::getenv("KERFLINE_TEST_BINARY_DIR");
  return std::string(dir != nullptr ? dir : ".") + "/bin/kerfline-sim";
#endif
}

class SimProcess {
 public:
  explicit SimProcess(const std::vector<std::string>& args) {
    std::string line = quoted(sim_program());
    for (const auto& a : args) line += " " + quoted(a);
    auto child = platform::ChildProcess::spawn(line + " --path-file " + quoted(ready_file()), 0);
    if (child) child_.emplace(std::move(*child));
  }

  // The ready line, waiting at most 10 s and no longer than the simulator runs.
  std::string ready_line() {
    for (int i = 0; i < 1000 && child_; ++i) {
      std::ifstream in(ready_file());
      if (std::string line; std::getline(in, line)) return line;
      if (child_->has_ended()) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return "";
  }

  // Stops it as SIGTERM does; Windows has no such request and ends it.
  void stop() {
    if (child_) child_->terminate();
  }

  // Waits at most timeout_ms for the exit; its code, or -1 while it runs on.
  int wait_exit(int timeout_ms) {
    if (!child_ || !child_->wait_for(static_cast<std::uint32_t>(timeout_ms))) return -1;
    return child_->exit_code().value_or(-1);
  }

 private:
  static std::string quoted(const std::string& s) { return "\"" + s + "\""; }
  [[nodiscard]] std::string ready_file() const { return (dir_.path() / "ready").string(); }
  TempDir dir_;
  std::optional<platform::ChildProcess> child_;
};

}  // namespace kerfline::test
