// On Windows a ByteStream is a socket: pseudo-terminals and FIFOs do not exist
// there, and device handles go through the port interface instead.
#include <chrono>

#include "platform/byte_stream.hpp"
#include "platform/win32/socket_stream_win32.hpp"

namespace kerfline::platform {

struct ByteStream::Impl {
  SOCKET s = INVALID_SOCKET;
  ~Impl() { close_all(); }
  void close_all() {
    if (s != INVALID_SOCKET) ::closesocket(s);
    s = INVALID_SOCKET;
  }
};

int ensure_winsock() {
  static const int rc = [] {
    WSADATA data{};
    return ::WSAStartup(MAKEWORD(2, 2), &data);
  }();
  return rc;
}

ByteStream make_socket_stream(SOCKET s) {
  u_long on = 1;
  ::ioctlsocket(s, FIONBIO, &on);
  auto impl = std::make_unique<ByteStream::Impl>();
  impl->s = s;
  return ByteStream(std::move(impl));
}

ByteStream::ByteStream() = default;
ByteStream::ByteStream(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
ByteStream::ByteStream(ByteStream&&) noexcept = default;
ByteStream& ByteStream::operator=(ByteStream&&) noexcept = default;
ByteStream::~ByteStream() = default;

bool ByteStream::is_open() const { return impl_ && impl_->s != INVALID_SOCKET; }

void ByteStream::close() {
  if (impl_) impl_->close_all();
}

Result<ReadResult> ByteStream::read(char* buffer, std::size_t size, int timeout_ms) {
  if (!is_open()) return ReadResult{0, true};
  if (size == 0) return ReadResult{};
  WSAPOLLFD p{impl_->s, POLLRDNORM, 0};
  const int ready = ::WSAPoll(&p, 1, timeout_ms < 0 ? -1 : timeout_ms);
  if (ready == SOCKET_ERROR) return os_error(::WSAGetLastError(), "poll");
  if (ready == 0) return ReadResult{};
  const int chunk = size > 0x7fffffff ? 0x7fffffff : static_cast<int>(size);
  const int n = ::recv(impl_->s, buffer, chunk, 0);
  if (n > 0) return ReadResult{static_cast<std::size_t>(n), false};
  if (n == 0) return ReadResult{0, true};
  const int err = ::WSAGetLastError();
  if (err == WSAEWOULDBLOCK) return ReadResult{};
  if (err == WSAECONNRESET) return ReadResult{0, true};
  return os_error(err, "recv");
}

Result<std::size_t> ByteStream::write(const char* data, std::size_t size, int timeout_ms) {
  if (!is_open()) return os_error(WSAENOTSOCK, "send");
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeout_ms < 0 ? 0 : timeout_ms);
  std::size_t done = 0;
  while (done < size) {
    const std::size_t left = size - done;
    const int chunk = left > 0x7fffffff ? 0x7fffffff : static_cast<int>(left);
    const int n = ::send(impl_->s, data + done, chunk, 0);
    if (n > 0) {
      done += static_cast<std::size_t>(n);
      continue;
    }
    const int err = ::WSAGetLastError();
    if (err != WSAEWOULDBLOCK) return os_error(err, "send");
    int wait = -1;
    if (timeout_ms >= 0) {
      const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
      if (ms <= 0) break;
      wait = static_cast<int>(ms);
    }
    WSAPOLLFD p{impl_->s, POLLWRNORM, 0};
    if (::WSAPoll(&p, 1, wait) == SOCKET_ERROR) return os_error(::WSAGetLastError(), "poll");
  }
  return done;
}

}  // namespace kerfline::platform
