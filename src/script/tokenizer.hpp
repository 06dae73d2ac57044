// The tokenizer of the function-call language. Separators are "(", ")", ",",
// "&" and the double quote; a plain blank ends a word and is dropped; white
// space control characters are skipped; a double quote opens a string
// literal with backslash escapes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kerfline::script {

struct Token {
  std::string text;        // a literal's text has its escapes resolved
  std::int64_t start = 0;  // first source position (a literal's opening quote)
  std::int64_t end = 0;    // last source position, inclusive
  bool quoted = false;     // a literal whose closing quote was found
};

// True for an unquoted token whose text is the one-character separator c.
inline bool is_separator(const Token& t, char c) { return !t.quoted && t.text.size() == 1 && t.text[0] == c; }
inline bool is_any_separator(const Token& t) {
  return !t.quoted && t.text.size() == 1 &&
         (t.text[0] == '(' || t.text[0] == ')' || t.text[0] == ',' || t.text[0] == '&' || t.text[0] == '"');
}

class Tokenizer {
 public:
  // raw_escapes: a backslash and the character after it are kept as they
  // are and never fail.
  explicit Tokenizer(bool raw_escapes = false) : raw_escapes_(raw_escapes) {}

  // Reads the token at or after pos and moves pos past it; false when only
  // skipped characters remain. Throws ScriptError (syntax error) for an
  // illegal escape inside a literal.
  bool next(std::string_view text, std::size_t& pos, Token& out) const;

  std::vector<Token> tokenize(std::string_view text) const;

  // The source positions of every "&" token, in order, checking every
  // literal on the way exactly as tokenize would (same errors), without
  // building tokens: the fast path for text that is mostly passthrough.
  std::vector<std::size_t> ampersand_positions(std::string_view text) const;

  [[nodiscard]] bool raw_escapes() const { return raw_escapes_; }

 private:
  // Reads the literal whose opening quote is at pos; returns the position
  // after it and whether the closing quote was found.
  std::size_t read_literal(std::string_view text, std::size_t pos, std::string* value, bool& closed) const;

  bool raw_escapes_;
};

// Resolves the escapes of a literal's text once more (the parser does this
// for every quoted operand): \" and \\; a backslash at the very end stays.
std::string resolve_escapes(std::string_view text, bool raw_escapes);

// The detail text of an illegal escape.
std::string illegal_escape_detail(char c);

}  // namespace kerfline::script
