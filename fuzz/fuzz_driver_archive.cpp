// Feeds arbitrary bytes to the driver-file reader. A refusal must say why;
// whatever it accepts is stored and the stored bytes are read again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "driver/vm6drv.hpp"

namespace {

// A few standard texts, so that items with text numbers and populating
// groups take their paths.
std::string texts(std::uint32_t id) {
  switch (id) {
    case 107:
      return "1000";
    case 108:
      return "6";
    case 109:
      return "2";
    case 122:
      return "9000";
    case 123:
      return "57";
    case 124:
      return "8";
    case 1000:
      return "%CI_ArcLimit%";
    case 1004:
      return "(AL:10e6)";
    case 1005:
      return "String";
    case 1006:
      return "%CI_AltHPGL%";
    case 9016:
      return "%DriverName%";
    case 9020:
      return "String";
    default:
      return "";
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  kerfline::driver::CVm6Drv doc(texts);
  if (!doc.ReadFromBytes(bytes)) {
    if (doc.LastError().empty()) std::abort();
    return 0;
  }
  const std::string stored = doc.WriteToBytes();
  kerfline::driver::CVm6Drv again(texts);
  // Not every accepted file reads back: a cut instruction without text
  // number loses its texts' alignment by design.
  (void)again.ReadFromBytes(stored);
  return 0;
}
