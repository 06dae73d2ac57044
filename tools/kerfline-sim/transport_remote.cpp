// --remote PORT: a reference remote plot manager. It answers every message
// of the remote link: a disconnect request (State 1, job 0) with a State
// message before it closes, everything else with an echo, and it writes a
// line per message received to stderr (or --log FILE).
#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/stop_signal.hpp"
#include "platform/tcp_socket.hpp"
#include "remote/link.hpp"
#include "remote/message_json.hpp"
#include "remote_server.hpp"
#include "session.hpp"

namespace kerfline::sim {

namespace {

const char* const kRemoteUsage =
    "usage: kerfline-sim --remote PORT [--bind ADDRESS] [--log FILE] [--path-file FILE] [--once] [--no-ack]\n"
    "                    [--unasked N]\n"
    "A reference remote plot manager for TCP/IP client devices (device type 6).\n"
    "  --remote PORT   TCP port to listen on (0: the system picks one); prints the port\n"
    "  --bind ADDRESS  address to listen on (default 127.0.0.1)\n"
    "  --log FILE      write a line per received message to FILE instead of stderr\n"
    "  --path-file FILE  also write the port to FILE once ready\n"
    "  --once          exit after the first client has gone\n"
    "  --no-ack        answer a disconnect with an Int message instead of a State\n"
    "  --unasked N     send N unasked Msg messages with every answer, after it\n";

struct RemoteOptions {
  std::string bind = "127.0.0.1";
  std::uint16_t port = 0;
  std::string log_file;
  std::string path_file;
  bool once = false;
  bool no_ack = false;
  int unasked = 0;
};

std::optional<RemoteOptions> parse(const std::vector<std::string>& args, std::string& error) {
  RemoteOptions out;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const bool has_value = i + 1 < args.size();
    try {
      if (a == "--remote" && has_value) {
        const unsigned long port = std::stoul(args[++i]);
        if (port > 65535) throw std::out_of_range("port");
        out.port = static_cast<std::uint16_t>(port);
      } else if (a == "--bind" && has_value) {
        out.bind = args[++i];
      } else if (a == "--log" && has_value) {
        out.log_file = args[++i];
      } else if (a == "--path-file" && has_value) {
        out.path_file = args[++i];
      } else if (a == "--unasked" && has_value) {
        out.unasked = std::stoi(args[++i]);
      } else if (a == "--usage") {
        error.clear();
        return std::nullopt;
      } else if (a == "--once") {
        out.once = true;
      } else if (a == "--no-ack") {
        out.no_ack = true;
      } else {
        error = "unknown or incomplete option " + a;
        return std::nullopt;
      }
    } catch (const std::exception&) {
      error = "bad number after " + a;
      return std::nullopt;
    }
  }
  return out;
}

// One client, until it disconnects or the server is told to stop.
void serve_client(const RemoteOptions& options, platform::ByteStream connection, std::ostream& log) {
  remote::Link link;
  link.attach(std::move(connection));
  link.set_receive_timeout(250);
  while (link.connected() && !platform::stop_requested()) {
    remote::ReceiveStatus status{};
    const std::unique_ptr<CSocketDataObject> message = link.receive(&status);
    if (status == remote::ReceiveStatus::TimedOut) continue;
    if (status == remote::ReceiveStatus::UnknownType) {
      log << "received unknown type" << std::endl;
      continue;
    }
    if (!message) break;
    log << "received " << remote::message_json(*message) << std::endl;
    const auto* state = dynamic_cast<const CSocketDataObjectState*>(message.get());
    const bool disconnect = state != nullptr && state->GetState() == 1 && state->GetJobNr() == 0;
    CSocketDataObjectInt refusal;
    std::vector<const CSocketDataObject*> out{disconnect && options.no_ack ? &refusal : message.get()};
    // Unasked news goes out with the answer, so it is there before the
    // client's next request.
    std::vector<CSocketDataObjectMsg> news(
        disconnect ? 0 : static_cast<std::size_t>(std::max(options.unasked, 0)));
    for (std::size_t i = 0; i < news.size(); ++i) {
      news[i].SetMsg(("unasked " + std::to_string(i + 1)).c_str());
      out.push_back(&news[i]);
    }
    link.send(out);
    if (disconnect) break;
  }
  link.release();
}

}  // namespace

bool wants_remote_mode(const std::vector<std::string>& args) {
  for (const std::string& a : args) {
    if (a == "--remote") return true;
  }
  return false;
}

int serve_remote(const std::vector<std::string>& args) {
  std::string error;
  const auto options = parse(args, error);
  if (!options && error.empty()) {
    std::cout << kRemoteUsage;
    return 0;
  }
  if (!options) {
    std::cerr << "kerfline-sim: " << error << "\n" << kRemoteUsage;
    return 2;
  }
  std::ofstream file;
  if (!options->log_file.empty()) {
    file.open(options->log_file, std::ios::binary | std::ios::trunc);
    if (!file) {
      std::cerr << "kerfline-sim: cannot write " << options->log_file << "\n";
      return 1;
    }
  }
  std::ostream& log = options->log_file.empty() ? std::cerr : file;
  auto listener = platform::TcpListener::listen(options->bind, options->port);
  if (!listener) {
    std::cerr << "kerfline-sim: " << listener.error().message << "\n";
    return 1;
  }
  if (!announce(std::to_string(listener->port()), options->path_file)) return 1;
  while (!platform::stop_requested()) {
    auto accepted = listener->accept(250);
    if (!accepted) {
      std::cerr << "kerfline-sim: " << accepted.error().message << "\n";
      return 1;
    }
    if (!accepted->has_value()) continue;
    serve_client(*options, std::move(**accepted), log);
    if (options->once) break;
  }
  return 0;
}

}  // namespace kerfline::sim
