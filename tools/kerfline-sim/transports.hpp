// Where the simulated cutter serves: one file per transport. Each prints the
// address a peer uses on its own line of stdout once it is ready, serves
// until told to stop (or, with --once, until the first peer closed), and
// returns the process's exit code.
#pragma once

#include "session.hpp"

namespace kerfline::sim {

int serve_pty(Simulator& sim);
int serve_fifo(Simulator& sim);
int serve_tcp(Simulator& sim);

}  // namespace kerfline::sim
