// A decimal number at the start of a text, read the way the C library's
// strtod reads one: leading blanks, one optional sign, then the number
// (from_chars' general form, so also "inf" and "nan").
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kerfline::platform {

struct DecimalText {
  double value = 0;           // beyond double: infinity of its sign, or 0 for a negative exponent
  std::size_t end = 0;        // index just past the number
  bool out_of_range = false;  // the text's number does not fit a double
};

// Nothing when no number starts the text.
std::optional<DecimalText> read_decimal(std::string_view text);

}  // namespace kerfline::platform
