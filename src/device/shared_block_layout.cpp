// The shared block and the blob descriptor keep one layout in every process
// and build (32-bit and 64-bit).
#include <atomic>
#include <cstddef>

#include "device/shared_block.hpp"

namespace kerfline::device {
namespace {

static_assert(sizeof(SharedBlock) == kSharedBlockSize);
static_assert(offsetof(SharedBlock, flags) == 0);
static_assert(offsetof(SharedBlock, blob_size) == 4);
static_assert(offsetof(SharedBlock, first) == 8);
static_assert(offsetof(SharedBlock, second) == 56);
static_assert(offsetof(SharedBlock, third) == 104);
static_assert(offsetof(SharedBlock, value_d) == 152);
static_assert(offsetof(SharedBlock, value_e) == 160);
static_assert(offsetof(SharedBlock, value_f) == 168);
static_assert(offsetof(SharedBlock, value_g) == 176);
static_assert(offsetof(SharedBlock, value_h) == 184);
static_assert(offsetof(SharedBlock, value_i) == 192);
static_assert(offsetof(SharedBlock, blob) == 200);
static_assert(offsetof(SharedBlock, text) == 712);
static_assert(sizeof(SharedBlock::text) == KERFLINE_SHARED_TEXT_SIZE);
static_assert(sizeof(double) == 8);
// Flags are changed with atomic read-modify-writes on the mapped memory; a
// lock-based fallback would only lock within one process.
static_assert(std::atomic_ref<std::uint32_t>::is_always_lock_free);

static_assert(offsetof(SHAREDBLOB, nSize) == 0);
static_assert(offsetof(SHAREDBLOB, pData) == sizeof(void*));
static_assert(sizeof(SHAREDBLOB) == 2 * sizeof(void*));

}  // namespace
}  // namespace kerfline::device
