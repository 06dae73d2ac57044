// Blanks cut from both ends or the right end of a text. What counts as a
// blank differs between formats, so each caller names its set.
#pragma once

#include <algorithm>
#include <string_view>

namespace kerfline::platform {

// The blanks of C's isspace in the "C" locale.
inline constexpr std::string_view kWhitespace = " \t\n\v\f\r";

inline std::string_view trim_right(std::string_view text, std::string_view blanks = kWhitespace) {
  return text.substr(0, text.find_last_not_of(blanks) + 1);  // npos + 1 == 0: all blank
}

inline std::string_view trim(std::string_view text, std::string_view blanks = kWhitespace) {
  text = trim_right(text, blanks);
  return text.substr(std::min(text.size(), text.find_first_not_of(blanks)));
}

}  // namespace kerfline::platform
