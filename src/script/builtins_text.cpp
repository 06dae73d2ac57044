// Text functions. Texts are 1252 bytes, so a character is a byte.
#include <algorithm>
#include <cstdint>

#include "platform/codepage.hpp"
#include "script/builtins.hpp"
#include "script/limits.hpp"

namespace kerfline::script::builtin {
namespace {

// A count or position as the text functions read it: negative counts as 0.
std::size_t non_negative(std::string_view value) {
  return static_cast<std::size_t>(std::max<std::int32_t>(text_to_int(value), 0));
}

}  // namespace

std::string upper(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return platform::cp1252::to_upper(args.pop());
}

std::string lower(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return platform::cp1252::to_lower(args.pop());
}

std::string left(ArgStack& args, const FunctionRecord&, Evaluator&) {
  auto [text, n] = pop_args<2>(args);
  text.resize(std::min(non_negative(n), text.size()));
  return std::move(text);
}

std::string right(ArgStack& args, const FunctionRecord&, Evaluator&) {
  auto [text, n] = pop_args<2>(args);
  const std::size_t count = std::min(non_negative(n), text.size());
  return text.substr(text.size() - count);
}

// Mid(Text, i, n): i characters from position n - the count comes first.
std::string mid(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [text, count, start] = pop_args<3>(args);
  const std::size_t from = non_negative(start);
  if (from >= text.size()) return {};
  return text.substr(from, non_negative(count));
}

std::string repl(ArgStack& args, const FunctionRecord&, Evaluator&) {
  auto [text, from, to] = pop_args<3>(args);
  if (from.empty()) return std::move(text);
  // Matching on upper-case copies keeps positions: the mapping is per byte.
  const std::string text_upper = platform::cp1252::to_upper(text);
  const std::string from_upper = platform::cp1252::to_upper(from);
  std::string out;
  std::size_t done = 0;
  for (std::size_t at = text_upper.find(from_upper); at != std::string::npos;
       at = text_upper.find(from_upper, done)) {
    append_capped(out, std::string_view(text).substr(done, at - done));
    append_capped(out, to);
    done = at + from.size();
  }
  append_capped(out, std::string_view(text).substr(done));
  return out;
}

std::string len(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return std::to_string(args.pop().size());
}

std::string find(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [haystack, needle] = pop_args<2>(args);
  const std::size_t at = haystack.find(needle);
  return at == std::string::npos ? "-1" : std::to_string(at);
}

std::string join(ArgStack& args, const FunctionRecord&, Evaluator&) {
  auto [first, second] = pop_args<2>(args);
  append_capped(first, second);
  return std::move(first);
}

std::string join3(ArgStack& args, const FunctionRecord&, Evaluator&) {
  auto [a, b, c] = pop_args<3>(args);
  append_capped(a, b);
  append_capped(a, c);
  return std::move(a);
}

// AddNChar(sz, c, n): the first character of c, n times; an empty c adds
// nothing.
std::string add_n_char(ArgStack& args, const FunctionRecord&, Evaluator&) {
  auto [text, c, n] = pop_args<3>(args);
  if (c.empty()) return std::move(text);
  const std::size_t room = text.size() < kMaxFunctionResultBytes ? kMaxFunctionResultBytes - text.size() : 0;
  text.append(std::min(non_negative(n), room), c.front());
  return std::move(text);
}

std::string t(ArgStack& args, const FunctionRecord&, Evaluator&) { return args.pop(); }

std::string q(ArgStack& args, const FunctionRecord&, Evaluator&) { return "\"" + args.pop() + "\""; }

}  // namespace kerfline::script::builtin
