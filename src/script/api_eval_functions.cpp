// The function registry as a host's function browser reads it.
#include <cstddef>
#include <cstdint>

#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "script/process_state.hpp"

namespace {

constexpr std::size_t kPtr = sizeof(void*);
static_assert(offsetof(EVALFUNC, pszName) == 0);
static_assert(offsetof(EVALFUNC, nParams) == kPtr);
static_assert(offsetof(EVALFUNC, pszParams) == 2 * kPtr);
static_assert(offsetof(EVALFUNC, pszSecond) == 3 * kPtr);
static_assert(offsetof(EVALFUNC, pszHelp) == 4 * kPtr);
static_assert(offsetof(EVALFUNC, dwFlags) == 5 * kPtr);
static_assert(sizeof(EVALFUNC) == 6 * kPtr);

}  // namespace

extern "C" {

KERFLINE_API int32_t GetEvalFuncCount(void) noexcept {
  return kerfline::platform::guarded_as(
      0, [] { return static_cast<int32_t>(kerfline::script::process_eval().registry().listing().size()); });
}

KERFLINE_API int32_t GetEvalFunc(int32_t index, EVALFUNC* info) noexcept {
  if (info == nullptr) return KERFLINE_BAD_ARGUMENT;
  return kerfline::platform::guarded(KERFLINE_OUT_OF_MEMORY, [index, info] {
    const auto& registry = kerfline::script::process_eval().registry();
    const auto& listing = registry.listing();
    if (index < 0 || static_cast<std::size_t>(index) >= listing.size()) return 0;
    const kerfline::script::FunctionRecord& record = *listing[static_cast<std::size_t>(index)];
    const bool shadowed = registry.shadowed(record);
    info->pszName = record.name.c_str();
    info->nParams = record.parameter_count;
    info->pszParams = record.parameters.c_str();
    info->pszSecond = record.second_text.c_str();
    info->pszHelp = record.help.c_str();
    info->dwFlags = (record.user ? EVALFUNC_USER : 0U) | (shadowed ? EVALFUNC_SHADOWED : 0U);
    return KERFLINE_SUCCESS;
  });
}

}  // extern "C"
