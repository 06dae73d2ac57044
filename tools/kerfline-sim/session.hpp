// One connection of the simulated cutter: reads what the host sends, feeds
// the plotter and writes its answers, with the faults the options ask for.
#pragma once

#include <fstream>
#include <functional>
#include <string>

#include "options.hpp"
#include "platform/byte_stream.hpp"
#include "plotter.hpp"

namespace kerfline::sim {

struct Simulator {
  explicit Simulator(Options o) : options(std::move(o)), plotter(options.plotter) {}
  Options options;
  Plotter plotter;
  std::ofstream log;
};

enum class SessionEnd { peer_closed, dropped, stopped, failed };

// Serves until the peer closes, the line is dropped (--drop-after) or a stop
// signal came. on_first_bytes runs once, when the first bytes arrive.
SessionEnd serve_session(Simulator& sim, platform::ByteStream& in, platform::ByteStream& out,
                         const std::function<void()>& on_first_bytes = {});

// Prints the address a peer uses (device path, directory or port) on its own
// line of stdout and, with a path file, writes it there too: beside the file
// and renamed into place, so a reader polling for it never sees half a line.
// False when the file cannot be written.
bool announce(const std::string& line, const std::string& path_file);

// Sleeps ms in steps, returning early (false) when a stop signal came.
bool pause_unless_stopped(int ms);

}  // namespace kerfline::sim
