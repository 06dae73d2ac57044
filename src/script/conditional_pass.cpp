// The conditional pass: {[condition][then-text][else-text]} blocks, decided
// on the raw text before anything is tokenized.
#include <array>

#include "platform/codepage.hpp"
#include "platform/text_trim.hpp"
#include "script/delimited_scan.hpp"
#include "script/evaluator.hpp"
#include "script/limits.hpp"
#include "script/numbers.hpp"
#include "script/script_error.hpp"

namespace kerfline::script {
namespace {

constexpr std::string_view kStatusText = "0.0";

std::string_view trim_brackets(std::string_view s) {
  while (!s.empty() && s.front() == '[') s.remove_prefix(1);
  while (!s.empty() && s.back() == ']') s.remove_suffix(1);
  return s;
}

using platform::trim;

struct BlockParts {
  std::string_view condition;
  std::string_view then_text;
  std::string_view else_text;
};

// The condition runs from the first "[" to the next "]"; the then-text from
// the second "[" to the first "]" directly followed by "["; the else-text is
// the rest.
BlockParts split_block(std::string_view content) {
  BlockParts parts;
  const std::size_t first = content.find('[');
  if (first == std::string_view::npos) return parts;
  const std::size_t condition_end = content.find(']', first + 1);
  parts.condition =
      content.substr(first + 1, condition_end == std::string_view::npos ? std::string_view::npos
                                                                        : condition_end - first - 1);
  const std::size_t second = content.find('[', first + 1);
  if (second == std::string_view::npos) return parts;
  const std::size_t then_end = content.find("][", second);
  if (then_end == std::string_view::npos) {
    parts.then_text = trim_brackets(content.substr(second));
    return parts;
  }
  parts.then_text = trim_brackets(content.substr(second, then_end - second + 1));
  parts.else_text = trim_brackets(content.substr(then_end + 1));
  return parts;
}

// Operators by position; an unknown one selects the then-text.
constexpr std::array<std::string_view, 9> kOperators = {
    "ISCLOSED", "FALSE", "TRUE", "!=", "<=", ">=", "==", "<", ">"};

int operator_index(std::string_view op) {
  for (std::size_t i = 0; i < kOperators.size(); ++i) {
    if (platform::cp1252::equals_no_case(op, kOperators[i])) return static_cast<int>(i);
  }
  return -1;
}

bool compare(int op, const std::string& left, const std::string& right) {
  switch (op) {
    case 3:
      return left != right;
    case 6:
      return left == right;
    default:
      break;
  }
  const double l = text_to_number(left);
  const double r = text_to_number(right);
  switch (op) {
    case 4:
      return l <= r;
    case 5:
      return l >= r;
    case 7:
      return l < r;
    case 8:
      return l > r;
    default:
      return false;
  }
}

}  // namespace

std::string Evaluator::decide_block(std::string_view content, bool closed, int depth) {
  const BlockParts parts = split_block(content);
  const std::string_view cond = parts.condition;
  std::string then_text(parts.then_text);  // not const: returned by move
  std::string else_text(parts.else_text);
  using platform::cp1252::equals_no_case;
  if (equals_no_case(cond, "ISCLOSED")) return closed ? then_text : else_text;
  if (equals_no_case(cond, "TRUE") || cond == "1") return then_text;
  if (equals_no_case(cond, "FALSE") || cond == "0") return else_text;

  const std::size_t first_blank = cond.find(' ');
  const std::string_view left = cond.substr(0, first_blank);
  const std::string_view rest =
      first_blank == std::string_view::npos ? std::string_view{} : cond.substr(first_blank + 1);
  const std::size_t second_blank = rest.find(' ');
  const std::string_view op = rest.substr(0, second_blank);
  const std::string_view right =
      trim(second_blank == std::string_view::npos ? std::string_view{} : rest.substr(second_blank + 1));

  // An operand whose value brings a block of its own is decided by it.
  const auto operand = [&](std::string_view text) {
    std::string value = evaluate(trim(text), -1);
    if (value.find('{') == std::string::npos) return value;
    if (depth + 1 >= kMaxNestedEvaluations) return ScriptError(kRecursionLimit, "").printable();
    return decide_block(value, closed, depth + 1);
  };
  const std::string left_value = operand(left);
  const std::string right_value = operand(right);

  const int index = operator_index(op);
  if (index < 0) return then_text;
  if (index <= 2) return else_text;
  return compare(index, left_value, right_value) ? then_text : else_text;
}

std::string Evaluator::conditional_pass(std::string_view text, bool closed) {
  const auto out = replace_delimited(text, "{", "}", [&](std::string_view content) {
    std::string decided = decide_block(content, closed, 0);
    charge(0, decided.size());
    return decided;
  });
  return out.value_or(std::string(kStatusText));
}

}  // namespace kerfline::script
