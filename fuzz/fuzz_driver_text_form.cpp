// The text form of a driver on arbitrary bytes: JSON that does not parse, or
// describes no valid document, is refused with a reason; a document that
// reads is dumped, and its dump reads back to the same dump.
#include <cstddef>
#include <cstdint>
#include <string>

#include "driver_text_form.hpp"

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 65536) return 0;
  const auto form = nlohmann::ordered_json::parse(data, data + size, nullptr, false);
  if (form.is_discarded()) return 0;
  std::string error;
  const auto doc = kerfline::cli::driver_from_json(form, error);
  if (!doc) {
    check(!error.empty());
    return 0;
  }
  const auto dump = kerfline::cli::driver_to_json(*doc);
  const auto again = kerfline::cli::driver_from_json(dump, error);
  check(again != nullptr);
  check(kerfline::cli::driver_to_json(*again) == dump);
  return 0;
}
