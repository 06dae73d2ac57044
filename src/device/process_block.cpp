// The one block per process that SharedDataMan works on.
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "device/shared_block.hpp"
#include "platform/shared_memory.hpp"

namespace kerfline::device {
namespace {

constexpr const char* kDefaultName = "kerfline";

struct ProcessBlock {
  std::optional<platform::SharedMemory> memory;
  // Used when the shared block cannot be opened, so that the calls of this
  // process still work among themselves.
  std::unique_ptr<SharedBlock> fallback;
  SharedBlock* block = nullptr;
};

ProcessBlock* open_process_block() {
  // Owned until it is complete: running out of memory half way leaks nothing,
  // and the next call tries again.
  auto holder = std::make_unique<ProcessBlock>();
  const char* env = std::getenv("KERFLINE_SHM_NAME");
  const std::string name = env != nullptr && *env != '\0' ? env : kDefaultName;
  if (auto opened = platform::SharedMemory::open(name, sizeof(SharedBlock))) {
    holder->memory.emplace(std::move(opened.value()));
    holder->block = static_cast<SharedBlock*>(holder->memory->data());
  } else {
    holder->fallback = std::make_unique<SharedBlock>();
    holder->block = holder->fallback.get();
  }
  return holder.release();
}

}  // namespace

SharedBlock& process_shared_block() {
  // Deliberately never released: another library or a static destructor of
  // the host may still call in while the process ends.
  static ProcessBlock* const holder = open_process_block();
  return *holder->block;
}

}  // namespace kerfline::device
