// Finding the suite and telling the plot manager to stop.
#include <algorithm>
#include <cstring>

#include "devconfig/registration_run.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/host_hooks.hpp"
#include "platform/paths.hpp"

namespace {

// The most a caller's "full path" buffer is trusted to hold.
constexpr std::size_t kPathRoom = 4096;

}  // namespace

extern "C" {

KERFLINE_API int32_t GetPlotManPath(char* buffer) noexcept {
  if (buffer == nullptr) return 0;
  buffer[0] = '\0';
  kerfline::platform::guarded_void([buffer] {
    const std::string dir = kerfline::platform::home_dir();
    const std::size_t n = std::min(dir.size(), kPathRoom - 1);
    std::memcpy(buffer, dir.data(), n);
    buffer[n] = '\0';
  });
  return 0;
}

KERFLINE_API int32_t IsJobRunning(const char* deviceName) noexcept {
  return kerfline::platform::guarded_as(0, [deviceName] {
    // A registration run watches its own device, whatever the host asks.
    const auto run = kerfline::devconfig::registration_run_device();
    if (run) return kerfline::devconfig::active_jobs_of(*run);
    if (deviceName == nullptr) return 0;
    return kerfline::devconfig::active_jobs_of(deviceName);
  });
}

KERFLINE_API int32_t CancelPlotman(int32_t flag) noexcept {
  if (flag != 0) return 1;
  // The post is not checked.
  kerfline::platform::guarded_void(
      [] { kerfline::platform::host::broadcast("Umsg_StopPlotman", 0, 0, false); });
  return 1;
}

}  // extern "C"
