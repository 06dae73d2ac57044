#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include "platform/posix/fd_stream.hpp"
#include "platform/posix/unique_fd.hpp"
#include "platform/pseudo_terminal.hpp"

namespace kerfline::platform {

struct PseudoTerminal::Impl {
  explicit Impl(int slave_fd) : slave(slave_fd) {}
  ByteStream master;
  UniqueFd slave;
  std::string path;
};

PseudoTerminal::PseudoTerminal(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
PseudoTerminal::PseudoTerminal(PseudoTerminal&&) noexcept = default;
PseudoTerminal& PseudoTerminal::operator=(PseudoTerminal&&) noexcept = default;
PseudoTerminal::~PseudoTerminal() = default;

Result<PseudoTerminal> PseudoTerminal::open() {
  UniqueFd master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (master.get() < 0) return os_error(errno, "posix_openpt");
  if (::grantpt(master.get()) != 0) return os_error(errno, "grantpt");
  if (::unlockpt(master.get()) != 0) return os_error(errno, "unlockpt");
  char name[128] = {};
  if (const int rc = ::ptsname_r(master.get(), name, sizeof(name)); rc != 0) return os_error(rc, "ptsname");
  const int slave = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (slave < 0) return os_error(errno, std::string("open ") + name);
  auto impl = std::make_unique<Impl>(slave);
  termios t{};
  if (::tcgetattr(slave, &t) != 0) return os_error(errno, "tcgetattr");
  ::cfmakeraw(&t);
  if (::tcsetattr(slave, TCSANOW, &t) != 0) return os_error(errno, "tcsetattr");
  impl->path = name;
  const int fd = master.release();
  impl->master = make_fd_stream(fd, fd, false);
  return PseudoTerminal(std::move(impl));
}

const std::string& PseudoTerminal::device_path() const { return impl_->path; }

ByteStream& PseudoTerminal::master() { return impl_->master; }

void PseudoTerminal::release_slave() {
  const int fd = impl_->slave.release();
  if (fd >= 0) ::close(fd);
}

}  // namespace kerfline::platform
