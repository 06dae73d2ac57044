#include <errno.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "platform/posix/fd_stream.hpp"
#include "platform/posix/unique_fd.hpp"
#include "platform/tcp_socket.hpp"

namespace kerfline::platform {

namespace {

struct AddrInfoList {
  addrinfo* head = nullptr;
  ~AddrInfoList() {
    if (head != nullptr) ::freeaddrinfo(head);
  }
};

// Resolves host:port; a failure carries the resolver's code and text.
Result<bool> resolve(const std::string& host, std::uint16_t port, bool passive, AddrInfoList& out) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICSERV | (passive ? AI_PASSIVE : 0);
  const std::string service = std::to_string(port);
  const int rc = ::getaddrinfo(host.empty() ? nullptr : host.c_str(), service.c_str(), &hints, &out.head);
  if (rc != 0) {
    if (rc == EAI_SYSTEM) return os_error(errno, "resolve " + host);
    return OsError{rc, "resolve " + host + ": " + ::gai_strerror(rc)};
  }
  return true;
}

std::string describe(const std::string& host, std::uint16_t port) {
  return host + " port " + std::to_string(port);
}

}  // namespace

struct TcpListener::Impl {
  explicit Impl(int descriptor) : fd(descriptor) {}
  UniqueFd fd;
  std::uint16_t port = 0;
};

TcpListener::TcpListener(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
TcpListener::TcpListener(TcpListener&&) noexcept = default;
TcpListener& TcpListener::operator=(TcpListener&&) noexcept = default;
TcpListener::~TcpListener() = default;

std::uint16_t TcpListener::port() const { return impl_ ? impl_->port : 0; }

Result<TcpListener> TcpListener::listen(const std::string& address, std::uint16_t port, int backlog) {
  AddrInfoList list;
  if (auto r = resolve(address, port, true, list); !r) return r.error();
  OsError last{EADDRNOTAVAIL, "listen " + describe(address, port) + ": no address"};
  for (addrinfo* a = list.head; a != nullptr; a = a->ai_next) {
    UniqueFd fd(::socket(a->ai_family, a->ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, a->ai_protocol));
    if (fd.get() < 0) {
      last = os_error(errno, "socket for " + describe(address, port));
      continue;
    }
    const int on = 1;
    ::setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    if (::bind(fd.get(), a->ai_addr, a->ai_addrlen) != 0) {
      last = os_error(errno, "bind " + describe(address, port));
      continue;
    }
    if (::listen(fd.get(), backlog) != 0) {
      last = os_error(errno, "listen " + describe(address, port));
      continue;
    }
    sockaddr_storage bound{};
    socklen_t len = sizeof(bound);
    if (::getsockname(fd.get(), reinterpret_cast<sockaddr*>(&bound), &len) != 0) {
      last = os_error(errno, "getsockname");
      continue;
    }
    auto impl = std::make_unique<Impl>(fd.release());
    if (bound.ss_family == AF_INET6) {
      impl->port = ntohs(reinterpret_cast<sockaddr_in6*>(&bound)->sin6_port);
    } else {
      impl->port = ntohs(reinterpret_cast<sockaddr_in*>(&bound)->sin_port);
    }
    return TcpListener(std::move(impl));
  }
  return last;
}

Result<std::optional<ByteStream>> TcpListener::accept(int timeout_ms) {
  if (!impl_) return os_error(EBADF, "accept");
  pollfd p{impl_->fd.get(), POLLIN, 0};
  const int ready = ::poll(&p, 1, timeout_ms < 0 ? -1 : timeout_ms);
  if (ready < 0) {
    if (errno == EINTR) return std::optional<ByteStream>{};
    return os_error(errno, "poll");
  }
  if (ready == 0) return std::optional<ByteStream>{};
  const int fd = ::accept4(impl_->fd.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
  if (fd < 0) {
    // The client may have given up between poll and accept.
    if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR || errno == ECONNABORTED) {
      return std::optional<ByteStream>{};
    }
    return os_error(errno, "accept");
  }
  const int on = 1;
  ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
  return std::optional<ByteStream>{make_fd_stream(fd, fd, true)};
}

Result<ByteStream> tcp_connect(const std::string& host, std::uint16_t port, int timeout_ms) {
  AddrInfoList list;
  if (auto r = resolve(host, port, false, list); !r) return r.error();
  OsError last{EADDRNOTAVAIL, "connect " + describe(host, port) + ": no address"};
  for (addrinfo* a = list.head; a != nullptr; a = a->ai_next) {
    UniqueFd fd(::socket(a->ai_family, a->ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, a->ai_protocol));
    if (fd.get() < 0) {
      last = os_error(errno, "socket for " + describe(host, port));
      continue;
    }
    int err = 0;
    if (::connect(fd.get(), a->ai_addr, a->ai_addrlen) != 0) {
      err = errno;
      if (err == EINPROGRESS) {
        pollfd p{fd.get(), POLLOUT, 0};
        int ready = 0;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
        do {
          const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                                deadline - std::chrono::steady_clock::now())
                                .count();
          ready = ::poll(&p, 1, timeout_ms < 0 ? -1 : static_cast<int>(left > 0 ? left : 0));
        } while (ready < 0 && errno == EINTR);
        if (ready == 0) {
          err = ETIMEDOUT;
        } else if (ready < 0) {
          err = errno;
        } else {
          socklen_t len = sizeof(err);
          if (::getsockopt(fd.get(), SOL_SOCKET, SO_ERROR, &err, &len) != 0) err = errno;
        }
      }
    }
    if (err != 0) {
      last = os_error(err, "connect " + describe(host, port));
      continue;
    }
    const int on = 1;
    ::setsockopt(fd.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    const int raw = fd.release();
    return make_fd_stream(raw, raw, true);
  }
  return last;
}

}  // namespace kerfline::platform
