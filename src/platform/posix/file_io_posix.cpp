#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>

#include "platform/file_io.hpp"
#include "platform/posix/unique_fd.hpp"

namespace kerfline::platform::file_io {
namespace {

FileIdentity identity_of(const struct stat& st) {
  FileIdentity id;
  id.device = static_cast<std::uint64_t>(st.st_dev);
  id.inode = static_cast<std::uint64_t>(st.st_ino);
  id.size = static_cast<std::uint64_t>(st.st_size);
  id.mtime_ns = static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
  return id;
}

// File times come from a clock that ticks every few milliseconds (or every
// second or two on file systems that keep whole seconds); a file whose time
// is older than a few ticks cannot change without its time changing.
bool settled_at_read(const FileIdentity& id) {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const std::int64_t now_ns = static_cast<std::int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
  const std::int64_t margin_ns = id.mtime_ns % 1000000000 == 0 ? 2100000000 : 30000000;
  return now_ns - id.mtime_ns > margin_ns;
}

bool absent(int code) { return code == ENOENT || code == ENOTDIR; }

std::string directory_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

bool write_all(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t n = ::write(fd, bytes.data(), bytes.size());
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

int fsync_retrying(int fd) {
  int rc = 0;
  do {
    rc = ::fsync(fd);
  } while (rc != 0 && errno == EINTR);
  return rc;
}

// A symbolic link is replaced through: the file it names is the one written.
std::string resolve_link(const std::string& path) {
  struct stat st {};
  if (::lstat(path.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return path;
  std::unique_ptr<char, decltype(&::free)> real(::realpath(path.c_str(), nullptr), &::free);
  return real ? std::string(real.get()) : path;
}

}  // namespace

Result<std::optional<FileIdentity>> identify(const std::string& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) {
    if (absent(errno)) return std::optional<FileIdentity>{};
    return os_error(errno, "stat", path);
  }
  return std::optional<FileIdentity>{identity_of(st)};
}

Result<std::optional<FileContents>> read_whole(const std::string& path, std::uint64_t max_size) {
  // Non-blocking so that a FIFO in the file's place cannot hang the caller.
  UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (fd.get() < 0) {
    if (absent(errno)) return std::optional<FileContents>{};
    return os_error(errno, "open", path);
  }
  struct stat st {};
  if (::fstat(fd.get(), &st) != 0) return os_error(errno, "stat", path);
  if (!S_ISREG(st.st_mode)) return os_error(S_ISDIR(st.st_mode) ? EISDIR : EINVAL, "read", path);
  if (static_cast<std::uint64_t>(st.st_size) > max_size) return os_error(EFBIG, "read", path);

  FileContents contents;
  contents.identity = identity_of(st);
  contents.settled = settled_at_read(contents.identity);
  contents.bytes.resize(static_cast<std::size_t>(st.st_size));
  std::size_t got = 0;
  for (;;) {
    if (got == contents.bytes.size()) {
      // The file may have grown since fstat; look for more, within bounds.
      if (got >= max_size) {
        char probe = 0;
        const ssize_t n = ::read(fd.get(), &probe, 1);
        if (n == 0) break;
        if (n < 0 && errno == EINTR) continue;
        return os_error(n < 0 ? errno : EFBIG, "read", path);
      }
      const std::size_t room = static_cast<std::size_t>(std::min<std::uint64_t>(max_size - got, 65536));
      contents.bytes.resize(got + room);
    }
    const ssize_t n = ::read(fd.get(), contents.bytes.data() + got, contents.bytes.size() - got);
    if (n < 0) {
      if (errno == EINTR) continue;
      return os_error(errno, "read", path);
    }
    if (n == 0) break;
    got += static_cast<std::size_t>(n);
  }
  contents.bytes.resize(got);
  return std::optional<FileContents>{std::move(contents)};
}

Result<FileIdentity> replace_atomically(const std::string& path_in, std::string_view bytes) {
  static std::atomic<unsigned> counter{0};
  const std::string path = resolve_link(path_in);
  const std::string dir = directory_of(path);
  const std::string base = path.substr(path.rfind('/') == std::string::npos ? 0 : path.rfind('/') + 1);

  std::string temp;
  int raw_fd = -1;
  for (int attempt = 0; attempt < 100 && raw_fd < 0; ++attempt) {
    temp.assign(dir).append("/.").append(base).append(".tmp-");
    temp.append(std::to_string(::getpid())).append("-").append(std::to_string(counter++));
    raw_fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (raw_fd < 0 && errno != EEXIST) return os_error(errno, "create", temp);
  }
  if (raw_fd < 0) return os_error(EEXIST, "create", temp);
  UniqueFd fd(raw_fd);
  auto fail = [&temp](int code, const std::string& what) {
    ::unlink(temp.c_str());
    return os_error(code, what);
  };

  struct stat old {};
  if (::stat(path.c_str(), &old) == 0) ::fchmod(fd.get(), old.st_mode & 07777);
  if (!write_all(fd.get(), bytes)) return fail(errno, "write " + temp);
  if (fsync_retrying(fd.get()) != 0) return fail(errno, "flush " + temp);
  struct stat st {};
  if (::fstat(fd.get(), &st) != 0) return fail(errno, "stat " + temp);
  if (::close(fd.release()) != 0) return fail(errno, "close " + temp);
  if (::rename(temp.c_str(), path.c_str()) != 0) return fail(errno, "rename " + temp + " to " + path);

  // The rename is on disk only once the directory is.
  UniqueFd dir_fd(::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (dir_fd.get() >= 0 && fsync_retrying(dir_fd.get()) != 0 && errno != EINVAL) {
    return os_error(errno, "flush", dir);
  }
  return identity_of(st);
}

bool can_write(const std::string& path) {
  const std::string target = resolve_link(path);
  if (::access(directory_of(target).c_str(), W_OK | X_OK) != 0) return false;
  return ::access(target.c_str(), W_OK) == 0 || errno == ENOENT;
}

FileLock::~FileLock() { release(); }

FileLock::FileLock(FileLock&& other) noexcept : handle_(other.handle_) { other.handle_ = kNoHandle; }

FileLock& FileLock::operator=(FileLock&& other) noexcept {
  if (this != &other) {
    release();
    handle_ = other.handle_;
    other.handle_ = kNoHandle;
  }
  return *this;
}

void FileLock::release() {
  if (handle_ != kNoHandle) {
    ::close(static_cast<int>(handle_));  // drops the flock
    handle_ = kNoHandle;
  }
}

Result<FileLock> lock_exclusive(const std::string& path) {
  // flock locks an open file, not a path: after waiting, the file may have
  // been replaced by its writer, and then the new one is locked instead.
  for (;;) {
    UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666));
    if (fd.get() < 0) return os_error(errno, "open", path);
    int rc = 0;
    do {
      rc = ::flock(fd.get(), LOCK_EX);
    } while (rc != 0 && errno == EINTR);
    if (rc != 0) return os_error(errno, "lock", path);
    struct stat locked {};
    struct stat current {};
    if (::fstat(fd.get(), &locked) != 0) return os_error(errno, "stat", path);
    if (::stat(path.c_str(), &current) == 0 && current.st_dev == locked.st_dev &&
        current.st_ino == locked.st_ino) {
      return FileLock(static_cast<std::intptr_t>(fd.release()));
    }
  }
}

}  // namespace kerfline::platform::file_io
