// The template pass: finds the calls ("&" + function name + "(") in a text,
// evaluates each and copies everything between them unchanged.
#include "script/evaluator.hpp"
#include "script/limits.hpp"
#include "script/script_error.hpp"

namespace kerfline::script {

std::string Evaluator::template_pass(std::string_view text) {
  std::string out;
  return template_pass_into(text, out) ? out : std::string(text);
}

bool Evaluator::template_pass_into(std::string_view text, std::string& out) {
  if (pass_counter_ > kMaxPassCount) throw ScriptError(kRecursionLimit, "");
  // Checks every literal of the text before any call runs.
  const std::vector<std::size_t> ampersands = tokenizer_.ampersand_positions(text);
  ++pass_counter_;

  out.clear();
  bool replaced = false;
  std::size_t copied = 0;
  Token name;
  Token paren;
  Token token;
  std::vector<Token> call;
  for (const std::size_t amp : ampersands) {
    if (amp < copied) continue;  // inside the previous call
    std::size_t pos = amp + 1;
    if (!tokenizer_.next(text, pos, name) || name.quoted || registry_.find(name.text) == nullptr) continue;
    if (!tokenizer_.next(text, pos, paren) || !is_separator(paren, '(')) continue;

    call.clear();
    call.push_back(name);
    call.push_back(paren);
    int count = 0;
    bool closed = false;
    while (!closed && tokenizer_.next(text, pos, token)) {
      call.push_back(token);
      if (is_separator(token, ')')) {
        closed = ++count == 1;
      } else if (is_separator(token, '(')) {
        --count;
      }
    }
    if (!closed) throw ScriptError(kNoEndFound, "&" + paren.text);

    if (!replaced) out.reserve(text.size());
    replaced = true;
    out.append(text.substr(copied, amp - copied));
    out += evaluate_call(text, call);
    copied = static_cast<std::size_t>(call.back().end) + 1;
  }
  if (!replaced) return false;
  out.append(text.substr(copied));
  return true;
}

}  // namespace kerfline::script
