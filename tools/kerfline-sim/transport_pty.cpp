// A pseudo-terminal: the host opens the printed device path as a serial port.
#include <iostream>

#include "platform/pseudo_terminal.hpp"
#include "transports.hpp"

namespace kerfline::sim {

int serve_pty(Simulator& sim) {
  auto pty = platform::PseudoTerminal::open();
  if (!pty) {
    std::cerr << "kerfline-sim: " << pty.error().message << "\n";
    return 1;
  }
  std::cout << pty->device_path() << std::endl;
  // The simulator holds the device open itself so a host may open and close
  // it any number of times; with --once it lets go once a host has written,
  // so that host's close ends the run.
  auto release = [&] {
    if (sim.options.once) pty->release_slave();
  };
  for (;;) {
    const SessionEnd end = serve_session(sim, pty->master(), pty->master(), release);
    // A dropped line closes the master: the device disappears for good.
    if (end != SessionEnd::peer_closed || sim.options.once) return end == SessionEnd::failed ? 1 : 0;
  }
}

}  // namespace kerfline::sim
