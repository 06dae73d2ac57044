#include "frame/dialog_format.hpp"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace kerfline::frame {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Up to two digits at pos; false for three or more.
bool read_small_number(std::string_view text, std::size_t& pos, int& out) {
  out = 0;
  std::size_t digits = 0;
  while (pos < text.size() && is_digit(text[pos])) {
    if (++digits > 2) return false;
    out = out * 10 + (text[pos] - '0');
    ++pos;
  }
  return true;
}

std::string integer_digits(double number, int precision) {
  long long v = 0;
  if (std::isnan(number)) {
    v = 0;
  } else if (number >= 9.2e18) {
    v = std::numeric_limits<long long>::max();
  } else if (number <= -9.2e18) {
    v = std::numeric_limits<long long>::min();
  } else {
    v = static_cast<long long>(number);
  }
  char buf[32];
  const auto res = std::to_chars(buf, buf + sizeof buf, v);
  std::string digits(buf, res.ptr);
  const bool negative = !digits.empty() && digits.front() == '-';
  if (negative) digits.erase(0, 1);
  if (precision >= 0 && static_cast<int>(digits.size()) < precision)
    digits.insert(0, static_cast<std::size_t>(precision) - digits.size(), '0');
  if (precision == 0 && v == 0) digits.clear();
  return negative ? "-" + digits : digits;
}

std::string floating(double number, char conversion, int precision) {
  if (precision < 0) precision = 6;
  std::chars_format how = std::chars_format::fixed;
  switch (conversion) {
    case 'e':
    case 'E':
      how = std::chars_format::scientific;
      break;
    case 'g':
    case 'G':
      how = std::chars_format::general;
      if (precision == 0) precision = 1;
      break;
    default:
      break;
  }
  // Fixed notation of 1e308 with 99 decimals needs about 410 bytes.
  char buf[512];
  const auto res = std::to_chars(buf, buf + sizeof buf, number, how, precision);
  if (res.ec != std::errc()) return "0";
  std::string out(buf, res.ptr);
  if (conversion == 'E' || conversion == 'G' || conversion == 'F') {
    for (char& c : out) {
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
  }
  return out;
}

}  // namespace

std::optional<DialogFormat> parse_dialog_format(std::string_view text) {
  DialogFormat f;
  std::string* out = &f.before;
  for (std::size_t pos = 0; pos < text.size();) {
    const char c = text[pos++];
    if (c != '%') {
      out->push_back(c);
      continue;
    }
    if (pos < text.size() && text[pos] == '%') {
      out->push_back('%');
      ++pos;
      continue;
    }
    if (f.conversion != 0) return std::nullopt;  // a second conversion
    for (; pos < text.size(); ++pos) {
      const char flag = text[pos];
      if (flag == '-') {
        f.left = true;
      } else if (flag == '+') {
        f.plus = true;
      } else if (flag == ' ') {
        f.space = true;
      } else if (flag == '0') {
        f.zero = true;
      } else if (flag != '#') {
        break;
      }
    }
    if (!read_small_number(text, pos, f.width)) return std::nullopt;
    if (pos < text.size() && text[pos] == '.') {
      ++pos;
      if (!read_small_number(text, pos, f.precision)) return std::nullopt;
    }
    if (pos >= text.size()) return std::nullopt;
    switch (text[pos]) {
      case 'd':
      case 'i':
      case 'u':
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G':
      case 's':
        f.conversion = text[pos++];
        break;
      default:
        return std::nullopt;  // a stray "%"
    }
    out = &f.after;
  }
  return f;
}

std::string apply_dialog_format(const DialogFormat& f, double number, const std::string& text) {
  if (f.conversion == 0) return f.before + text;
  std::string body;
  bool numeric = true;
  switch (f.conversion) {
    case 's':
      numeric = false;
      body = f.precision >= 0 ? text.substr(0, static_cast<std::size_t>(f.precision)) : text;
      break;
    case 'd':
    case 'i':
    case 'u':
      body = integer_digits(number, f.precision);
      break;
    default:
      body = floating(number, f.conversion, f.precision);
      break;
  }
  std::string sign;
  if (numeric) {
    if (!body.empty() && body.front() == '-') {
      sign = "-";
      body.erase(0, 1);
    } else if (f.plus) {
      sign = "+";
    } else if (f.space) {
      sign = " ";
    }
  }
  const std::size_t width = static_cast<std::size_t>(f.width);
  const std::size_t used = sign.size() + body.size();
  std::string field;
  if (used >= width) {
    field = sign + body;
  } else if (f.left) {
    field = sign + body + std::string(width - used, ' ');
  } else if (f.zero && numeric && std::isfinite(number)) {
    field = sign + std::string(width - used, '0') + body;
  } else {
    field = std::string(width - used, ' ') + sign + body;
  }
  return f.before + field + f.after;
}

}  // namespace kerfline::frame
