#include "frame/c_string_literal.hpp"

namespace kerfline::frame {
namespace {

int hex_value(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool is_octal(char c) { return c >= '0' && c <= '7'; }

// Decodes the escape after a backslash at line[pos]; moves pos past it.
std::optional<char> read_escape(std::string_view line, std::size_t& pos) {
  if (pos >= line.size()) return std::nullopt;
  const char c = line[pos++];
  switch (c) {
    case 'a':
      return '\a';
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case 'v':
      return '\v';
    case '\\':
    case '\'':
    case '"':
    case '?':
      return c;
    case 'x': {
      int value = 0;
      int digits = 0;
      while (digits < 2 && pos < line.size() && hex_value(line[pos]) >= 0) {
        value = value * 16 + hex_value(line[pos++]);
        ++digits;
      }
      if (digits == 0) return std::nullopt;
      return static_cast<char>(value);
    }
    default:
      break;
  }
  if (!is_octal(c)) return std::nullopt;
  int value = c - '0';
  for (int digits = 1; digits < 3 && pos < line.size() && is_octal(line[pos]); ++digits) {
    value = value * 8 + (line[pos++] - '0');
  }
  if (value > 0xFF) return std::nullopt;
  return static_cast<char>(value);
}

}  // namespace

std::size_t skip_blanks(std::string_view line, std::size_t pos) {
  while (pos < line.size() && (line[pos] == ' ' || line[pos] == '\t')) ++pos;
  return pos;
}

std::optional<std::string> read_c_literal(std::string_view line, std::size_t& pos) {
  if (pos >= line.size() || line[pos] != '"') return std::nullopt;
  std::size_t at = pos + 1;
  std::string out;
  while (at < line.size()) {
    const char c = line[at++];
    if (c == '"') {
      pos = at;
      return out;
    }
    if (c != '\\') {
      out.push_back(c);
      continue;
    }
    const auto decoded = read_escape(line, at);
    if (!decoded || *decoded == '\0') return std::nullopt;
    out.push_back(*decoded);
  }
  return std::nullopt;  // no closing quote on this line
}

}  // namespace kerfline::frame
