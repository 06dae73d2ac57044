// A line pair (a pseudo-terminal; a named pipe on Windows): the host opens the
// printed device path as a serial port.
#include <iostream>

#include "platform/line_pair.hpp"
#include "transports.hpp"

namespace kerfline::sim {

int serve_pty(Simulator& sim) {
  auto pty = platform::LinePair::open();
  if (!pty) {
    std::cerr << "kerfline-sim: " << pty.error().message << "\n";
    return 1;
  }
  if (!announce(pty->device_path(), sim.options.path_file)) return 1;
  // The simulator holds the device open itself so a host may open and close
  // it any number of times; with --once it lets go once a host has written,
  // so that host's close ends the run.
  auto release = [&] {
    if (sim.options.once) pty->release_device();
  };
  for (;;) {
    const SessionEnd end = serve_session(sim, pty->stream(), pty->stream(), release);
    // A dropped line closes this end: the device disappears for good.
    if (end != SessionEnd::peer_closed || sim.options.once) return end == SessionEnd::failed ? 1 : 0;
  }
}

}  // namespace kerfline::sim
