// On Windows a ByteStream is a socket or an end of a named pipe (the line
// pair's stand-in for a pseudo-terminal); FIFOs do not exist there.
#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/byte_stream.hpp"
#include "platform/win32/pipe_io_win32.hpp"
#include "platform/win32/socket_stream_win32.hpp"

namespace kerfline::platform {

namespace {

using Clock = std::chrono::steady_clock;

// The wait left until deadline for a caller's time-out (negative: none).
DWORD left_ms(int timeout_ms, Clock::time_point deadline) {
  if (timeout_ms < 0) return INFINITE;
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return ms <= 0 ? 0 : static_cast<DWORD>(ms);
}

}  // namespace

struct ByteStream::Impl {
  SOCKET s = INVALID_SOCKET;
  // A pipe end. A server end (with `released`) waits for its client through
  // `connect`, and keeps a second instance of its name listening meanwhile,
  // so a new client can open while the last one's close is not taken yet.
  HANDLE pipe = INVALID_HANDLE_VALUE;
  HANDLE next = INVALID_HANDLE_VALUE;
  std::string name;
  std::shared_ptr<std::atomic<bool>> released;
  win32::UniqueHandle connect_event;
  OVERLAPPED connect{};
  bool connecting = false;
  bool connected = false;
  bool ended = false;

  ~Impl() { close_all(); }
  void close_all() {
    if (s != INVALID_SOCKET) ::closesocket(s);
    s = INVALID_SOCKET;
    if (connecting) {
      DWORD n = 0;
      CancelIoEx(pipe, &connect);
      GetOverlappedResult(pipe, &connect, &n, TRUE);
      connecting = false;
    }
    for (HANDLE* h : {&pipe, &next}) {
      if (*h != INVALID_HANDLE_VALUE) CloseHandle(*h);
      *h = INVALID_HANDLE_VALUE;
    }
  }

  // A server end: 1 once a client is there, 0 when the wait ran out, -1
  // with the error in `error`.
  int accept(DWORD wait, DWORD& error) {
    if (!released || connected) return 1;
    if (!connecting) {
      connect = OVERLAPPED{};
      connect.hEvent = connect_event.get();
      ResetEvent(connect.hEvent);
      if (ConnectNamedPipe(pipe, &connect) == 0) {
        error = GetLastError();
        if (error == ERROR_NO_DATA) {  // a client came and went already
          DisconnectNamedPipe(pipe);
          return 0;
        }
        if (error != ERROR_PIPE_CONNECTED && error != ERROR_IO_PENDING) return -1;
        connecting = error == ERROR_IO_PENDING;
      }
    }
    if (connecting) {
      if (WaitForSingleObject(connect.hEvent, wait) != WAIT_OBJECT_0) return 0;
      connecting = false;
      DWORD n = 0;
      if (GetOverlappedResult(pipe, &connect, &n, FALSE) == 0) {
        DisconnectNamedPipe(pipe);
        return 0;
      }
    }
    connected = true;
    if (next == INVALID_HANDLE_VALUE) next = win32::create_pipe_instance(name, false);
    return 1;
  }

  // The client went away: a server end lets the next one in until released.
  void lost_peer() {
    if (!released || released->load()) {
      ended = true;
      return;
    }
    connected = false;
    if (next == INVALID_HANDLE_VALUE) {
      DisconnectNamedPipe(pipe);
      return;
    }
    CloseHandle(pipe);
    pipe = std::exchange(next, INVALID_HANDLE_VALUE);
  }

  Result<ReadResult> read_pipe(char* buffer, std::size_t size, int timeout_ms) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeout_ms < 0 ? 0 : timeout_ms);
    for (;;) {
      if (ended) return ReadResult{0, true};
      DWORD error = 0;
      const int client = accept(left_ms(timeout_ms, deadline), error);
      if (client < 0) return os_error(static_cast<int>(error), "ConnectNamedPipe");
      if (client == 0) {
        if (left_ms(timeout_ms, deadline) == 0) return ReadResult{};
        continue;
      }
      const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(size, 1U << 20));
      const auto r = win32::pipe_transfer(pipe, false, buffer, chunk, left_ms(timeout_ms, deadline));
      if (r.count > 0) return ReadResult{r.count, false};
      if (r.error == 0 || r.error == ERROR_OPERATION_ABORTED) return ReadResult{};
      if (!win32::peer_gone(r.error)) return os_error(static_cast<int>(r.error), "ReadFile");
      lost_peer();
    }
  }

  Result<std::size_t> write_pipe(const char* data, std::size_t size, int timeout_ms) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeout_ms < 0 ? 0 : timeout_ms);
    std::size_t done = 0;
    while (done < size && !ended) {
      DWORD error = 0;
      const int client = accept(left_ms(timeout_ms, deadline), error);
      if (client < 0) return os_error(static_cast<int>(error), "ConnectNamedPipe");
      if (client == 0) break;
      const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(size - done, 1U << 16));
      // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): WriteFile reads it only
      const auto r = win32::pipe_transfer(pipe, true, const_cast<char*>(data + done), chunk,
                                          left_ms(timeout_ms, deadline));
      done += r.count;
      if (r.error == ERROR_OPERATION_ABORTED) break;
      if (r.error != 0) return os_error(static_cast<int>(r.error), "WriteFile");
    }
    if (ended) return os_error(ERROR_BROKEN_PIPE, "WriteFile");
    return done;
  }
};

namespace win32 {

ByteStream make_pipe_stream(HANDLE pipe, std::string server_name,
                            std::shared_ptr<std::atomic<bool>> released) {
  auto impl = std::make_unique<ByteStream::Impl>();
  impl->pipe = pipe;
  impl->name = std::move(server_name);
  impl->released = std::move(released);
  if (impl->released) impl->connect_event.reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  return ByteStream(std::move(impl));
}

}  // namespace win32

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

bool ByteStream::is_open() const {
  return impl_ && (impl_->s != INVALID_SOCKET || impl_->pipe != INVALID_HANDLE_VALUE);
}

void ByteStream::close() {
  if (impl_) impl_->close_all();
}

Result<ReadResult> ByteStream::read(char* buffer, std::size_t size, int timeout_ms) {
  if (!is_open()) return ReadResult{0, true};
  if (size == 0) return ReadResult{};
  if (impl_->pipe != INVALID_HANDLE_VALUE) return impl_->read_pipe(buffer, size, timeout_ms);
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
  if (impl_->pipe != INVALID_HANDLE_VALUE) return impl_->write_pipe(data, size, timeout_ms);
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
