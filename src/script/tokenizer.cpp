#include "script/tokenizer.hpp"

#include <cstring>

#include "script/script_error.hpp"

namespace kerfline::script {
namespace {

bool is_control(unsigned char c) { return c < 0x20 || c == 0x7f; }
// White space that is also a control character: tab, line feed, vertical
// tab, form feed, carriage return.
bool is_skipped(unsigned char c) { return c >= 0x09 && c <= 0x0d; }
bool is_separator_char(unsigned char c) { return c == '(' || c == ')' || c == ',' || c == '&' || c == '"'; }
bool ends_word(unsigned char c) { return c == ' ' || is_control(c) || is_separator_char(c); }

}  // namespace

std::string illegal_escape_detail(char c) {
  std::string detail = "Illegal escape sequence: \\";
  detail += c;
  return detail;
}

std::size_t Tokenizer::read_literal(std::string_view text, std::size_t pos, std::string* value,
                                    bool& closed) const {
  const std::size_t n = text.size();
  std::size_t i = pos + 1;
  closed = false;
  while (i < n) {
    const char c = text[i];
    if (c == '"') {
      closed = true;
      return i + 1;
    }
    if (c != '\\') {
      // Copy the plain run in one go.
      const std::size_t run_end = [&] {
        std::size_t j = i;
        while (j < n && text[j] != '"' && text[j] != '\\') ++j;
        return j;
      }();
      if (value != nullptr) value->append(text.data() + i, run_end - i);
      i = run_end;
      continue;
    }
    if (i + 1 == n) {  // a backslash ending the text is taken as it is
      if (value != nullptr) value->push_back('\\');
      return n;
    }
    const char escaped = text[i + 1];
    if (raw_escapes_) {
      if (value != nullptr) value->append(text.data() + i, 2);
    } else if (escaped == '"' || escaped == '\\') {
      if (value != nullptr) value->push_back(escaped);
    } else {
      throw ScriptError(kSyntaxError, illegal_escape_detail(escaped));
    }
    i += 2;
  }
  return n;
}

bool Tokenizer::next(std::string_view text, std::size_t& pos, Token& out) const {
  const std::size_t n = text.size();
  while (pos < n && (is_skipped(static_cast<unsigned char>(text[pos])) || text[pos] == ' ')) ++pos;
  if (pos >= n) return false;
  const auto c = static_cast<unsigned char>(text[pos]);
  out.text.clear();
  out.start = static_cast<std::int64_t>(pos);
  out.quoted = false;
  if (c == '"') {
    bool closed = false;
    const std::size_t after = read_literal(text, pos, &out.text, closed);
    out.quoted = closed;
    out.end = static_cast<std::int64_t>(after) - 1;
    pos = after;
    return true;
  }
  std::size_t end = pos + 1;
  // A separator is a token of its own; so is a lone control character that
  // is not white space, which no word may hold.
  if (!is_separator_char(c) && !is_control(c)) {
    while (end < n && !ends_word(static_cast<unsigned char>(text[end]))) ++end;
  }
  out.text.assign(text.data() + pos, end - pos);
  out.end = static_cast<std::int64_t>(end) - 1;
  pos = end;
  return true;
}

std::vector<Token> Tokenizer::tokenize(std::string_view text) const {
  std::vector<Token> tokens;
  std::size_t pos = 0;
  Token token;
  while (next(text, pos, token)) tokens.push_back(token);
  return tokens;
}

std::vector<std::size_t> Tokenizer::ampersand_positions(std::string_view text) const {
  std::vector<std::size_t> positions;
  const char* const base = text.data();
  const std::size_t n = text.size();
  // Outside literals only '&' and '"' matter: both always start a token.
  std::size_t next_amp = 0;
  std::size_t next_quote = 0;
  auto find = [&](char c, std::size_t from) -> std::size_t {
    if (from >= n) return n;
    const void* hit = std::memchr(base + from, c, n - from);
    return hit == nullptr ? n : static_cast<std::size_t>(static_cast<const char*>(hit) - base);
  };
  next_amp = find('&', 0);
  next_quote = find('"', 0);
  while (next_amp < n || next_quote < n) {
    if (next_amp < next_quote) {
      positions.push_back(next_amp);
      next_amp = find('&', next_amp + 1);
      continue;
    }
    bool closed = false;
    const std::size_t after = read_literal(text, next_quote, nullptr, closed);
    next_quote = find('"', after);
    if (next_amp < after) next_amp = find('&', after);
  }
  return positions;
}

std::string resolve_escapes(std::string_view text, bool raw_escapes) {
  if (raw_escapes || text.find('\\') == std::string_view::npos) return std::string(text);
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '\\' || i + 1 == text.size()) {
      out.push_back(c);
      continue;
    }
    const char escaped = text[++i];
    if (escaped != '"' && escaped != '\\') throw ScriptError(kSyntaxError, illegal_escape_detail(escaped));
    out.push_back(escaped);
  }
  return out;
}

}  // namespace kerfline::script
