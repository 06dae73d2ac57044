// A line pair (a pseudo-terminal; a named pipe on Windows): the host opens the
// printed device path as a serial port.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

#include "platform/line_pair.hpp"
#include "transports.hpp"

namespace kerfline::sim {
namespace {

// Written beside and renamed into place, so a reader polling for the file
// never sees half a line.
bool write_path_file(const std::string& file, const std::string& line) {
  const std::string part = file + ".part";
  {
    std::ofstream out(part, std::ios::binary | std::ios::trunc);
    out << line << "\n";
    if (!out.flush()) return false;
  }
  std::error_code ec;
  std::filesystem::rename(part, file, ec);
  return !ec;
}

}  // namespace

int serve_pty(Simulator& sim) {
  auto pty = platform::LinePair::open();
  if (!pty) {
    std::cerr << "kerfline-sim: " << pty.error().message << "\n";
    return 1;
  }
  std::cout << pty->device_path() << std::endl;
  if (!sim.options.path_file.empty() && !write_path_file(sim.options.path_file, pty->device_path())) {
    std::cerr << "kerfline-sim: cannot write " << sim.options.path_file << "\n";
    return 1;
  }
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
