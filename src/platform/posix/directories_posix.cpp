#include "platform/directories.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "platform/posix/unique_fd.hpp"

namespace kerfline::platform {

namespace {

struct DirCloser {
  void operator()(DIR* d) const { ::closedir(d); }
};
using DirPtr = std::unique_ptr<DIR, DirCloser>;

// Opens a directory relative to dir_fd without following a final link.
int open_dir_no_follow(int dir_fd, const char* name) {
  return ::openat(dir_fd, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

// Unlinks every non-directory entry of the open directory; the descriptor
// is consumed. Subdirectories stay.
Result<bool> unlink_files(int fd, const std::string& where) {
  DirPtr dir(::fdopendir(fd));
  if (!dir) {
    const int err = errno;
    ::close(fd);
    return os_error(err, "opendir " + where);
  }
  std::vector<std::string> names;
  while (const dirent* e = ::readdir(dir.get())) {
    const std::string_view n(e->d_name);
    if (n != "." && n != "..") names.emplace_back(n);
  }
  const int dfd = ::dirfd(dir.get());
  for (const auto& n : names) {
    struct stat st {};
    if (::fstatat(dfd, n.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
    if (S_ISDIR(st.st_mode)) continue;
    if (::unlinkat(dfd, n.c_str(), 0) != 0 && errno != ENOENT) {
      const int error = errno;  // before the message allocates
      return os_error(error, std::string("unlink ").append(where).append("/").append(n));
    }
  }
  return true;
}

}  // namespace

Result<bool> make_directory(const std::string& path) {
  if (::mkdir(path.c_str(), 0777) == 0) return true;
  const int err = errno;
  struct stat st {};
  if (err == EEXIST && ::lstat(path.c_str(), &st) == 0) {
    if (S_ISDIR(st.st_mode)) return false;
    return os_error(S_ISLNK(st.st_mode) ? ELOOP : ENOTDIR, "mkdir " + path);
  }
  return os_error(err, "mkdir " + path);
}

Result<bool> create_empty_file(const std::string& path) {
  UniqueFd fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
  if (fd.get() >= 0) return true;
  const int err = errno;
  struct stat st {};
  if (err == EEXIST && ::lstat(path.c_str(), &st) == 0) {
    if (S_ISREG(st.st_mode)) return false;
    return os_error(S_ISLNK(st.st_mode) ? ELOOP : EEXIST, "create " + path);
  }
  return os_error(err, "create " + path);
}

Result<bool> remove_directory_files(const std::string& path,
                                    std::initializer_list<std::string_view> subdirs) {
  UniqueFd top(open_dir_no_follow(AT_FDCWD, path.c_str()));
  if (top.get() < 0) {
    if (errno == ENOENT) return false;
    return os_error(errno, "open " + path);
  }
  for (const auto sub : subdirs) {
    const std::string name(sub);
    const int fd = open_dir_no_follow(top.get(), name.c_str());
    if (fd < 0) {
      if (errno == ENOENT) continue;
      const int error = errno;
      return os_error(error, std::string("open ").append(path).append("/").append(name));
    }
    const std::string sub_path = std::string(path).append("/").append(name);
    if (auto r = unlink_files(fd, sub_path); !r) return r;
    if (::unlinkat(top.get(), name.c_str(), AT_REMOVEDIR) != 0) {
      const int error = errno;
      return os_error(error, "rmdir " + sub_path);
    }
  }
  const int dup_fd = ::dup(top.get());
  if (dup_fd < 0) return os_error(errno, "dup " + path);
  if (auto r = unlink_files(dup_fd, path); !r) return r;
  if (::rmdir(path.c_str()) != 0) return os_error(errno, "rmdir " + path);
  return true;
}

Result<std::vector<std::string>> list_directory(const std::string& path) {
  DirPtr dir(::opendir(path.c_str()));
  if (!dir) return os_error(errno, "opendir " + path);
  std::vector<std::string> names;
  while (const dirent* e = ::readdir(dir.get())) {
    const std::string_view n(e->d_name);
    if (n != "." && n != "..") names.emplace_back(n);
  }
  std::sort(names.begin(), names.end());
  return names;
}

Result<std::string> read_first_line(const std::string& path, std::size_t max_bytes) {
  UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (fd.get() < 0) return os_error(errno, "open " + path);
  std::string text(max_bytes, '\0');
  const ssize_t n = ::read(fd.get(), text.data(), text.size());
  if (n < 0) return os_error(errno, "read " + path);
  text.resize(static_cast<std::size_t>(n));
  if (const auto end = text.find_first_of("\r\n"); end != std::string::npos) text.resize(end);
  return text;
}

}  // namespace kerfline::platform
