// The arithmetic pass: each "%[expression]%" becomes its value.
#include "script/arithmetic.hpp"
#include "script/evaluator.hpp"
#include "script/limits.hpp"
#include "script/numbers.hpp"

namespace kerfline::script {

std::string Evaluator::arithmetic_pass(std::string_view text, int decimals) {
  std::string out;
  out.reserve(text.size());
  std::size_t scan = 0;
  while (true) {
    const std::size_t open = text.find("%[", scan);
    if (open == std::string_view::npos) break;
    // As with blocks, the end is looked for from the scan position.
    const std::size_t close = text.find("]%", scan);
    if (close == std::string_view::npos) return "0.0";
    out.append(text.substr(scan, open - scan));
    const std::string_view expression =
        close > open ? text.substr(open + 2, close - open - 2) : std::string_view{};
    const std::optional<double> value = evaluate_arithmetic(expression);
    out += value ? format_fixed(*value, decimals) : std::string("0.00");
    if (out.size() > kMaxPassOutputBytes) return "0.0";
    scan = close + 2;
  }
  out.append(text.substr(scan));
  return out;
}

}  // namespace kerfline::script
