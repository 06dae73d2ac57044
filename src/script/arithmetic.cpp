#include "script/arithmetic.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <numbers>

#include "platform/codepage.hpp"
#include "script/limits.hpp"

namespace kerfline::script {
namespace {

constexpr double kTol = kArithmeticTolerance;
constexpr double kRadPerDeg = std::numbers::pi / 180.0;

struct Failure {};

bool near_zero(double x) { return std::fabs(x) < kTol; }
double snap(double x) { return near_zero(x) ? 0.0 : x; }
double checked(double x) {
  if (!std::isfinite(x)) throw Failure{};
  return x;
}
double require(bool ok, double x) {
  if (!ok) throw Failure{};
  return checked(x);
}
// Inverse sine/cosine accept arguments just outside [-1, 1] by rounding.
double clamp_unit(double x) {
  if (std::fabs(x) > 1.0 + kTol) throw Failure{};
  return std::fmax(-1.0, std::fmin(1.0, x));
}

double factorial(double x) {
  const double n = std::round(x);
  if (std::fabs(x - n) > kTol || n < 0 || n > 170) throw Failure{};
  double result = 1.0;
  for (int i = 2; i <= static_cast<int>(n); ++i) result *= i;
  return result;
}

using Function = double (*)(double);

struct NamedFunction {
  std::string_view name;
  Function apply;
};

// Trigonometry in degrees. Results within the tolerance of 0 are 0, so that
// SIN(180) is 0 and TAN(90) is refused rather than huge.
const std::array<NamedFunction, 26> kFunctions = {{
    {"SIN", [](double x) { return snap(std::sin(x * kRadPerDeg)); }},
    {"COS", [](double x) { return snap(std::cos(x * kRadPerDeg)); }},
    {"TAN",
     [](double x) {
       const double c = std::cos(x * kRadPerDeg);
       return require(!near_zero(c), snap(std::sin(x * kRadPerDeg)) / c);
     }},
    {"COT",
     [](double x) {
       const double s = std::sin(x * kRadPerDeg);
       return require(!near_zero(s), snap(std::cos(x * kRadPerDeg)) / s);
     }},
    {"ASIN", [](double x) { return std::asin(clamp_unit(x)) / kRadPerDeg; }},
    {"ACOS", [](double x) { return std::acos(clamp_unit(x)) / kRadPerDeg; }},
    {"ATAN", [](double x) { return std::atan(x) / kRadPerDeg; }},
    {"ACOT", [](double x) { return (std::numbers::pi / 2 - std::atan(x)) / kRadPerDeg; }},
    {"SINH", [](double x) { return checked(std::sinh(x)); }},
    {"COSH", [](double x) { return checked(std::cosh(x)); }},
    {"TANH", [](double x) { return std::tanh(x); }},
    {"COTH", [](double x) { return require(!near_zero(x), 1.0 / std::tanh(x)); }},
    {"ASINH", [](double x) { return std::asinh(x); }},
    {"ACOSH", [](double x) { return require(x >= 1.0 - kTol, std::acosh(std::fmax(x, 1.0))); }},
    {"ATANH", [](double x) { return require(std::fabs(x) < 1.0 - kTol, std::atanh(x)); }},
    {"ACOTH", [](double x) { return require(std::fabs(x) > 1.0 + kTol, std::atanh(1.0 / x)); }},
    {"LG", [](double x) { return require(x > kTol, std::log10(x)); }},
    {"LN", [](double x) { return require(x > kTol, std::log(x)); }},
    {"EXP", [](double x) { return checked(std::exp(x)); }},
    {"SQRT", [](double x) { return require(x > -kTol, std::sqrt(std::fmax(x, 0.0))); }},
    {"ABS", [](double x) { return std::fabs(x); }},
    {"SIGN", [](double x) { return near_zero(x) ? 0.0 : (x > 0 ? 1.0 : -1.0); }},
    {"FAK", factorial},
    // Switches: SWON is 1 once its argument is above 0, SWOF(F) the opposite.
    {"SWON", [](double x) { return x > kTol ? 1.0 : 0.0; }},
    {"SWOF", [](double x) { return x > kTol ? 0.0 : 1.0; }},
    {"SWOFF", [](double x) { return x > kTol ? 0.0 : 1.0; }},
}};

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  double parse() {
    const double value = expression(0);
    skip_blanks();
    if (pos_ != text_.size()) throw Failure{};
    return value;
  }

 private:
  void skip_blanks() {
    while (pos_ < text_.size() && (text_[pos_] == ' ' || (text_[pos_] >= 0x09 && text_[pos_] <= 0x0d)))
      ++pos_;
  }
  bool take(char c) {
    skip_blanks();
    if (pos_ < text_.size() && text_[pos_] == c) {
      ++pos_;
      return true;
    }
    return false;
  }
  static void enter(int depth) {
    if (depth > kMaxArithmeticDepth) throw Failure{};
  }

  // expression := term {("+" | "-") term}
  // depth counts parentheses, signs, exponents and function arguments.
  double expression(int depth) {
    double value = term(depth);
    while (true) {
      if (take('+')) {
        value = checked(value + term(depth));
      } else if (take('-')) {
        value = checked(value - term(depth));
      } else {
        return value;
      }
    }
  }

  // term := unary {("*" | "/") unary}
  double term(int depth) {
    double value = unary(depth);
    while (true) {
      if (take('*')) {
        value = checked(value * unary(depth));
      } else if (take('/')) {
        const double divisor = unary(depth);
        value = require(!near_zero(divisor), value / divisor);
      } else {
        return value;
      }
    }
  }

  // unary := ("-" | "+") unary | power     (so -2^2 is -4)
  double unary(int depth) {
    enter(depth);
    if (take('-')) return -unary(depth + 1);
    if (take('+')) return unary(depth + 1);
    return power(depth);
  }

  // power := primary ["^" unary]           (right-associative)
  double power(int depth) {
    const double base = primary(depth);
    if (!take('^')) return base;
    const double exponent = unary(depth + 1);
    if (base < 0 && std::fabs(exponent - std::round(exponent)) > kTol) throw Failure{};
    if (near_zero(base) && exponent < 0) throw Failure{};
    const double e = std::fabs(exponent - std::round(exponent)) <= kTol ? std::round(exponent) : exponent;
    return checked(std::pow(base, e));
  }

  // primary := number | "(" expression ")" | name unary
  double primary(int depth) {
    skip_blanks();
    if (pos_ >= text_.size()) throw Failure{};
    const char c = text_[pos_];
    if (c == '(') {
      ++pos_;
      const double value = expression(depth + 1);
      if (!take(')')) throw Failure{};
      return value;
    }
    if ((c >= '0' && c <= '9') || c == '.') return number();
    if (is_letter(c)) {
      const std::size_t start = pos_;
      while (pos_ < text_.size() && is_letter(text_[pos_])) ++pos_;
      const std::string name = platform::cp1252::to_upper(text_.substr(start, pos_ - start));
      for (const NamedFunction& f : kFunctions) {
        if (f.name == name) return checked(f.apply(unary(depth + 1)));
      }
    }
    throw Failure{};
  }

  double number() {
    const std::size_t start = pos_;
    while (pos_ < text_.size() && ((text_[pos_] >= '0' && text_[pos_] <= '9') || text_[pos_] == '.')) ++pos_;
    if (pos_ < text_.size() && (text_[pos_] == 'e' || text_[pos_] == 'E')) {
      std::size_t j = pos_ + 1;
      if (j < text_.size() && (text_[j] == '+' || text_[j] == '-')) ++j;
      if (j < text_.size() && text_[j] >= '0' && text_[j] <= '9') {
        while (j < text_.size() && text_[j] >= '0' && text_[j] <= '9') ++j;
        pos_ = j;
      }
    }
    double value = 0;
    const auto result = std::from_chars(text_.data() + start, text_.data() + pos_, value);
    if (result.ec != std::errc() || result.ptr != text_.data() + pos_) throw Failure{};
    return checked(value);
  }

  static bool is_letter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

  std::string_view text_;
  std::size_t pos_ = 0;
};

}  // namespace

std::optional<double> evaluate_arithmetic(std::string_view expression) {
  try {
    const double value = Parser(expression).parse();
    if (!std::isfinite(value)) return std::nullopt;
    return snap(value);
  } catch (const Failure&) {
    return std::nullopt;
  }
}

std::vector<std::string_view> arithmetic_function_names() {
  std::vector<std::string_view> names;
  names.reserve(kFunctions.size());
  for (const NamedFunction& f : kFunctions) names.push_back(f.name);
  return names;
}

}  // namespace kerfline::script
