// The scanner application's plug-in, "lumaprobe.dll", kept off the device of
// the current registration run while that device has jobs.
#pragma once

#include <cstdint>

namespace kerfline::registration {

// Active jobs in the spool of the run's device; 0 when no run is on.
std::int32_t run_device_active_jobs();

// Unloads the plug-in and forgets the run (for tests and library unload).
void reset_scanner_bridge();

}  // namespace kerfline::registration
