// A FIFO pair standing in for USB pipes: the host writes instructions to
// PIPE01 (its out-pipe) and reads answers from PIPE00 (its in-pipe).
#include <filesystem>
#include <iostream>

#include "platform/fifo.hpp"
#include "transports.hpp"

namespace kerfline::sim {

namespace {

constexpr const char* kHostInPipe = "PIPE00";
constexpr const char* kHostOutPipe = "PIPE01";
constexpr int kRefusalMs = 2000;  // one retry interval of a host's pipe open

}  // namespace

int serve_fifo(Simulator& sim) {
  const std::filesystem::path dir(sim.options.fifo_dir);
  std::error_code ec;
  if (!std::filesystem::is_directory(dir, ec)) {
    std::cerr << "kerfline-sim: not a directory: " << dir.string() << "\n";
    return 1;
  }
  const std::string answer_path = (dir / kHostInPipe).string();
  const std::string request_path = (dir / kHostOutPipe).string();
  auto make_pipes = [&] {
    for (const auto& path : {answer_path, request_path}) {
      if (auto r = platform::make_fifo(path); !r) {
        std::cerr << "kerfline-sim: " << r.error().message << "\n";
        return false;
      }
    }
    return true;
  };
  // Refusing opens: the pipes are not there yet, so a host's opens fail.
  if (sim.options.refuse == 0 && !make_pipes()) return 1;
  if (!announce(dir.string(), sim.options.path_file)) return 1;
  if (sim.options.refuse > 0) {
    if (!pause_unless_stopped(kRefusalMs * sim.options.refuse)) return 0;
    if (!make_pipes()) return 1;
  }
  int code = 0;
  for (;;) {
    auto answers = platform::open_fifo_writer(answer_path);
    auto requests = platform::open_fifo_reader(request_path);
    if (!answers || !requests) {
      std::cerr << "kerfline-sim: " << (answers ? requests.error() : answers.error()).message << "\n";
      code = 1;
      break;
    }
    const SessionEnd end = serve_session(sim, *requests, *answers);
    if (end == SessionEnd::failed) code = 1;
    if (end == SessionEnd::stopped || end == SessionEnd::failed || sim.options.once) break;
    // Peer closed or line dropped: both pipes are closed and opened anew.
  }
  std::filesystem::remove(answer_path, ec);
  std::filesystem::remove(request_path, ec);
  return code;
}

}  // namespace kerfline::sim
