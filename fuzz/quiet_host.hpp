// Harnesses run unattended: a message box the library shows is answered at
// once instead of waiting for a user.
#pragma once

#include <cstdint>

#include "kerfline/kerfline.h"

namespace kerfline::fuzz {

inline void answer_message_boxes_at_once() {
  KERFLINE_HOST_HOOKS hooks{};
  hooks.cbSize = sizeof hooks;
  hooks.pfnMessageBox = [](void*, const char*, const char*, std::uint32_t) -> int { return KERFLINE_IDOK; };
  KerflineSetHostHooks(&hooks);
}

}  // namespace kerfline::fuzz
