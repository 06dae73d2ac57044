// A server on 127.0.0.1 that accepts one client and runs a script against
// it on its own thread, for driving the link from the other side.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <thread>

#include "fixtures/read_exactly.hpp"
#include "kerfline/remote_messages.hpp"
#include "platform/tcp_socket.hpp"

namespace kerfline::test {

class LoopbackServer {
 public:
  using Script = std::function<void(platform::ByteStream&)>;

  explicit LoopbackServer(Script script) {
    auto listener = platform::TcpListener::listen("127.0.0.1", 0);
    EXPECT_TRUE(listener) << listener.error().message;
    if (!listener) return;
    port_ = listener->port();
    thread_ = std::thread([l = std::move(*listener), script = std::move(script)]() mutable {
      auto client = l.accept(5000);
      if (!client || !client->has_value()) return;
      script(**client);
    });
  }
  ~LoopbackServer() {
    if (thread_.joinable()) thread_.join();
  }
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }

 private:
  std::uint16_t port_ = 0;
  std::thread thread_;
};

inline void write_all(platform::ByteStream& s, const std::string& bytes) {
  auto w = s.write(bytes.data(), bytes.size(), 5000);
  EXPECT_TRUE(w && *w == bytes.size());
}

// The message as it goes on the wire; Serialize asks for the room first.
inline std::string wire(const CSocketDataObject& m) {
  const int32_t needed = -m.Serialize(nullptr, 0);
  EXPECT_GE(needed, 0);
  std::string out(static_cast<std::size_t>(needed), '\0');
  EXPECT_EQ(m.Serialize(reinterpret_cast<unsigned char*>(out.data()), static_cast<uint32_t>(out.size())),
            needed);
  return out;
}

inline std::string bytes(std::initializer_list<int> list) {
  std::string out;
  for (const int b : list) out.push_back(static_cast<char>(b));
  return out;
}

}  // namespace kerfline::test
