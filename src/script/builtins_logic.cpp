// Logic, comparison and bit functions. Truth and the number test are the
// shared ones of builtins_values.cpp.
#include <algorithm>
#include <cstring>

#include "platform/codepage.hpp"
#include "script/builtins.hpp"
#include "script/numbers.hpp"

namespace kerfline::script::builtin {
namespace {

// <0, 0 or >0: numerically when both are numbers, else byte by byte.
int compare(const std::string& a, const std::string& b) {
  if (is_number_text(a) && is_number_text(b)) {
    const double x = text_to_number(a);
    const double y = text_to_number(b);
    return x < y ? -1 : (y < x ? 1 : 0);
  }
  // Unsigned bytes, as strcmp compares them.
  const int c = std::memcmp(a.data(), b.data(), std::min(a.size(), b.size()));
  if (c != 0) return c;
  return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

}  // namespace

std::string if_(ArgStack& args, const FunctionRecord&, Evaluator&) {
  auto [condition, then_value, else_value] = pop_args<3>(args);
  return is_true(condition) ? std::move(then_value) : std::move(else_value);
}

std::string or_(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return truth_text(is_true(x) || is_true(y));
}

std::string and_(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return truth_text(is_true(x) && is_true(y));
}

std::string not_(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return truth_text(!is_true(args.pop()));
}

std::string xor_(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return truth_text(is_true(x) != is_true(y));
}

// Equal texts (any case), else numbers of equal value.
std::string eql(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  if (platform::cp1252::equals_no_case(x, y)) return "1";
  return truth_text(is_number_text(x) && is_number_text(y) && text_to_number(x) == text_to_number(y));
}

// Only the texts count here: "1.0" and "1" are not equal, though Eql says
// they are. Drivers rely on both.
std::string neql(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return truth_text(!platform::cp1252::equals_no_case(x, y));
}

std::string less(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return truth_text(compare(x, y) < 0);
}

std::string grtr(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return truth_text(compare(x, y) > 0);
}

std::string leql(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return truth_text(compare(x, y) <= 0);
}

std::string geql(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return truth_text(compare(x, y) >= 0);
}

std::string bit_xor(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [a, b] = pop_args<2>(args);
  return std::to_string(text_to_dword(a) ^ text_to_dword(b));
}

std::string bit_or(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [a, b] = pop_args<2>(args);
  return std::to_string(text_to_dword(a) | text_to_dword(b));
}

std::string bit_and(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [a, b] = pop_args<2>(args);
  return std::to_string(text_to_dword(a) & text_to_dword(b));
}

std::string bit_not(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return std::to_string(~text_to_dword(args.pop()));
}

// Registered so that drivers naming it still parse; it loops over nothing.
std::string while_(ArgStack& args, const FunctionRecord&, Evaluator&) {
  pop_args<2>(args);
  return {};
}

}  // namespace kerfline::script::builtin
