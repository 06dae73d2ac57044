// The simulated cutter's command line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "plotter.hpp"

namespace kerfline::sim {

enum class Transport { none, pty, fifo, tcp };

struct Options {
  Transport transport = Transport::none;
  std::string fifo_dir;
  std::uint16_t tcp_port = 0;
  std::string bind_address = "127.0.0.1";
  int delay_ms = 0;
  bool silent = false;
  std::optional<std::size_t> drop_after;
  int refuse = 0;
  std::size_t flood_bytes = 0;  // 0: answer normally
  std::string svg_file;
  std::string log_file;
  std::string path_file;  // also receives the printed line (for parents that cannot read stdout)
  bool once = false;
  PlotterConfig plotter;
  bool help = false;
};

// Parses the arguments (without the program name); an error text on failure.
std::optional<Options> parse_options(const std::vector<std::string>& args, std::string& error);

extern const char* const kUsage;

}  // namespace kerfline::sim
