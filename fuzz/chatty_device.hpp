// A device on 127.0.0.1 for the socket built-ins: it answers everything it
// is sent with the same bytes and a line end, and says "0" on a line every
// 10 ms, so that a read gets an answer at once instead of waiting out its
// time-out. Runs on its own thread for the life of the process.
#pragma once

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "platform/tcp_socket.hpp"

namespace kerfline::fuzz {

inline std::uint16_t chatty_device_port() {
  static const std::uint16_t port = [] {
    auto listener = platform::TcpListener::listen("127.0.0.1", 0);
    if (!listener) return std::uint16_t{0};
    const std::uint16_t p = listener->port();
    std::thread([l = std::move(*listener)]() mutable {
      std::vector<platform::ByteStream> clients;
      char buf[512];
      for (;;) {
        if (auto c = l.accept(10); c && c->has_value()) clients.push_back(std::move(**c));
        for (auto it = clients.begin(); it != clients.end();) {
          const auto r = it->read(buf, sizeof buf, 0);
          if (!r.ok() || r.value().closed) {
            it = clients.erase(it);
            continue;
          }
          const std::string answer =
              r.value().count > 0 ? std::string(buf, r.value().count) + "\r\n" : "0\r\n";
          (void)it->write(answer.data(), answer.size(), 0);
          ++it;
        }
      }
    }).detach();
    return p;
  }();
  return port;
}

}  // namespace kerfline::fuzz
