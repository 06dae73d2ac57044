#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "platform/binary_file.hpp"
#include "platform/posix/unique_fd.hpp"

namespace kerfline::platform {

Result<std::string> read_binary_file(const std::string& path) {
  return read_binary_file_head(path, std::numeric_limits<std::size_t>::max());
}

Result<std::string> read_binary_file_head(const std::string& path, std::size_t max_bytes) {
  UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (fd.get() < 0) return os_error(errno, "open", path);
  std::string out;
  struct stat st {};
  if (::fstat(fd.get(), &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
    out.reserve(std::min(static_cast<std::size_t>(st.st_size), max_bytes));
  }
  char buf[65536];
  while (out.size() < max_bytes) {
    const std::size_t want = std::min(sizeof(buf), max_bytes - out.size());
    const ssize_t n = ::read(fd.get(), buf, want);
    if (n < 0) {
      if (errno == EINTR) continue;
      return os_error(errno, "read", path);
    }
    if (n == 0) break;
    out.append(buf, static_cast<std::size_t>(n));
  }
  return out;
}

}  // namespace kerfline::platform
