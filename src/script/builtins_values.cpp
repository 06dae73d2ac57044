// How the built-ins read and print values. Everything is locale-free:
// numbers are read by hand or with from_chars and printed with to_chars.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "script/builtins.hpp"
#include "script/expression_parser.hpp"
#include "script/limits.hpp"
#include "script/numbers.hpp"

namespace kerfline::script {
namespace {

// Enough for any plotter unit, few enough that 12.01 - 12 prints as 0.01.
constexpr int kDoubleDecimals = 10;

bool is_blank(char c) { return c == ' ' || (c >= 0x09 && c <= 0x0d); }

// A finite value as 15 significant digits and the power of ten of the first.
struct Significant {
  bool negative = false;
  std::string digits;  // 15 digits
  int exponent = 0;
};

Significant significant(double value) {
  Significant s;
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, 14);
  std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
  if (!text.empty() && text.front() == '-') {
    s.negative = true;
    text.remove_prefix(1);
  }
  const std::size_t e = text.find('e');
  for (const char c : text.substr(0, e)) {
    if (c != '.') s.digits.push_back(c);
  }
  std::string_view exponent = text.substr(e + 1);
  if (!exponent.empty() && exponent.front() == '+') exponent.remove_prefix(1);
  std::from_chars(exponent.data(), exponent.data() + exponent.size(), s.exponent);
  return s;
}

// The whole and fractional digits of a significant form, written out.
void split_plain(const Significant& s, std::string& whole, std::string& fraction) {
  const int digit_count = static_cast<int>(s.digits.size());
  if (s.exponent >= 0) {
    const int whole_count = s.exponent + 1;
    if (whole_count >= digit_count) {
      whole = s.digits + std::string(static_cast<std::size_t>(whole_count - digit_count), '0');
      fraction.clear();
    } else {
      whole = s.digits.substr(0, static_cast<std::size_t>(whole_count));
      fraction = s.digits.substr(static_cast<std::size_t>(whole_count));
    }
  } else {
    whole = "0";
    fraction = std::string(static_cast<std::size_t>(-s.exponent - 1), '0') + s.digits;
  }
}

bool all_zero(std::string_view digits) { return digits.find_first_not_of('0') == std::string_view::npos; }

}  // namespace

bool is_number_text(std::string_view value) { return is_script_number(value); }

bool is_true(std::string_view value) {
  if (value.empty()) return false;
  if (!is_number_text(value)) return true;
  return text_to_number(value) != 0.0;
}

std::int64_t text_to_int64(std::string_view value) {
  std::size_t i = 0;
  while (i < value.size() && is_blank(value[i])) ++i;
  bool negative = false;
  if (i < value.size() && (value[i] == '+' || value[i] == '-')) negative = value[i++] == '-';
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  std::int64_t result = 0;
  for (; i < value.size() && value[i] >= '0' && value[i] <= '9'; ++i) {
    const int digit = value[i] - '0';
    if (result > (kMax - digit) / 10) return negative ? std::numeric_limits<std::int64_t>::min() : kMax;
    result = result * 10 + digit;
  }
  return negative ? -result : result;
}

std::int32_t text_to_int(std::string_view value) {
  const std::int64_t wide = text_to_int64(value);
  if (wide > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
  if (wide < std::numeric_limits<std::int32_t>::min()) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(wide);
}

std::string whole_number_text(double value) {
  // Negated comparisons so that NaN takes the out-of-range branch too.
  if (!(value > -2147483649.0 && value < 2147483648.0)) return "-2147483648";
  return std::to_string(static_cast<std::int32_t>(std::trunc(value)));
}

std::string double_text(double value) {
  std::string text = rounded_text(value, kDoubleDecimals);
  if (text == "???") return text;
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string rounded_text(double value, int decimals) {
  if (!std::isfinite(value)) return "???";
  if (decimals < 0) decimals = 0;
  if (decimals > 100) decimals = 100;
  const auto places = static_cast<std::size_t>(decimals);
  const Significant s = significant(value);
  std::string whole;
  std::string fraction;
  split_plain(s, whole, fraction);
  const bool round_up = fraction.size() > places && fraction[places] >= '5';
  fraction.resize(places, '0');
  std::string digits = whole + fraction;
  if (round_up) {
    std::size_t i = digits.size();
    while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
    if (i == 0) {
      digits.insert(digits.begin(), '1');
    } else {
      ++digits[i - 1];
    }
  }
  std::string out;
  if (s.negative && !all_zero(digits)) out.push_back('-');
  out.append(digits, 0, digits.size() - places);
  if (places > 0) out += "." + digits.substr(digits.size() - places);
  return out;
}

std::uint32_t text_to_dword(std::string_view value) {
  std::size_t i = 0;
  while (i < value.size() && is_blank(value[i])) ++i;
  if (i + 1 < value.size() && value[i] == '0' && (value[i + 1] == 'x' || value[i + 1] == 'X')) {
    std::uint32_t result = 0;
    const char* first = value.data() + i + 2;
    const auto parsed = std::from_chars(first, value.data() + value.size(), result, 16);
    if (parsed.ec == std::errc::result_out_of_range) return std::numeric_limits<std::uint32_t>::max();
    return result;
  }
  std::int64_t wide = text_to_int64(value);
  wide = std::max<std::int64_t>(wide, std::numeric_limits<std::int32_t>::min());
  wide = std::min<std::int64_t>(wide, std::numeric_limits<std::uint32_t>::max());
  return static_cast<std::uint32_t>(wide);
}

void append_capped(std::string& out, std::string_view piece) {
  if (out.size() >= kMaxFunctionResultBytes) return;
  out.append(piece.substr(0, kMaxFunctionResultBytes - out.size()));
}

}  // namespace kerfline::script
