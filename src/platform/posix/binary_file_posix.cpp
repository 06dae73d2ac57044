#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <utility>

#include "platform/binary_file.hpp"

namespace kerfline::platform {

namespace {

class Fd {
 public:
  explicit Fd(int fd) : fd_(fd) {}
  ~Fd() {
    if (fd_ >= 0) ::close(fd_);
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  [[nodiscard]] int get() const { return fd_; }
  int release() { return std::exchange(fd_, -1); }

 private:
  int fd_;
};

// A name beside `path` that no other writer picks at the same moment.
std::string temp_name(const std::string& path) {
  static std::atomic<unsigned> counter{0};
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  return path + ".~" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + "-" +
         std::to_string(now & 0xFFFFFF);
}

}  // namespace

Result<std::string> read_binary_file(const std::string& path) {
  Fd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (fd.get() < 0) return os_error(errno, "open " + path);
  std::string out;
  struct stat st {};
  if (::fstat(fd.get(), &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
    out.reserve(static_cast<std::size_t>(st.st_size));
  }
  char buf[65536];
  for (;;) {
    const ssize_t n = ::read(fd.get(), buf, sizeof(buf));
    if (n < 0) {
      if (errno == EINTR) continue;
      return os_error(errno, "read " + path);
    }
    if (n == 0) break;
    out.append(buf, static_cast<std::size_t>(n));
  }
  return out;
}

Result<std::string> read_binary_file_head(const std::string& path, std::size_t max_bytes) {
  Fd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (fd.get() < 0) return os_error(errno, "open " + path);
  std::string out;
  char buf[65536];
  while (out.size() < max_bytes) {
    const std::size_t want = std::min(sizeof(buf), max_bytes - out.size());
    const ssize_t n = ::read(fd.get(), buf, want);
    if (n < 0) {
      if (errno == EINTR) continue;
      return os_error(errno, "read " + path);
    }
    if (n == 0) break;
    out.append(buf, static_cast<std::size_t>(n));
  }
  return out;
}

Result<bool> replace_binary_file(const std::string& path, std::string_view bytes) {
  mode_t mode = 0666;
  struct stat st {};
  if (::stat(path.c_str(), &st) == 0) mode = st.st_mode & 07777;

  const std::string temp = temp_name(path);
  Fd fd(::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (fd.get() < 0) return os_error(errno, "create " + temp);
  const auto fail = [&temp](int code, const std::string& what) {
    ::unlink(temp.c_str());
    return os_error(code, what);
  };
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd.get(), bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return fail(errno, "write " + temp);
    }
    done += static_cast<std::size_t>(n);
  }
  if (::fsync(fd.get()) != 0) return fail(errno, "flush " + temp);
  if (::close(fd.release()) != 0) return fail(errno, "close " + temp);
  if (::rename(temp.c_str(), path.c_str()) != 0) return fail(errno, "rename " + temp);
  return true;
}

}  // namespace kerfline::platform
