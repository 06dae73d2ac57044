// A named block of memory shared by every process that opens the same name:
// the library's cross-process data block. On Windows the block is a named
// file mapping; on POSIX a shared-memory object "/<name>" (shm_open), mode
// 0600, so only processes of the same user share it.
//
// The block starts zero-filled the first time it is opened, and again whenever
// it is opened while no other process has it open: like a data section shared
// between the images of one library, it lives as long as one process uses it.
// (POSIX keeps the object itself until it is removed or the machine restarts;
// only its contents are reset.)
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "platform/os_error.hpp"

namespace kerfline::platform {

class SharedMemory {
 public:
  // Opens the block called name (letters, digits, '.', '-', '_'; a leading
  // '/' is accepted and ignored), creating it when it does not exist, and
  // maps size bytes of it for reading and writing. An existing smaller block
  // is grown with zeros; a larger one is left as it is.
  static Result<SharedMemory> open(std::string_view name, std::size_t size);

  // Removes the name, so that the next open creates a new block. Mappings
  // that are open stay valid. False when no block has that name, and always
  // on Windows, where a name goes with its last handle and cannot be removed
  // before; there an existing smaller block is not grown either (open fails).
  static bool remove(std::string_view name);

  SharedMemory(SharedMemory&&) noexcept;
  SharedMemory& operator=(SharedMemory&&) noexcept;
  ~SharedMemory();  // unmaps; the block stays for the other processes

  // The mapped bytes, aligned to at least a page.
  [[nodiscard]] void* data() const;
  [[nodiscard]] std::size_t size() const;

 private:
  struct Impl;
  explicit SharedMemory(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace kerfline::platform
