// TEMPORARY: stands in for the text dictionary until it lands; delete then.
#include <cstdint>
#include <string>

namespace kerfline::driver {

std::string dictionary_text(std::uint32_t id) {
  switch (id) {
    case 107: return "1000";
    case 108: return "6";
    case 109: return "22";
    case 9016: return "%DriverName%";
    case 9120: return "%BaseDrv%";
    default: return "";
  }
}

}  // namespace kerfline::driver
