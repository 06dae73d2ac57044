#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/clock.hpp"
#include "platform/serial_port.hpp"

namespace kerfline::platform::port {
namespace {

int fd_of(Handle h) { return static_cast<int>(h); }

// The time left of a deadline, for poll.
int remaining_ms(std::uint64_t deadline) {
  const std::uint64_t now = tick_ms64();
  return now >= deadline ? 0 : static_cast<int>(deadline - now);
}

// Waits for the event; 1 ready (or hung up: the call after it reports why),
// 0 timed out, -1 failed with errno set.
int wait_for(int fd, short events, int timeout_ms) {
  pollfd p{fd, events, 0};
  for (;;) {
    const int n = ::poll(&p, 1, timeout_ms);
    if (n >= 0 || errno != EINTR) return n < 0 ? -1 : (n > 0 ? 1 : 0);
  }
}

speed_t speed_of(std::uint32_t baud) {
  struct Pair {
    std::uint32_t baud;
    speed_t speed;
  };
  static constexpr Pair kSpeeds[] = {
      {50, B50},       {75, B75},         {110, B110},       {134, B134},       {150, B150},
      {200, B200},     {300, B300},       {600, B600},       {1200, B1200},     {1800, B1800},
      {2400, B2400},   {4800, B4800},     {9600, B9600},     {19200, B19200},   {38400, B38400},
      {57600, B57600}, {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600}};
  for (const Pair& p : kSpeeds) {
    if (p.baud == baud) return p.speed;
  }
  return B0;
}

}  // namespace

Result<Handle> open_existing(const std::string& path, Access access) {
  int flags = O_NOCTTY | O_CLOEXEC | O_NONBLOCK;
  flags |= access == Access::kRead ? O_RDONLY : access == Access::kWrite ? O_WRONLY : O_RDWR;
  int fd = ::open(path.c_str(), flags);
  if (fd < 0) return os_error(errno, "open " + path);
  if (fd <= 2) {
    // Handle 0 means "no handle" to our callers: never hand out 0, 1 or 2.
    const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, 3);
    const int err = errno;
    ::close(fd);
    if (moved < 0) return os_error(err, "dup " + path);
    fd = moved;
  }
  struct stat st {};
  if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
    ::close(fd);
    return os_error(EISDIR, "open " + path);
  }
  return static_cast<Handle>(fd);
}

bool close(Handle h) { return is_open_handle(h) && ::close(fd_of(h)) == 0; }

IoResult read(Handle h, void* buffer, std::size_t size, ReadTimeouts timeouts) {
  IoResult r;
  if (!is_open_handle(h)) {
    r.error = EBADF;
    return r;
  }
  auto* out = static_cast<unsigned char*>(buffer);
  const std::uint64_t deadline = tick_ms64() + timeouts.total_ms;
  int wait = static_cast<int>(timeouts.total_ms);
  while (r.count < size) {
    const int ready = wait_for(fd_of(h), POLLIN, wait);
    if (ready < 0) {
      r.error = errno;
      return r;
    }
    if (ready == 0) break;
    const ssize_t n = ::read(fd_of(h), out + r.count, size - r.count);
    if (n < 0) {
      if (errno == EAGAIN || errno == EINTR) {
        wait = r.count == 0 ? remaining_ms(deadline) : static_cast<int>(timeouts.interval_ms);
        if (wait == 0) break;
        continue;
      }
      r.error = errno;
      return r;
    }
    if (n == 0) break;  // end of file, or the writer went away
    r.count += static_cast<std::uint32_t>(n);
    wait = static_cast<int>(timeouts.interval_ms);
  }
  r.ok = true;
  return r;
}

IoResult write(Handle h, const void* bytes, std::size_t size, std::uint32_t per_byte_ms,
               std::uint32_t total_ms) {
  IoResult r;
  if (!is_open_handle(h)) {
    r.error = EBADF;
    return r;
  }
  const auto* in = static_cast<const unsigned char*>(bytes);
  const std::uint64_t budget = static_cast<std::uint64_t>(per_byte_ms) * size + total_ms;
  const std::uint64_t deadline = tick_ms64() + budget;
  while (r.count < size) {
    const ssize_t n = ::write(fd_of(h), in + r.count, size - r.count);
    if (n > 0) {
      r.count += static_cast<std::uint32_t>(n);
      continue;
    }
    if (n < 0 && errno != EAGAIN && errno != EINTR) {
      r.error = errno;
      return r;
    }
    const int wait = remaining_ms(deadline);
    if (wait == 0 || wait_for(fd_of(h), POLLOUT, wait) <= 0) {
      r.error = ETIMEDOUT;
      return r;
    }
  }
  r.ok = true;
  return r;
}

bool is_terminal(Handle h) { return is_open_handle(h) && ::isatty(fd_of(h)) == 1; }

Result<std::uint32_t> input_count(Handle h) {
  if (!is_terminal(h)) return os_error(ENOTTY, "input count");
  int waiting = 0;
  if (::ioctl(fd_of(h), FIONREAD, &waiting) != 0) return os_error(errno, "FIONREAD");
  return static_cast<std::uint32_t>(waiting < 0 ? 0 : waiting);
}

bool purge(Handle h) { return is_terminal(h) && ::tcflush(fd_of(h), TCIOFLUSH) == 0; }

bool flush_buffers(Handle h) {
  if (!is_open_handle(h)) return false;
  if (is_terminal(h)) return true;
  struct stat st {};
  if (::fstat(fd_of(h), &st) != 0) return false;
  return !S_ISREG(st.st_mode) || ::fsync(fd_of(h)) == 0;
}

bool apply_line_settings(Handle h, const LineSettings& s) {
  if (!is_terminal(h)) return false;
  const speed_t speed = speed_of(s.baud);
  if (speed == B0) return false;
  termios t{};
  if (::tcgetattr(fd_of(h), &t) != 0) return false;
  ::cfmakeraw(&t);
  ::cfsetispeed(&t, speed);
  ::cfsetospeed(&t, speed);
  t.c_cflag |= CLOCAL | CREAD;
  t.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS);
  static constexpr tcflag_t kSizes[] = {CS5, CS6, CS7, CS8};
  t.c_cflag |= kSizes[s.data_bits - 5];
  // Mark and space parity have no portable termios form: sent as even/odd.
  if (s.parity != 'n') t.c_cflag |= PARENB;
  if (s.parity == 'o' || s.parity == 'm') t.c_cflag |= PARODD;
  if (s.stop_bits > 10) t.c_cflag |= CSTOPB;
  if (s.rts_cts) t.c_cflag |= CRTSCTS;
  t.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
  if (s.xon_xoff) {
    t.c_iflag |= IXON | IXOFF;
    t.c_cc[VSTART] = 0x11;
    t.c_cc[VSTOP] = 0x13;
  }
  t.c_cc[VMIN] = 0;
  t.c_cc[VTIME] = 0;
  if (::tcsetattr(fd_of(h), TCSANOW, &t) != 0) return false;
  if (s.dtr) {
    int bits = TIOCM_DTR;
    ::ioctl(fd_of(h), TIOCMBIS, &bits);  // a pseudo-terminal has no modem lines
  }
  return true;
}

std::string map_port_name(std::string_view name) {
  std::string_view n = name;
  if (!n.empty() && n.back() == ':') n.remove_suffix(1);
  auto upper_prefix = [&](std::string_view prefix) {
    if (n.size() <= prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
      const char c = n[i];
      if ((c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c) != prefix[i]) return false;
    }
    for (std::size_t i = prefix.size(); i < n.size(); ++i) {
      if (n[i] < '0' || n[i] > '9') return false;
    }
    return n.size() - prefix.size() <= 3;
  };
  const bool com = upper_prefix("COM");
  if (!com && !upper_prefix("LPT")) return std::string(name);
  const int number = std::stoi(std::string(n.substr(3)));
  if (number < 1) return std::string(name);
  return (com ? "/dev/ttyS" : "/dev/lp") + std::to_string(number - 1);
}

}  // namespace kerfline::platform::port

namespace kerfline::platform::port {

// Queue sizes, time-outs and the event mask have no termios counterpart:
// reads and writes carry their time-outs with them.
bool setup_serial(Handle h, std::string_view /*port_name*/, std::string_view mode_text) {
  const auto settings = line_settings_for(mode_text);
  return settings && apply_line_settings(h, *settings);
}

}  // namespace kerfline::platform::port
