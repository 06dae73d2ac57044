// The arithmetic pass: each "%[expression]%" becomes its value.
#include "script/arithmetic.hpp"
#include "script/delimited_scan.hpp"
#include "script/evaluator.hpp"
#include "script/limits.hpp"
#include "script/numbers.hpp"

namespace kerfline::script {

std::string Evaluator::arithmetic_pass(std::string_view text, int decimals) {
  const auto out = replace_delimited(text, "%[", "]%", [&](std::string_view expression) {
    const std::optional<double> value = evaluate_arithmetic(expression);
    return value ? format_fixed(*value, decimals) : std::string("0.00");
  });
  return out.value_or("0.0");
}

}  // namespace kerfline::script
