#include "script/postfix.hpp"

#include <algorithm>

#include "script/evaluator.hpp"
#include "script/script_error.hpp"

namespace kerfline::script {

std::string ArgStack::pop() {
  if (values_.empty()) throw ScriptError(kInternalError, "Not enough operands on the stack");
  std::string value = std::move(values_.back());
  values_.pop_back();
  return value;
}

std::string evaluate_postfix(PostfixQueue& queue, Evaluator& evaluator) {
  std::vector<std::string> stack;
  ArgStack args(stack);
  std::size_t i = 0;
  for (; i < queue.size() && !evaluator.escaped(); ++i) {
    Symbol& symbol = queue[i];
    if (symbol.kind == Symbol::kOperand) {
      if (i + 1 == queue.size()) {
        if (!stack.empty()) throw ScriptError(kParameterCount, "");
        return std::move(symbol.value);
      }
      stack.push_back(std::move(symbol.value));
      continue;
    }
    if (symbol.kind != Symbol::kOperator) throw ScriptError(kInternalError, "Unknown symbol type on stack");
    const FunctionRecord* function = symbol.function;
    if (function == nullptr || function->routine == nullptr)
      throw ScriptError(kInternalError, "NULL operator");
    if (stack.size() < static_cast<std::size_t>(std::max(function->parameter_count, 0))) {
      throw ScriptError(kParameterCount, "Operator " + function->name + " expects " +
                                             std::to_string(function->parameter_count) + " parameters");
    }
    std::string result = function->routine(args, *function, evaluator);
    stack.push_back(std::move(result));
  }
  if (i < queue.size()) {  // escaped before the end
    if (!stack.empty()) throw ScriptError(kParameterCount, "");
    return {};
  }
  if (stack.size() > 1) throw ScriptError(kParameterCount, "");
  return stack.empty() ? std::string() : std::move(stack.back());
}

}  // namespace kerfline::script
