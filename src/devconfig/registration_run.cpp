#include "devconfig/registration_run.hpp"

#include <mutex>

#include "kerfline/device_settings.hpp"
#include "platform/paths.hpp"

namespace kerfline::devconfig {
namespace {

// Set from the UI thread, read by queries that may come from elsewhere.
std::mutex g_mutex;
std::optional<std::string> g_device;

}  // namespace

std::optional<std::string> registration_run_device() {
  const std::lock_guard lock(g_mutex);
  return g_device;
}

void set_registration_run_device(std::optional<std::string> name) {
  const std::lock_guard lock(g_mutex);
  g_device = std::move(name);
}

std::int32_t active_jobs_of(const std::string& device_name) {
  const std::string ini = platform::home_dir() + "plotman.ini";
  return CBaseDeviceSettings::HasActiveJob(device_name.c_str(), ini.c_str());
}

}  // namespace kerfline::devconfig
