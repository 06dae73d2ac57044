// The format text of a dialog variable: a printf-like text with at most one
// conversion, applied without the C library's locale.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kerfline::frame {

struct DialogFormat {
  std::string before;   // text before the conversion ("%%" already made "%")
  std::string after;    // text after it
  char conversion = 0;  // d i u f F e E g G s; 0: the format has none
  bool left = false;    // '-'
  bool plus = false;    // '+'
  bool space = false;   // ' '
  bool zero = false;    // '0'
  int width = 0;        // at most 99
  int precision = -1;   // at most 99; -1 when not given
};

// Parses the format; nothing when it is broken: a "%" that starts no
// conversion, a second conversion, a width or precision of three digits.
// Cost linear in the text.
std::optional<DialogFormat> parse_dialog_format(std::string_view text);

// The value as the format shows it. `text` is the value as stored (used by
// %s and by a format without conversion, which shows it after its own text);
// `number` is its numeric reading. Integer conversions truncate toward zero.
std::string apply_dialog_format(const DialogFormat& format, double number, const std::string& text);

}  // namespace kerfline::frame
