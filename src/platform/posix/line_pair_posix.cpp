#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include "platform/line_pair.hpp"
#include "platform/posix/fd_stream.hpp"
#include "platform/posix/unique_fd.hpp"

namespace kerfline::platform {

struct LinePair::Impl {
  explicit Impl(int slave_fd) : slave(slave_fd) {}
  ByteStream master;
  UniqueFd slave;
  std::string path;
};

LinePair::LinePair(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
LinePair::LinePair(LinePair&&) noexcept = default;
LinePair& LinePair::operator=(LinePair&&) noexcept = default;
LinePair::~LinePair() = default;

Result<LinePair> LinePair::open() {
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
  return LinePair(std::move(impl));
}

const std::string& LinePair::device_path() const { return impl_->path; }

ByteStream& LinePair::stream() { return impl_->master; }

void LinePair::release_device() {
  const int fd = impl_->slave.release();
  if (fd >= 0) ::close(fd);
}

Result<ByteStream> open_line_device(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return os_error(errno, "open " + path);
  return make_fd_stream(fd, fd, false);
}

}  // namespace kerfline::platform
