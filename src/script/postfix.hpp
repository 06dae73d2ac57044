// The postfix queue the expression parser builds, and its evaluation.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "script/function_registry.hpp"

namespace kerfline::script {

struct Symbol {
  enum Kind : std::int32_t { kOperator = 0, kOperand = 1 };
  Kind kind = kOperand;
  std::string value;                         // operands
  const FunctionRecord* function = nullptr;  // operators
};

using PostfixQueue = std::vector<Symbol>;

// The value stack as a routine sees it: it pops its arguments, the last one
// first. Popping an empty stack is an internal error, never undefined.
class ArgStack {
 public:
  explicit ArgStack(std::vector<std::string>& values) : values_(values) {}
  std::string pop();
  [[nodiscard]] std::size_t size() const { return values_.size(); }

 private:
  std::vector<std::string>& values_;
};

// Runs the queue. Stops before the next symbol once the evaluator is
// escaped; the result is then empty, or an error when values are left.
std::string evaluate_postfix(PostfixQueue& queue, Evaluator& evaluator);

}  // namespace kerfline::script
