#include "platform/decimal_text.hpp"

#include <charconv>
#include <limits>

namespace kerfline::platform {

std::optional<DecimalText> read_decimal(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r'))) ++at;
  bool negative = false;
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
    negative = text[at] == '-';
    ++at;
  }
  // from_chars takes no '+' and reads a '-' itself: "+-1" would pass.
  if (at >= text.size() || text[at] == '+' || text[at] == '-') return std::nullopt;
  DecimalText out;
  const char* first = text.data() + at;
  const auto [end, ec] = std::from_chars(first, text.data() + text.size(), out.value);
  if (ec == std::errc::invalid_argument) return std::nullopt;
  if (ec == std::errc::result_out_of_range) {
    out.out_of_range = true;
    const std::string_view digits(first, static_cast<std::size_t>(end - first));
    const std::size_t e = digits.find_first_of("eE");
    out.value = e != std::string_view::npos && e + 1 < digits.size() && digits[e + 1] == '-'
                    ? 0.0
                    : std::numeric_limits<double>::infinity();
  }
  if (negative) out.value = -out.value;
  out.end = static_cast<std::size_t>(end - text.data());
  return out;
}

}  // namespace kerfline::platform
