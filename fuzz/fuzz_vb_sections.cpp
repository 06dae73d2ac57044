// Script sections on arbitrary texts and arbitrary global code: the engine's
// sandbox and limits must hold whatever a driver file or a device sends (no
// crash, no leak, bounded time). The input is the text, then optionally a
// NUL and the global code.
#include <cstddef>
#include <cstdint>
#include <string>

#include "kerfline/kerfline.h"
#include "quiet_host.hpp"
#include "script/vb_sections.hpp"

namespace {

bool set_up() {
  kerfline::fuzz::answer_message_boxes_at_once();
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool ready = set_up();
  (void)ready;
  if (size > 4096) return 0;
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t split = input.find('\0');
  const std::string text = input.substr(0, split);
  const std::string global_code = split == std::string::npos ? std::string() : input.substr(split + 1);
  (void)kerfline::script::expand_vb_sections(text, global_code);
  return 0;
}
