// The device of the current registration run: while a run reads marks
// through the scanner application, job queries and the scanner bridge look
// at that device's spool instead of the one they were asked about.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kerfline::devconfig {

// The run's device; nothing when no run is on.
std::optional<std::string> registration_run_device();
// Sets (a name) or ends (nothing) the run.
void set_registration_run_device(std::optional<std::string> name);

// Active jobs of the device in the suite's plotman.ini, as the static
// CBaseDeviceSettings::HasActiveJob counts them.
std::int32_t active_jobs_of(const std::string& device_name);

}  // namespace kerfline::devconfig
