// The shared block as another process may have left it - any bytes at all -
// read through every SharedDataMan operation that copies out of it: nothing
// is copied past the caller's documented room, whatever sizes and texts the
// block claims.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "device/shared_block.hpp"

namespace dev = kerfline::device;

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

std::uintptr_t address(const void* p) { return reinterpret_cast<std::uintptr_t>(p); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto block = std::make_unique<dev::SharedBlock>();
  std::memcpy(block.get(), data, std::min(size, sizeof(dev::SharedBlock)));

  // Exactly the room each operation documents, so that ASan sees one byte more.
  const auto text = std::make_unique<char[]>(sizeof block->text);
  check(dev::run_shared_operation(*block, 13, address(text.get())) == 1);
  check(std::memchr(text.get(), '\0', sizeof block->text) != nullptr);

  const std::uint32_t asked = size > sizeof(dev::SharedBlock) ? data[sizeof(dev::SharedBlock)] * 4u : 512u;
  const auto bytes = std::make_unique<unsigned char[]>(std::min<std::size_t>(asked, dev::kSharedBlobSize));
  SHAREDBLOB blob{asked, bytes.get()};
  check(dev::run_shared_operation(*block, 5, address(&blob)) == 1);
  check(blob.nSize <= dev::kSharedBlobSize);

  for (std::int32_t op = 1; op <= 56; ++op) {
    if (op == 4 || op == 5 || op == 12 || op == 13) continue;
    double value[2] = {};
    const std::int32_t r = dev::run_shared_operation(*block, op, address(value));
    check(op == 3 ? (r == 0 || r == 1) : r == (op <= 55 ? 1 : 0));
  }
  // Writing back what was read keeps the block within its own bounds too.
  check(dev::run_shared_operation(*block, 12, address(text.get())) == 1);
  check(dev::run_shared_operation(*block, 4, address(&blob)) == 1);
  return 0;
}
