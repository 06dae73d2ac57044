// Finding the suite and telling the plot manager to stop.
#include <algorithm>
#include <cstring>

#include "devconfig/registration_run.hpp"
#include "kerfline/kerfline.h"
#include "platform/host_hooks.hpp"
#include "platform/paths.hpp"

namespace {

// The most a caller's "full path" buffer is trusted to hold.
constexpr std::size_t kPathRoom = 4096;

}  // namespace

extern "C" {

KERFLINE_API int32_t GetPlotManPath(char* buffer) {
  if (buffer == nullptr) return 0;
  try {
    const std::string dir = kerfline::platform::home_dir();
    const std::size_t n = std::min(dir.size(), kPathRoom - 1);
    std::memcpy(buffer, dir.data(), n);
    buffer[n] = '\0';
  } catch (...) {
    buffer[0] = '\0';
  }
  return 0;
}

KERFLINE_API int32_t IsJobRunning(const char* deviceName) {
  try {
    // A registration run watches its own device, whatever the host asks.
    const auto run = kerfline::devconfig::registration_run_device();
    if (run) return kerfline::devconfig::active_jobs_of(*run);
    if (deviceName == nullptr) return 0;
    return kerfline::devconfig::active_jobs_of(deviceName);
  } catch (...) {
    return 0;
  }
}

KERFLINE_API int32_t CancelPlotman(int32_t flag) {
  if (flag != 0) return 1;
  try {
    kerfline::platform::host::broadcast("Umsg_StopPlotman", 0, 0, false);
  } catch (...) {
    // The post is not checked.
  }
  return 1;
}

}  // extern "C"
