// kerfline-sim: a simulated cutting plotter, the project's test and demo device.
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "options.hpp"
#include "platform/stop_signal.hpp"
#include "transports.hpp"

int main(int argc, char** argv) {
  using namespace kerfline::sim;
  std::vector<std::string> args(argv + 1, argv + argc);
  std::string error;
  auto options = parse_options(args, error);
  if (!options) {
    std::cerr << "kerfline-sim: " << error << "\n" << kUsage;
    return 2;
  }
  if (options->help) {
    std::cout << kUsage;
    return 0;
  }
  kerfline::platform::install_stop_signals();
  Simulator sim(*options);
  if (!sim.options.log_file.empty()) {
    sim.log.open(sim.options.log_file, std::ios::binary | std::ios::trunc);
    if (!sim.log) {
      std::cerr << "kerfline-sim: cannot write " << sim.options.log_file << "\n";
      return 1;
    }
  }
  int code = 0;
  switch (sim.options.transport) {
    case Transport::pty:
      code = serve_pty(sim);
      break;
    case Transport::fifo:
      code = serve_fifo(sim);
      break;
    case Transport::tcp:
      code = serve_tcp(sim);
      break;
    case Transport::none:
      break;
  }
  if (!sim.options.svg_file.empty()) {
    std::ofstream svg(sim.options.svg_file, std::ios::binary | std::ios::trunc);
    svg << render_svg(sim.plotter);
    if (!svg) {
      std::cerr << "kerfline-sim: cannot write " << sim.options.svg_file << "\n";
      return 1;
    }
  }
  return code;
}
