#include "registration/hpgl_text.hpp"

#include <array>
#include <charconv>

namespace kerfline::registration {

void append_fixed(std::string& out, double v) {
  // The longest fixed text of a double: 309 digits, sign, point, 6 decimals.
  std::array<char, 340> buf{};
  const auto r = std::to_chars(buf.data(), buf.data() + buf.size(), v, std::chars_format::fixed, 6);
  out.append(buf.data(), r.ptr);
}

void append_int(std::string& out, std::int64_t v) {
  std::array<char, 24> buf{};
  const auto r = std::to_chars(buf.data(), buf.data() + buf.size(), v);
  out.append(buf.data(), r.ptr);
}

void append_circle(std::string& out, double pen_x, double x, double y) {
  out += "PU ";
  append_fixed(out, pen_x);
  out += ',';
  append_fixed(out, y);
  out += ";\r\nAA ";
  append_fixed(out, x);
  out += ',';
  append_fixed(out, y);
  out += ",360;\r\n";
}

}  // namespace kerfline::registration
