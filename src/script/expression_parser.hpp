// Turns the tokens of one call (from the function name to its closing
// parenthesis) into a postfix queue: operands are literals, variables and
// numbers; functions follow their arguments; user functions are expanded in
// place like macros.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "script/postfix.hpp"
#include "script/tokenizer.hpp"

namespace kerfline::script {

class Evaluator;

class ExpressionParser {
 public:
  explicit ExpressionParser(const Evaluator& evaluator);

  // Token positions refer to source. Throws ScriptError.
  void parse(std::string_view source, const std::vector<Token>& tokens, PostfixQueue& out);

 private:
  struct Range {
    std::string_view source;
    const std::vector<Token>& tokens;
    std::vector<std::ptrdiff_t> match;  // index of the partner parenthesis, -1 for none
  };

  static Range make_range(std::string_view source, const std::vector<Token>& tokens);
  void parse_list(const Range& r, std::size_t begin, std::size_t end, PostfixQueue& out, int depth);
  std::size_t parse_item(const Range& r, std::size_t i, std::size_t end, PostfixQueue& out, int depth);
  void expand(const Range& r, const FunctionRecord& function, std::size_t open, std::size_t close,
              PostfixQueue& out, int depth);

  const Evaluator& evaluator_;
  std::size_t expansion_bytes_ = 0;
};

// A number as the parser sees it: decimal digits and points, optionally
// after one "-"; the empty word counts.
bool is_script_number(std::string_view word);

}  // namespace kerfline::script
