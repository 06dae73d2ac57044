// Layout checks of the mark records: a host compiled against the header must
// find every field where the library writes it, on 32-bit and 64-bit builds.
#include <cstddef>

#include "kerfline/kerfline.h"

namespace {
constexpr std::size_t kPtr = sizeof(void*);

// Mark entry: seven 32-bit words, doubles on 4-byte boundaries.
static_assert(offsetof(PROBEPOS, x) == 0);
static_assert(offsetof(PROBEPOS, y) == 8);
static_assert(offsetof(PROBEPOS, dSize) == 16);
static_assert(offsetof(PROBEPOS, nFlag) == 24);
static_assert(sizeof(PROBEPOS) == 28);
static_assert(alignof(PROBEPOS) == 4);

// Job entry: 73 words on 32-bit builds (the pointer is one word there).
static_assert(offsetof(PROBEJOB, nFlags) == 0);
static_assert(offsetof(PROBEJOB, dRotation) == 4);
static_assert(offsetof(PROBEJOB, dMarkSize) == 12);
static_assert(offsetof(PROBEJOB, nMarkCount) == 20);
static_assert(offsetof(PROBEJOB, pMarks) == 24);
static_assert(offsetof(PROBEJOB, dwJobData) == 24 + kPtr);
static_assert(sizeof(PROBEJOB) == 24 + kPtr + 66 * sizeof(int32_t));
static_assert(kPtr != 4 || sizeof(PROBEJOB) == 73 * sizeof(int32_t));

// Set record: eight words on 32-bit builds; on 64-bit the pointer takes its
// natural place after one word of padding.
static_assert(offsetof(PROBEDATA, dwFlags) == 0);
static_assert(offsetof(PROBEDATA, nJobCount) == 4);
static_assert(offsetof(PROBEDATA, dwReserved) == 8);
static_assert(offsetof(PROBEDATA, pJobs) == (kPtr == 4 ? 12 : 16));
static_assert(offsetof(PROBEDATA, dwReserved2) == offsetof(PROBEDATA, pJobs) + kPtr);
static_assert(sizeof(PROBEDATA) == (kPtr == 4 ? 32 : 40));

static_assert(offsetof(MESHPOINT, x) == 0);
static_assert(offsetof(MESHPOINT, y) == 8);
static_assert(sizeof(MESHPOINT) == 16);

// Digitiser position: two doubles, as the scanner plug-in fills them.
static_assert(offsetof(DIGITIZERPOS, x) == 0);
static_assert(offsetof(DIGITIZERPOS, y) == 8);
static_assert(sizeof(DIGITIZERPOS) == 16);
}  // namespace
