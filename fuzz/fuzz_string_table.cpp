// String tables ("kerfline.dlx", "cutterx.dlx") come from the suite's Res
// directory: any bytes must parse without a crash, and every answer stays
// within the 511-byte bound.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "frame/string_table.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto table = kerfline::frame::StringTable::parse(text);
  for (std::uint32_t id : {0u, 1u, 7u, 1200u, 35589u}) {
    const auto found = table.find(id);
    if (found && found->size() > kerfline::frame::StringTable::kMaxText) std::abort();
  }
  return 0;
}
