#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>

#include "platform/byte_stream.hpp"
#include "platform/posix/fd_stream.hpp"

namespace kerfline::platform {

struct ByteStream::Impl {
  int read_fd = -1;
  int write_fd = -1;
  bool is_socket = false;

  ~Impl() { close_all(); }
  void close_all() {
    if (read_fd >= 0) ::close(read_fd);
    if (write_fd >= 0 && write_fd != read_fd) ::close(write_fd);
    read_fd = write_fd = -1;
  }
};

namespace {

void set_non_blocking(int fd) {
  if (fd < 0) return;
  const int flags = ::fcntl(fd, F_GETFL);
  if (flags >= 0) ::fcntl(fd, F_SETFL, flags | O_NONBLOCK);
}

using Clock = std::chrono::steady_clock;

// Milliseconds left until deadline for poll: -1 without a deadline.
int remaining_ms(bool limited, Clock::time_point deadline) {
  if (!limited) return -1;
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return left > 0 ? static_cast<int>(left) : 0;
}

}  // namespace

ByteStream make_fd_stream(int read_fd, int write_fd, bool is_socket) {
  auto impl = std::make_unique<ByteStream::Impl>();
  impl->read_fd = read_fd;
  impl->write_fd = write_fd;
  impl->is_socket = is_socket;
  set_non_blocking(read_fd);
  if (write_fd != read_fd) set_non_blocking(write_fd);
  return ByteStream(std::move(impl));
}

ByteStream::ByteStream() = default;
ByteStream::ByteStream(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
ByteStream::ByteStream(ByteStream&&) noexcept = default;
ByteStream& ByteStream::operator=(ByteStream&&) noexcept = default;
ByteStream::~ByteStream() = default;

bool ByteStream::is_open() const { return impl_ && (impl_->read_fd >= 0 || impl_->write_fd >= 0); }

void ByteStream::close() {
  if (impl_) impl_->close_all();
}

Result<ReadResult> ByteStream::read(char* buffer, std::size_t size, int timeout_ms) {
  if (!impl_ || impl_->read_fd < 0) return ReadResult{0, true};
  if (size == 0) return ReadResult{};
  pollfd p{impl_->read_fd, POLLIN, 0};
  const int ready = ::poll(&p, 1, timeout_ms < 0 ? -1 : timeout_ms);
  if (ready < 0) {
    if (errno == EINTR) return ReadResult{};
    return os_error(errno, "poll");
  }
  if (ready == 0) return ReadResult{};
  if ((p.revents & POLLNVAL) != 0) return os_error(EBADF, "poll");
  const ssize_t n = ::read(impl_->read_fd, buffer, size);
  if (n > 0) return ReadResult{static_cast<std::size_t>(n), false};
  if (n == 0) return ReadResult{0, true};
  const int err = errno;
  if (err == EAGAIN || err == EWOULDBLOCK || err == EINTR) return ReadResult{};
  // A pseudo-terminal whose other side closed reports EIO: a hang-up.
  if (err == EIO || err == ECONNRESET) return ReadResult{0, true};
  return os_error(err, "read");
}

Result<std::size_t> ByteStream::write(const char* data, std::size_t size, int timeout_ms) {
  if (!impl_ || impl_->write_fd < 0) return os_error(EBADF, "write");
  const bool limited = timeout_ms >= 0;
  const auto deadline = Clock::now() + std::chrono::milliseconds(limited ? timeout_ms : 0);
  std::size_t done = 0;
  while (done < size) {
    ssize_t n = 0;
    if (impl_->is_socket) {
      n = ::send(impl_->write_fd, data + done, size - done, MSG_NOSIGNAL);
    } else {
      n = ::write(impl_->write_fd, data + done, size - done);
    }
    if (n > 0) {
      done += static_cast<std::size_t>(n);
      continue;
    }
    const int err = n < 0 ? errno : EAGAIN;
    if (err != EAGAIN && err != EWOULDBLOCK && err != EINTR) return os_error(err, "write");
    const int wait = remaining_ms(limited, deadline);
    if (limited && wait == 0) break;
    pollfd p{impl_->write_fd, POLLOUT, 0};
    const int ready = ::poll(&p, 1, wait);
    if (ready < 0 && errno != EINTR) return os_error(errno, "poll");
    if (ready > 0 && (p.revents & (POLLERR | POLLHUP)) != 0 && (p.revents & POLLOUT) == 0) {
      return os_error(EPIPE, "write");
    }
  }
  return done;
}

}  // namespace kerfline::platform
