#include <string>

#include "platform/tcp_socket.hpp"
#include "platform/win32/socket_stream_win32.hpp"

namespace kerfline::platform {

namespace {

struct AddrInfoList {
  addrinfo* head = nullptr;
  ~AddrInfoList() {
    if (head != nullptr) ::freeaddrinfo(head);
  }
};

Result<bool> resolve(const std::string& host, std::uint16_t port, bool passive, AddrInfoList& out) {
  if (const int rc = ensure_winsock(); rc != 0) return os_error(rc, "WSAStartup");
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICSERV | (passive ? AI_PASSIVE : 0);
  const std::string service = std::to_string(port);
  const int rc = ::getaddrinfo(host.empty() ? nullptr : host.c_str(), service.c_str(), &hints, &out.head);
  if (rc != 0) return os_error(rc, "resolve " + host);
  return true;
}

std::string describe(const std::string& host, std::uint16_t port) {
  return host + " port " + std::to_string(port);
}

}  // namespace

struct TcpListener::Impl {
  SOCKET s = INVALID_SOCKET;
  std::uint16_t port = 0;
  ~Impl() {
    if (s != INVALID_SOCKET) ::closesocket(s);
  }
};

TcpListener::TcpListener(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
TcpListener::TcpListener(TcpListener&&) noexcept = default;
TcpListener& TcpListener::operator=(TcpListener&&) noexcept = default;
TcpListener::~TcpListener() = default;

std::uint16_t TcpListener::port() const { return impl_ ? impl_->port : 0; }

Result<TcpListener> TcpListener::listen(const std::string& address, std::uint16_t port, int backlog) {
  AddrInfoList list;
  if (auto r = resolve(address, port, true, list); !r) return r.error();
  OsError last{WSAEADDRNOTAVAIL, "listen " + describe(address, port) + ": no address"};
  for (addrinfo* a = list.head; a != nullptr; a = a->ai_next) {
    auto impl = std::make_unique<Impl>();
    impl->s = ::socket(a->ai_family, a->ai_socktype, a->ai_protocol);
    if (impl->s == INVALID_SOCKET) {
      last = os_error(::WSAGetLastError(), "socket for " + describe(address, port));
      continue;
    }
    if (::bind(impl->s, a->ai_addr, static_cast<int>(a->ai_addrlen)) != 0 ||
        ::listen(impl->s, backlog) != 0) {
      last = os_error(::WSAGetLastError(), "listen " + describe(address, port));
      continue;
    }
    sockaddr_storage bound{};
    int len = sizeof(bound);
    if (::getsockname(impl->s, reinterpret_cast<sockaddr*>(&bound), &len) != 0) {
      last = os_error(::WSAGetLastError(), "getsockname");
      continue;
    }
    impl->port = bound.ss_family == AF_INET6 ? ntohs(reinterpret_cast<sockaddr_in6*>(&bound)->sin6_port)
                                             : ntohs(reinterpret_cast<sockaddr_in*>(&bound)->sin_port);
    return TcpListener(std::move(impl));
  }
  return last;
}

Result<std::optional<ByteStream>> TcpListener::accept(int timeout_ms) {
  if (!impl_) return os_error(WSAENOTSOCK, "accept");
  WSAPOLLFD p{impl_->s, POLLRDNORM, 0};
  const int ready = ::WSAPoll(&p, 1, timeout_ms < 0 ? -1 : timeout_ms);
  if (ready == SOCKET_ERROR) return os_error(::WSAGetLastError(), "poll");
  if (ready == 0) return std::optional<ByteStream>{};
  const SOCKET s = ::accept(impl_->s, nullptr, nullptr);
  if (s == INVALID_SOCKET) {
    const int err = ::WSAGetLastError();
    if (err == WSAEWOULDBLOCK || err == WSAECONNRESET) return std::optional<ByteStream>{};
    return os_error(err, "accept");
  }
  BOOL on = TRUE;
  ::setsockopt(s, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof(on));
  return std::optional<ByteStream>{make_socket_stream(s)};
}

Result<ByteStream> tcp_connect(const std::string& host, std::uint16_t port, int timeout_ms) {
  AddrInfoList list;
  if (auto r = resolve(host, port, false, list); !r) return r.error();
  OsError last{WSAEADDRNOTAVAIL, "connect " + describe(host, port) + ": no address"};
  for (addrinfo* a = list.head; a != nullptr; a = a->ai_next) {
    SOCKET s = ::socket(a->ai_family, a->ai_socktype, a->ai_protocol);
    if (s == INVALID_SOCKET) {
      last = os_error(::WSAGetLastError(), "socket for " + describe(host, port));
      continue;
    }
    u_long on = 1;
    ::ioctlsocket(s, FIONBIO, &on);
    int err = 0;
    if (::connect(s, a->ai_addr, static_cast<int>(a->ai_addrlen)) != 0) {
      err = ::WSAGetLastError();
      if (err == WSAEWOULDBLOCK) {
        WSAPOLLFD p{s, POLLWRNORM, 0};
        const int ready = ::WSAPoll(&p, 1, timeout_ms < 0 ? -1 : timeout_ms);
        if (ready == 0) {
          err = WSAETIMEDOUT;
        } else if (ready == SOCKET_ERROR) {
          err = ::WSAGetLastError();
        } else {
          int len = sizeof(err);
          if (::getsockopt(s, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&err), &len) != 0) {
            err = ::WSAGetLastError();
          }
        }
      }
    }
    if (err != 0) {
      ::closesocket(s);
      last = os_error(err, "connect " + describe(host, port));
      continue;
    }
    BOOL nodelay = TRUE;
    ::setsockopt(s, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&nodelay), sizeof(nodelay));
    return make_socket_stream(s);
  }
  return last;
}

}  // namespace kerfline::platform
