#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/shared_memory.hpp"

namespace kerfline::platform {
namespace {

// Byte ranges of the object used as locks (locks may lie beyond its end):
// byte 0 serialises opening, byte 1 is held shared by every process that has
// the block open, so an opener that can lock it exclusively is alone.
constexpr off_t kOpenLockByte = 0;
constexpr off_t kUsersLockByte = 1;

bool valid_name_char(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '-' ||
         c == '_';
}

// "/name" for shm_open, or empty for a name we refuse.
std::string os_name(std::string_view name) {
  if (!name.empty() && name.front() == '/') name.remove_prefix(1);
  if (name.empty() || name.size() > 200 || name == "." || name == "..") return {};
  for (const char c : name) {
    if (!valid_name_char(c)) return {};
  }
  return "/" + std::string(name);
}

#if defined(F_OFD_SETLKW)
// Open-file-description locks: they belong to this descriptor, not to the
// process, so two opens in one process do not share or drop each other's locks.
int lock_byte(int fd, short type, off_t byte, bool wait) {
  struct flock fl {};
  fl.l_type = type;
  fl.l_whence = SEEK_SET;
  fl.l_start = byte;
  fl.l_len = 1;
  int rc = 0;
  do {
    rc = fcntl(fd, wait ? F_OFD_SETLKW : F_OFD_SETLK, &fl);
  } while (rc != 0 && errno == EINTR);
  return rc == 0 ? 0 : errno;
}
constexpr bool kCanTellFirstUser = true;
#else
// Without descriptor locks the block is only ever grown, never reset.
int lock_byte(int, short, off_t, bool) { return 0; }
constexpr bool kCanTellFirstUser = false;
#endif

int resize(int fd, off_t size) {
  int rc = 0;
  do {
    rc = ftruncate(fd, size);
  } while (rc != 0 && errno == EINTR);
  return rc == 0 ? 0 : errno;
}

// Zero-fills the block when nobody else uses it, grows it when too small,
// and registers this descriptor as a user. Returns 0 or an errno value.
int prepare(int fd, std::size_t size) {
  if (const int err = lock_byte(fd, F_WRLCK, kOpenLockByte, true); err != 0) return err;
  int err = 0;
  const bool alone = kCanTellFirstUser && lock_byte(fd, F_WRLCK, kUsersLockByte, false) == 0;
  struct stat st {};
  if (fstat(fd, &st) != 0) {
    err = errno;
  } else if (alone) {
    err = resize(fd, 0);
    if (err == 0) err = resize(fd, static_cast<off_t>(size));
  } else if (static_cast<std::size_t>(st.st_size) < size) {
    err = resize(fd, static_cast<off_t>(size));
  }
  if (err == 0) err = lock_byte(fd, F_RDLCK, kUsersLockByte, true);
  lock_byte(fd, F_UNLCK, kOpenLockByte, false);
  return err;
}

}  // namespace

struct SharedMemory::Impl {
  int fd = -1;
  void* base = nullptr;
  std::size_t size = 0;
  ~Impl() {
    if (base != nullptr) munmap(base, size);
    if (fd >= 0) close(fd);  // also drops this descriptor's locks
  }
};

SharedMemory::SharedMemory(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
SharedMemory::SharedMemory(SharedMemory&&) noexcept = default;
SharedMemory& SharedMemory::operator=(SharedMemory&&) noexcept = default;
SharedMemory::~SharedMemory() = default;

void* SharedMemory::data() const { return impl_->base; }
std::size_t SharedMemory::size() const { return impl_->size; }

Result<SharedMemory> SharedMemory::open(std::string_view name, std::size_t size) {
  const std::string path = os_name(name);
  if (path.empty()) return OsError{EINVAL, "shared memory: bad name \"" + std::string(name) + "\""};
  if (size == 0) return OsError{EINVAL, "shared memory " + path + ": size 0"};

  auto impl = std::make_unique<Impl>();
  impl->fd = shm_open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (impl->fd < 0) return os_error(errno, "shm_open", path);
  if (const int err = prepare(impl->fd, size); err != 0) return os_error(err, "prepare", path);

  void* base = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, impl->fd, 0);
  if (base == MAP_FAILED) return os_error(errno, "mmap", path);
  impl->base = base;
  impl->size = size;
  return SharedMemory(std::move(impl));
}

bool SharedMemory::remove(std::string_view name) {
  const std::string path = os_name(name);
  return !path.empty() && shm_unlink(path.c_str()) == 0;
}

}  // namespace kerfline::platform
