// The script-engine exports: a host handle wraps one bridge.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/library_memory.hpp"
#include "script/vb_bridge.hpp"

struct KERFLINE_SCRIPT_HOST {
  std::unique_ptr<kerfline::script::VbBridge> bridge;
};

extern "C" {

KERFLINE_API int32_t InitVBEval(KERFLINE_SCRIPT_HOST** host, const char* globalCode) noexcept {
  if (host == nullptr) return KERFLINE_BAD_ARGUMENT;
  *host = nullptr;
  return kerfline::platform::guarded_as<int32_t>(0, [&]() -> int32_t {
    auto bridge = kerfline::script::VbBridge::start(globalCode != nullptr ? globalCode : "");
    if (bridge == nullptr) return 0;
    // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): guarded_as turns bad_alloc into 0.
    *host = new KERFLINE_SCRIPT_HOST{std::move(bridge)};
    return 1;
  });
}

KERFLINE_API char* DoVBEval(KERFLINE_SCRIPT_HOST* host, const char* expression) noexcept {
  if (host == nullptr || expression == nullptr) return nullptr;
  return kerfline::platform::guarded_pointer([&]() -> char* {
    const std::optional<std::string> value = host->bridge->eval(expression);
    if (!value) return nullptr;
    // The host frees the block with the C runtime's free().
    auto* block = static_cast<char*>(kerfline::platform::c_runtime_alloc(value->size() + 1));
    if (block != nullptr) std::memcpy(block, value->c_str(), value->size() + 1);
    return block;
  });
}

KERFLINE_API int32_t FreeVBResult(char* result) noexcept {
  std::free(result);
  return 1;
}

KERFLINE_API int32_t FreeVBEval(KERFLINE_SCRIPT_HOST** host) noexcept {
  if (host == nullptr) return 1;
  delete *host;
  *host = nullptr;
  return 1;
}

}  // extern "C"
