// Texts a port set-up reads from outside: mode texts of the "ports" profile
// and IEEE-1284 ids a printer reports. Parsing must stay in the input and
// give settings that are in range.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/serial_port.hpp"
#include "platform/usb_devices.hpp"

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto s = kerfline::platform::port::line_settings_for(text)) {
    check(s->baud > 0);
    check(s->data_bits >= 5 && s->data_bits <= 8);
    check(s->stop_bits == 10 || s->stop_bits == 15 || s->stop_bits == 20);
  }
  for (const char* key : {"MFG", "MDL", "CMD", "DES", "SN"}) {
    check(kerfline::platform::usb::ieee1284_field(text, key).size() <= size);
  }
  return 0;
}
