// The reference remote plot manager mode of the simulator (--remote PORT).
#pragma once

#include <string>
#include <vector>

namespace kerfline::sim {

// True when the arguments ask for the remote mode.
bool wants_remote_mode(const std::vector<std::string>& args);
// Serves until stopped (or, with --once, until the first client has gone);
// returns the exit code.
int serve_remote(const std::vector<std::string>& args);

}  // namespace kerfline::sim
