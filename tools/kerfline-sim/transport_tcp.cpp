// A TCP port: one connection at a time, the next waits in the backlog.
#include <iostream>

#include "platform/stop_signal.hpp"
#include "platform/tcp_socket.hpp"
#include "transports.hpp"

namespace kerfline::sim {

int serve_tcp(Simulator& sim) {
  auto listener = platform::TcpListener::listen(sim.options.bind_address, sim.options.tcp_port);
  if (!listener) {
    std::cerr << "kerfline-sim: " << listener.error().message << "\n";
    return 1;
  }
  if (!announce(std::to_string(listener->port()), sim.options.path_file)) return 1;
  int refused = 0;
  while (!platform::stop_requested()) {
    auto accepted = listener->accept(250);
    if (!accepted) {
      std::cerr << "kerfline-sim: " << accepted.error().message << "\n";
      return 1;
    }
    if (!accepted->has_value()) continue;
    platform::ByteStream connection = std::move(**accepted);
    if (refused < sim.options.refuse) {
      ++refused;
      continue;  // closed at once
    }
    const SessionEnd end = serve_session(sim, connection, connection);
    if (end == SessionEnd::failed) return 1;
    if (end == SessionEnd::stopped || sim.options.once) break;
  }
  return 0;
}

}  // namespace kerfline::sim
