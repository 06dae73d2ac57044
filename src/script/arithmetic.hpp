// The arithmetic evaluator behind "%[ ... ]%" blocks: numbers, + - * / ^,
// unary minus, parentheses and named functions. Angles are in degrees.
// Results closer to 0 than the tolerance are 0; anything that cannot be
// evaluated (bad syntax, a domain error, a non-finite result) is nothing.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace kerfline::script {

inline constexpr double kArithmeticTolerance = 1e-9;

std::optional<double> evaluate_arithmetic(std::string_view expression);

// The names of the functions an expression may call, in upper case (they are
// matched without regard to case), each taking one argument.
std::vector<std::string_view> arithmetic_function_names();

}  // namespace kerfline::script
