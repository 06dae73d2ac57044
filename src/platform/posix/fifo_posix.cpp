#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/fifo.hpp"
#include "platform/posix/fd_stream.hpp"

namespace kerfline::platform {

Result<bool> make_fifo(const std::string& path) {
  if (::mkfifo(path.c_str(), 0600) == 0) return true;
  const int err = errno;
  struct stat st {};
  if (err == EEXIST && ::stat(path.c_str(), &st) == 0 && S_ISFIFO(st.st_mode)) return true;
  return os_error(err, "mkfifo " + path);
}

Result<ByteStream> open_fifo_reader(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return os_error(errno, "open " + path);
  return make_fd_stream(fd, -1, false);
}

Result<ByteStream> open_fifo_writer(const std::string& path) {
  // Read-write on a FIFO opens at once on Linux and never meets "no reader".
  const int fd = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return os_error(errno, "open " + path);
  return make_fd_stream(-1, fd, false);
}

}  // namespace kerfline::platform
