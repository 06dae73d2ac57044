// TCP sockets for both sides of a link: a listener that accepts connections
// and a client that connects by host name or address (IPv4 or IPv6, through
// the system resolver). A connection is a ByteStream. Errors carry the
// system's code; a resolver failure carries the resolver's own (non-errno)
// code and its text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/byte_stream.hpp"
#include "platform/os_error.hpp"

namespace kerfline::platform {

class TcpListener {
 public:
  // Listens on address ("127.0.0.1", "::1", "localhost", a host name) and
  // port; port 0 lets the system pick one (see port()). The first address
  // the resolver gives that can be bound is used. An empty address is every
  // local address: only for servers meant to be reached from elsewhere.
  static Result<TcpListener> listen(const std::string& address, std::uint16_t port, int backlog = 8);

  TcpListener(TcpListener&&) noexcept;
  TcpListener& operator=(TcpListener&&) noexcept;
  ~TcpListener();

  // The port actually listened on.
  [[nodiscard]] std::uint16_t port() const;

  // Waits at most timeout_ms (negative: no limit) for a connection; an empty
  // optional when none came in time or a signal interrupted the wait.
  Result<std::optional<ByteStream>> accept(int timeout_ms);

 private:
  struct Impl;
  explicit TcpListener(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

// Connects to host:port, trying each address the resolver gives in turn, each
// for at most timeout_ms. The error is the last address's failure.
Result<ByteStream> tcp_connect(const std::string& host, std::uint16_t port, int timeout_ms);

}  // namespace kerfline::platform
