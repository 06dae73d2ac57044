// Whole-file reads and writes for files that several processes share (the
// INI files): reads that know which version of the file they saw, writes
// that replace the file atomically and durably, and an exclusive lock that
// serialises read-modify-write cycles between processes and threads.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/os_error.hpp"

namespace kerfline::platform::file_io {

// Which version of a file a path showed: a file replaced or changed on disk
// gets a different identity (the modification time is kept to the
// nanosecond where the file system has it).
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t mtime_ns = 0;

  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

struct FileContents {
  std::string bytes;
  FileIdentity identity;  // of the version the bytes were read from
  // True when the modification time lay far enough in the past at the read
  // that any later change must give a different identity. A file changed in
  // place within the same tick of the file system's clock keeps its size and
  // time, so a fresh file's identity alone does not prove it unchanged.
  bool settled = false;
};

// The identity of the file at `path`; nothing when there is no such file.
Result<std::optional<FileIdentity>> identify(const std::string& path);

// The whole file; nothing when there is no such file. Fails for a directory
// or a file larger than max_size (nothing is allocated for it).
Result<std::optional<FileContents>> read_whole(const std::string& path, std::uint64_t max_size);

// Replaces the file with `bytes`: a temporary file in the same directory is
// written and flushed to disk, then renamed over the file, and the directory
// is flushed. Readers see the old or the new file, never a mix, whatever
// happens to the process. An existing file keeps its permissions; a symbolic
// link is followed. Returns the identity of the new file.
Result<FileIdentity> replace_atomically(const std::string& path, std::string_view bytes);

// True when the file may be changed by this process: it exists and is
// writable, or it does not exist and its directory is writable.
bool can_write(const std::string& path);

// An exclusive advisory lock on a file, held until destroyed. Every writer of
// the file takes it before reading the file it is about to change; the lock
// follows the path across replace_atomically (a waiter that finds the file
// replaced locks the new one).
class FileLock {
 public:
  FileLock() = default;
  ~FileLock();
  FileLock(FileLock&& other) noexcept;
  FileLock& operator=(FileLock&& other) noexcept;
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  [[nodiscard]] bool held() const { return handle_ != kNoHandle; }

 private:
  friend Result<FileLock> lock_exclusive(const std::string& path);
  static constexpr std::intptr_t kNoHandle = -1;
  explicit FileLock(std::intptr_t handle) : handle_(handle) {}
  void release();
  std::intptr_t handle_ = kNoHandle;
};

// Waits for the lock of the file at `path`, creating an empty file when there
// is none.
Result<FileLock> lock_exclusive(const std::string& path);

}  // namespace kerfline::platform::file_io
