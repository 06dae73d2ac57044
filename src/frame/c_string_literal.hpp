// What the two text-table readers (string tables and PO files) share: their
// lines, and double-quoted strings with C escapes as they write their texts.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kerfline::frame {

// Reads the literal that starts at line[pos] (which must be '"') and moves
// pos past its closing quote. Escapes: \a \b \f \n \r \t \v \\ \' \" \?,
// octal \o, \oo, \ooo (at most 0377) and hex \xh, \xhh. Nothing when the
// literal is unterminated, uses another escape, or would hold a NUL byte
// (texts are handed out as C strings).
std::optional<std::string> read_c_literal(std::string_view line, std::size_t& pos);

// Skips blanks and tabs from pos; returns the new position.
std::size_t skip_blanks(std::string_view line, std::size_t pos);

// Calls each(line) for every line of contents, without its "\n" or "\r\n".
template <typename Each>
void for_each_line(std::string_view contents, Each&& each) {
  std::size_t start = 0;
  while (start < contents.size()) {
    std::size_t end = contents.find('\n', start);
    if (end == std::string_view::npos) end = contents.size();
    std::string_view line = contents.substr(start, end - start);
    start = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    each(line);
  }
}

}  // namespace kerfline::frame
