#include "script/numbers.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace kerfline::script {
namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// The power of ten of the first significant digit of "digits[.digits][e..]".
long decimal_exponent(std::string_view number) {
  long exponent = 0;
  const std::size_t e = number.find_first_of("eE");
  if (e != std::string_view::npos) {
    long parsed = 0;
    const char* first = number.data() + e + 1;
    if (*first == '+') ++first;
    std::from_chars(first, number.data() + number.size(), parsed);
    exponent = parsed;
    number = number.substr(0, e);
  }
  const std::size_t point = number.find('.');
  const std::string_view whole = number.substr(0, point);
  const std::size_t significant = whole.find_first_not_of('0');
  if (significant != std::string_view::npos)
    return exponent + static_cast<long>(whole.size() - significant) - 1;
  const std::string_view fraction =
      point == std::string_view::npos ? std::string_view{} : number.substr(point + 1);
  const std::size_t first_digit = fraction.find_first_not_of('0');
  return exponent - static_cast<long>(first_digit == std::string_view::npos ? 0 : first_digit) - 1;
}

}  // namespace

double text_to_number(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= 0x09 && text[i] <= 0x0d))) ++i;
  const std::size_t start = i;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  const std::size_t digits_start = i;
  while (i < text.size() && is_digit(text[i])) ++i;
  if (i < text.size() && text[i] == '.') {
    ++i;
    while (i < text.size() && is_digit(text[i])) ++i;
  }
  if (i == digits_start || (i == digits_start + 1 && text[digits_start] == '.')) return 0.0;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    std::size_t j = i + 1;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
    if (j < text.size() && is_digit(text[j])) {
      while (j < text.size() && is_digit(text[j])) ++j;
      i = j;
    }
  }
  // from_chars takes no '+'; a '-' it reads itself.
  const std::size_t from = text[start] == '+' ? start + 1 : start;
  double value = 0.0;
  const auto result = std::from_chars(text.data() + from, text.data() + i, value);
  if (result.ec == std::errc::result_out_of_range) {
    // As strtod: a huge value gives the largest of its sign, a tiny one 0.
    return decimal_exponent(text.substr(digits_start, i - digits_start)) < 0 ? 0.0
           : text[start] == '-'                                              ? -HUGE_VAL
                                                                             : HUGE_VAL;
  }
  return value;
}

std::string format_fixed(double value, int decimals) {
  decimals = std::clamp(decimals, 0, 100);
  std::array<char, 512> buffer{};
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, decimals);
  if (result.ec != std::errc()) return "0.00";
  return std::string(buffer.data(), result.ptr);
}

}  // namespace kerfline::script
