#include "support/tool_stat_format.hpp"
#include "platform/decimal_text.hpp"

#include <charconv>

namespace kerfline::support {

std::string format_distance(double value) {
  char buf[400];  // the longest double in fixed notation needs 317
  const auto r = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, 6);
  return std::string(buf, r.ptr);
}

std::string format_int(std::int32_t value) {
  char buf[16];
  const auto r = std::to_chars(buf, buf + sizeof buf, value);
  return std::string(buf, r.ptr);
}

double parse_distance(std::string_view text) {
  const auto number = platform::read_decimal(text);
  return number && !number->out_of_range ? number->value : 0.0;
}

std::optional<std::int64_t> tool_key_slot(std::string_view key) {
  constexpr std::string_view prefix = "sztool";
  if (key.size() <= prefix.size() || key.size() > prefix.size() + 10) return std::nullopt;
  for (std::size_t k = 0; k < prefix.size(); ++k) {
    char c = key[k];
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c != prefix[k]) return std::nullopt;
  }
  const std::string_view digits = key.substr(prefix.size());
  if (digits.size() > 1 && digits.front() == '0') return std::nullopt;
  std::int64_t slot = 0;
  const auto r = std::from_chars(digits.data(), digits.data() + digits.size(), slot);
  if (r.ec != std::errc{} || r.ptr != digits.data() + digits.size() || slot < 0) return std::nullopt;
  return slot;
}

}  // namespace kerfline::support
