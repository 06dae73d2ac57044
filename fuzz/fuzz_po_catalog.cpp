// Translation files are PO files written by translators' tools or by hand:
// any bytes must parse without a crash, and a lookup must stay safe.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "frame/po_catalog.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto catalog = kerfline::frame::PoCatalog::parse(text);
  (void)catalog.find("Knife");
  (void)catalog.find(text.substr(0, 32));
  return 0;
}
