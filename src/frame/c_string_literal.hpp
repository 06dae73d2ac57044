// Double-quoted strings with C escapes, as string tables and PO files write
// their texts.
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

}  // namespace kerfline::frame
