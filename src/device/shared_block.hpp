// The layout of the block shared between processes, and the operations of
// SharedDataMan on it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kerfline/kerfline.h"

namespace kerfline::device {

inline constexpr std::size_t kSharedBlockSize = 4096;
inline constexpr std::size_t kSharedBlobSize = KERFLINE_SHARED_BLOB_SIZE;
inline constexpr std::size_t kSharedEntries = 6;

// Every process that maps the block, 32-bit or 64-bit, must see the same
// offsets: the padding after value_g is explicit so that H and I sit on
// 8-byte boundaries whatever alignment the compiler gives a double.
struct SharedBlock {
  std::uint32_t flags;
  std::uint32_t blob_size;
  double first[kSharedEntries];
  double second[kSharedEntries];
  double third[kSharedEntries];
  double value_d;
  double value_e;
  double value_f;
  std::int32_t value_g;
  std::uint32_t padding;
  double value_h;
  double value_i;
  unsigned char blob[kSharedBlobSize];
  char text[kSharedBlockSize - 712];
};

// Runs one SharedDataMan operation on a block (the contract is the one of the
// export). The block may be written by other processes meanwhile: nothing read
// from it is trusted to stay within bounds.
std::int32_t run_shared_operation(SharedBlock& block, std::int32_t operation, std::uintptr_t argument);

// The block this process shares with the others, opened at the first call
// (see SharedDataMan for the name); never released while the process runs.
SharedBlock& process_shared_block();

}  // namespace kerfline::device
