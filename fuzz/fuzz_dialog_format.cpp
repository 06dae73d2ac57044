// Dialog format texts from driver files on arbitrary bytes: parsing never
// reads outside the text, and a format that parses shows a value in bounded
// space.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "frame/dialog_format.hpp"

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  double number = 0;
  if (size >= sizeof number) {
    std::memcpy(&number, data, sizeof number);
    data += sizeof number;
    size -= sizeof number;
  }
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto format = kerfline::frame::parse_dialog_format(text);
  if (!format) return 0;
  check(format->width <= 99 && format->precision <= 99);
  check(format->before.size() + format->after.size() <= text.size());
  const std::string value(text.substr(0, text.size() / 2));
  const std::string shown = kerfline::frame::apply_dialog_format(*format, number, value);
  // The field is at most a fixed double text (about 410 bytes), the width or the value.
  check(shown.size() <= format->before.size() + format->after.size() + 512 + value.size());
  return 0;
}
