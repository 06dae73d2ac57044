#include <algorithm>
#include <atomic>

#include "platform/clock.hpp"
#include "platform/file_io.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform::file_io {
namespace {

// Other processes of the suite keep these files open for reading and replace
// them while we read: every open shares everything, deletion included.
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool absent(DWORD code) { return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND; }

std::int64_t ns_since_unix_epoch(const FILETIME& ft) {
  constexpr std::uint64_t kUnixEpochAsFileTime = 116444736000000000ULL;
  const std::uint64_t units = win32::make_u64(ft.dwHighDateTime, ft.dwLowDateTime);
  return (static_cast<std::int64_t>(units) - static_cast<std::int64_t>(kUnixEpochAsFileTime)) * 100;
}

FileIdentity identity_of(const BY_HANDLE_FILE_INFORMATION& info) {
  FileIdentity id;
  id.device = info.dwVolumeSerialNumber;
  id.inode = win32::make_u64(info.nFileIndexHigh, info.nFileIndexLow);
  id.size = win32::make_u64(info.nFileSizeHigh, info.nFileSizeLow);
  id.mtime_ns = ns_since_unix_epoch(info.ftLastWriteTime);
  return id;
}

// As on every file system: a time older than a few ticks of its clock (two
// seconds where only whole seconds are kept) cannot hide a later change.
bool settled_at_read(const FileIdentity& id) {
  const auto now_ns = static_cast<std::int64_t>(unix_from_file_time(file_time_now())) * 1000000000;
  const std::int64_t margin_ns = id.mtime_ns % 1000000000 == 0 ? 3100000000 : 1030000000;
  return now_ns - id.mtime_ns > margin_ns;
}

std::string directory_of(const std::string& path) {
  const std::size_t sep = path.find_last_of("\\/");
  if (sep == std::string::npos) return ".";
  return path.substr(0, sep == 0 ? 1 : sep);
}

win32::UniqueHandle open_shared(const std::string& path, DWORD access, DWORD disposition, DWORD flags = 0) {
  return win32::UniqueHandle(CreateFileA(path.c_str(), access, kShareAll, nullptr, disposition,
                                         FILE_ATTRIBUTE_NORMAL | flags, nullptr));
}

}  // namespace

Result<std::optional<FileIdentity>> identify(const std::string& path) {
  // Attribute access only: identifying a file never waits for its writers.
  win32::UniqueHandle h = open_shared(path, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  if (!h.valid()) {
    const DWORD code = GetLastError();
    if (absent(code)) return std::optional<FileIdentity>{};
    return os_error(static_cast<int>(code), "open " + path);
  }
  BY_HANDLE_FILE_INFORMATION info{};
  if (!GetFileInformationByHandle(h.get(), &info)) return win32::last_error("stat " + path);
  return std::optional<FileIdentity>{identity_of(info)};
}

Result<std::optional<FileContents>> read_whole(const std::string& path, std::uint64_t max_size) {
  win32::UniqueHandle h = open_shared(path, GENERIC_READ, OPEN_EXISTING);
  if (!h.valid()) {
    const DWORD code = GetLastError();
    if (absent(code)) return std::optional<FileContents>{};
    return os_error(static_cast<int>(code), "open " + path);
  }
  BY_HANDLE_FILE_INFORMATION info{};
  if (!GetFileInformationByHandle(h.get(), &info)) return win32::last_error("stat " + path);
  if (GetFileType(h.get()) != FILE_TYPE_DISK) return os_error(ERROR_INVALID_FUNCTION, "read " + path);
  FileContents contents;
  contents.identity = identity_of(info);
  if (contents.identity.size > max_size) return os_error(ERROR_FILE_TOO_LARGE, "read " + path);
  contents.settled = settled_at_read(contents.identity);
  contents.bytes.resize(static_cast<std::size_t>(contents.identity.size));
  std::size_t got = 0;
  for (;;) {
    if (got == contents.bytes.size()) {
      if (got >= max_size) {
        char probe = 0;
        DWORD n = 0;
        if (!ReadFile(h.get(), &probe, 1, &n, nullptr)) return win32::last_error("read " + path);
        if (n == 0) break;
        return os_error(ERROR_FILE_TOO_LARGE, "read " + path);
      }
      const auto room = static_cast<std::size_t>(std::min<std::uint64_t>(max_size - got, 65536));
      contents.bytes.resize(got + room);
    }
    const auto want = static_cast<DWORD>(std::min<std::size_t>(contents.bytes.size() - got, 1U << 30));
    DWORD n = 0;
    if (!ReadFile(h.get(), contents.bytes.data() + got, want, &n, nullptr)) {
      return win32::last_error("read " + path);
    }
    if (n == 0) break;
    got += n;
  }
  contents.bytes.resize(got);
  return std::optional<FileContents>{std::move(contents)};
}

Result<FileIdentity> replace_atomically(const std::string& path, std::string_view bytes) {
  // Windows refuses to replace a directory; Wine puts the file in its place
  // and the directory's contents are gone. Refuse before anything is written.
  const DWORD existing = GetFileAttributesA(path.c_str());
  if (existing != INVALID_FILE_ATTRIBUTES && (existing & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return os_error(ERROR_ACCESS_DENIED, "replace directory " + path);
  }
  static std::atomic<unsigned> counter{0};
  const std::string temp = path + ".~" + std::to_string(GetCurrentProcessId()) + "-" +
                           std::to_string(counter.fetch_add(1)) + ".tmp";
  {
    win32::UniqueHandle h(
        CreateFileA(temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!h.valid()) return win32::last_error("create " + temp);
    auto fail = [&temp](const std::string& what) {
      OsError error = win32::last_error(what);
      DeleteFileA(temp.c_str());
      return error;
    };
    std::string_view rest = bytes;
    while (!rest.empty()) {
      DWORD n = 0;
      const auto want = static_cast<DWORD>(std::min<std::size_t>(rest.size(), 1U << 30));
      if (!WriteFile(h.get(), rest.data(), want, &n, nullptr)) {
        h.reset();
        return fail("write " + temp);
      }
      rest.remove_prefix(n);
    }
    if (!FlushFileBuffers(h.get())) {
      h.reset();
      return fail("flush " + temp);
    }
  }
  // ReplaceFile keeps the old file's attributes and security; a file that
  // does not exist yet is simply moved into place.
  bool done = false;
  if (GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
    done = ReplaceFileA(path.c_str(), temp.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                        nullptr) != 0;
  }
  if (!done && !MoveFileExA(temp.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    OsError error = win32::last_error("rename " + temp + " to " + path);
    DeleteFileA(temp.c_str());
    return error;
  }
  auto id = identify(path);
  if (!id) return id.error();
  if (!id.value()) return os_error(ERROR_FILE_NOT_FOUND, "stat " + path);
  return *id.value();
}

bool can_write(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES) {
    return (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) == 0;
  }
  const DWORD dir = GetFileAttributesA(directory_of(path).c_str());
  return dir != INVALID_FILE_ATTRIBUTES && (dir & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

namespace {
// Windows byte-range locks are mandatory: a lock on the data would stop
// readers. The lock lies far beyond any real end of file instead.
constexpr DWORD kLockOffsetHigh = 0x7FFFFFF0;
}  // namespace

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
    CloseHandle(reinterpret_cast<HANDLE>(handle_));  // drops the lock
    handle_ = kNoHandle;
  }
}

Result<FileLock> lock_exclusive(const std::string& path) {
  // The lock belongs to an open file: after the wait the path may name a
  // replacement, and then that one is locked instead.
  for (;;) {
    win32::UniqueHandle h = open_shared(path, GENERIC_READ, OPEN_ALWAYS);
    if (!h.valid()) return win32::last_error("open " + path);
    OVERLAPPED where{};
    where.OffsetHigh = kLockOffsetHigh;
    if (!LockFileEx(h.get(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &where))
      return win32::last_error("lock " + path);
    BY_HANDLE_FILE_INFORMATION locked{};
    if (!GetFileInformationByHandle(h.get(), &locked)) return win32::last_error("stat " + path);
    auto current = identify(path);
    if (current && current.value() && current.value()->device == locked.dwVolumeSerialNumber &&
        current.value()->inode == win32::make_u64(locked.nFileIndexHigh, locked.nFileIndexLow)) {
      return FileLock(reinterpret_cast<std::intptr_t>(h.release()));
    }
  }
}

}  // namespace kerfline::platform::file_io
