#include "message_boxes.hpp"

#include <cstdio>
#include <cstring>
#include <string>

#include "cli_io.hpp"
#include "kerfline/kerfline.h"

namespace kerfline::cli {
namespace {

int g_error_boxes = 0;

int show(void* /*context*/, const char* text, const char* caption, uint32_t type) {
  if ((type & 0xF0U) == KERFLINE_MB_ICONERROR) ++g_error_boxes;
  const std::size_t n = std::strlen(caption);
  const bool has_colon = n > 0 && caption[n - 1] == ':';
  std::fprintf(stderr, "%s%s %s\n", to_terminal(caption).c_str(), has_colon ? "" : ":",
               to_terminal(text).c_str());
  switch (type & 0x0FU) {
    case KERFLINE_MB_YESNO:
    case KERFLINE_MB_YESNOCANCEL:
      return KERFLINE_IDNO;
    default:
      return KERFLINE_IDOK;
  }
}

}  // namespace

void install_message_boxes() {
  KERFLINE_HOST_HOOKS hooks{};
  hooks.cbSize = sizeof(hooks);
  hooks.pfnMessageBox = show;
  KerflineSetHostHooks(&hooks);
}

int error_boxes_shown() { return g_error_boxes; }

}  // namespace kerfline::cli
