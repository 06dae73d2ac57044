// Defaults for a host that installed no hooks: a library without windows
// must never block waiting for a user who cannot see a box.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/host_hooks.hpp"

namespace kerfline::platform::host::defaults {

int message_box(const std::string& text, const std::string& caption, std::uint32_t type) {
  // A caption that already ends in a colon gets no second one.
  const bool has_colon = !caption.empty() && caption.back() == ':';
  std::fprintf(stderr, "%s%s %s\n", caption.c_str(), has_colon ? "" : ":", text.c_str());
  std::fflush(stderr);
  switch (type & 0x0FU) {
    case KERFLINE_MB_YESNO:
    case KERFLINE_MB_YESNOCANCEL:
      return KERFLINE_IDNO;
    default:
      return KERFLINE_IDOK;
  }
}

bool is_key_down(int virtual_key) {
  if (virtual_key != KERFLINE_VK_CONTROL && virtual_key != KERFLINE_VK_SHIFT) return false;
  const char* diag = std::getenv("KERFLINE_DIAG");
  return diag != nullptr && std::strcmp(diag, "1") == 0;
}

void pump_messages() {}

std::intptr_t broadcast(const std::string& /*message*/, std::uintptr_t /*w_param*/, std::intptr_t /*l_param*/,
                        bool /*wait_for_answer*/) {
  return -1;
}

void set_wait_cursor(bool /*on*/) {}

}  // namespace kerfline::platform::host::defaults
