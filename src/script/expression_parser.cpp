#include "script/expression_parser.hpp"

#include "script/evaluator.hpp"
#include "script/limits.hpp"
#include "script/script_error.hpp"

namespace kerfline::script {

bool is_script_number(std::string_view word) {
  if (!word.empty() && word.front() == '-') word.remove_prefix(1);
  for (const char c : word) {
    if ((c < '0' || c > '9') && c != '.') return false;
  }
  return true;
}

ExpressionParser::ExpressionParser(const Evaluator& evaluator) : evaluator_(evaluator) {}

ExpressionParser::Range ExpressionParser::make_range(std::string_view source,
                                                     const std::vector<Token>& tokens) {
  Range r{source, tokens, std::vector<std::ptrdiff_t>(tokens.size(), -1)};
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].start < 0 || tokens[i].end < tokens[i].start - 1) {
      throw ScriptError(kInternalError, "Bad token position");
    }
    if (is_separator(tokens[i], '(')) {
      open.push_back(i);
    } else if (is_separator(tokens[i], ')') && !open.empty()) {
      r.match[open.back()] = static_cast<std::ptrdiff_t>(i);
      r.match[i] = static_cast<std::ptrdiff_t>(open.back());
      open.pop_back();
    }
  }
  return r;
}

void ExpressionParser::parse(std::string_view source, const std::vector<Token>& tokens, PostfixQueue& out) {
  if (tokens.empty()) throw ScriptError(kInternalError, "No token");
  const Range r = make_range(source, tokens);
  parse_list(r, 0, tokens.size(), out, 0);
}

void ExpressionParser::parse_list(const Range& r, std::size_t begin, std::size_t end, PostfixQueue& out,
                                  int depth) {
  std::size_t i = begin;
  if (i == end) return;
  while (true) {
    i = parse_item(r, i, end, out, depth);
    if (i == end) return;
    if (!is_separator(r.tokens[i], ',')) continue;  // operands side by side
    if (++i == end) {
      // A comma must be followed by an argument.
      if (end < r.tokens.size())
        throw ScriptError(kSyntaxError, r.tokens[end].text + " is not a valid operator");
      throw ScriptError(kInternalError, "No token");
    }
  }
}

std::size_t ExpressionParser::parse_item(const Range& r, std::size_t i, std::size_t end, PostfixQueue& out,
                                         int depth) {
  const Token& t = r.tokens[i];
  if (t.quoted) {
    out.push_back({Symbol::kOperand, resolve_escapes(t.text, evaluator_.tokenizer().raw_escapes()), nullptr});
    return i + 1;
  }
  if (is_any_separator(t)) throw ScriptError(kSyntaxError, t.text + " is not a valid operator");
  if (const std::string* value = evaluator_.find_variable(t.text)) {
    out.push_back({Symbol::kOperand, *value, nullptr});
    return i + 1;
  }
  if (is_script_number(t.text)) {
    out.push_back({Symbol::kOperand, t.text, nullptr});
    return i + 1;
  }
  const FunctionRecord* function = evaluator_.registry().find(t.text);
  if (function == nullptr) throw ScriptError(kUnrecognized, t.text);
  if (i + 1 >= end || !is_separator(r.tokens[i + 1], '(')) {
    throw ScriptError(kSyntaxError, "Operator " + function->name + " missing parameter list");
  }
  const std::size_t open = i + 1;
  const std::ptrdiff_t close = r.match[open];
  if (close < 0 || static_cast<std::size_t>(close) >= end)
    throw ScriptError(kNoEndFound, "&" + r.tokens[open].text);
  if (depth + 1 > kMaxCallDepth) throw ScriptError(kRecursionLimit, "");
  if (function->user) {
    expand(r, *function, open, static_cast<std::size_t>(close), out, depth + 1);
  } else {
    parse_list(r, open + 1, static_cast<std::size_t>(close), out, depth + 1);
    out.push_back({Symbol::kOperator, {}, function});
  }
  return static_cast<std::size_t>(close) + 1;
}

void ExpressionParser::expand(const Range& r, const FunctionRecord& function, std::size_t open,
                              std::size_t close, PostfixQueue& out, int depth) {
  // The arguments as written, split at the commas of this call's own level.
  std::vector<std::string_view> args;
  const auto text_of = [&](std::size_t first, std::size_t last_plus_one) -> std::string_view {
    if (first >= last_plus_one) return {};
    const auto from = static_cast<std::size_t>(r.tokens[first].start);
    const auto to = static_cast<std::size_t>(r.tokens[last_plus_one - 1].end) + 1;
    return r.source.substr(from, to - from);
  };
  if (open + 1 < close) {
    std::size_t start = open + 1;
    for (std::size_t j = open + 1; j < close; ++j) {
      if (is_separator(r.tokens[j], '(') && r.match[j] > 0 && static_cast<std::size_t>(r.match[j]) < close) {
        j = static_cast<std::size_t>(r.match[j]);
      } else if (is_separator(r.tokens[j], ',')) {
        args.push_back(text_of(start, j));
        start = j + 1;
      }
    }
    args.push_back(text_of(start, close));
  }
  if (args.size() != function.parameter_names.size()) {
    throw ScriptError(kParameterCount, "Operator " + function.name + " expects " +
                                           std::to_string(function.parameter_count) + " parameters");
  }

  const Tokenizer& tokenizer = evaluator_.tokenizer();
  std::string text;
  for (const Token& t : tokenizer.tokenize(function.second_text)) {
    if (is_separator(t, '&')) continue;
    if (t.quoted) {
      text += '"';
      text += t.text;
      text += '"';
      continue;
    }
    bool replaced = false;
    for (std::size_t p = 0; p < function.parameter_names.size(); ++p) {
      if (t.text == function.parameter_names[p]) {
        text += args[p];
        replaced = true;
        break;
      }
    }
    if (!replaced) text += t.text;
  }
  expansion_bytes_ += text.size();
  if (expansion_bytes_ > kMaxExpansionBytes) throw ScriptError(kRecursionLimit, "");

  const std::vector<Token> tokens = tokenizer.tokenize(text);
  if (tokens.empty()) throw ScriptError(kInternalError, "No token");
  const Range sub = make_range(text, tokens);
  parse_list(sub, 0, tokens.size(), out, depth);
}

}  // namespace kerfline::script
