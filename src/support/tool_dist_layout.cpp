// TOOLDIST keeps its field order and widths for hosts on 32-bit and 64-bit
// builds.
#include <cstddef>

#include "kerfline/job_statistics.hpp"

namespace {
static_assert(offsetof(TOOLDIST, dDist) == 0);
static_assert(offsetof(TOOLDIST, szTool) == 8);
static_assert(sizeof(TOOLDIST::dDist) == 8);
static_assert(sizeof(TOOLDIST) >= 8 + sizeof(char*));
}  // namespace
