// The tokenizer: token texts and source positions, literals and escapes.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "fixtures/table_names.hpp"
#include "script/script_error.hpp"
#include "script/tokenizer.hpp"

namespace kerfline::script {
namespace {

struct TokenRow {
  std::string text;
  bool raw;
  std::vector<Token> tokens;
};

class TokenizerTable : public ::testing::TestWithParam<TokenRow> {};

TEST_P(TokenizerTable, TokensAndPositions) {
  const TokenRow& row = GetParam();
  const std::vector<Token> tokens = Tokenizer(row.raw).tokenize(row.text);
  ASSERT_EQ(tokens.size(), row.tokens.size());
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    SCOPED_TRACE("token " + std::to_string(i));
    EXPECT_EQ(tokens[i].text, row.tokens[i].text);
    EXPECT_EQ(tokens[i].start, row.tokens[i].start);
    EXPECT_EQ(tokens[i].end, row.tokens[i].end);
    EXPECT_EQ(tokens[i].quoted, row.tokens[i].quoted);
  }
  // The fast scan finds exactly the "&" tokens.
  std::vector<std::size_t> expected_amps;
  for (const Token& t : tokens) {
    if (is_separator(t, '&')) expected_amps.push_back(static_cast<std::size_t>(t.start));
  }
  EXPECT_EQ(Tokenizer(row.raw).ampersand_positions(row.text), expected_amps);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TokenizerTable,
    ::testing::Values(
        TokenRow{"\tx\r\n  y", false, {{"x", 1, 1, false}, {"y", 6, 6, false}}},
        TokenRow{"f(\"a,b\", c)",
                 false,
                 {{"f", 0, 0, false},
                  {"(", 1, 1, false},
                  {"a,b", 2, 6, true},
                  {",", 7, 7, false},
                  {"c", 9, 9, false},
                  {")", 10, 10, false}}},
        TokenRow{R"("x\"y")", false, {{"x\"y", 0, 5, true}}},
        TokenRow{R"("x\\y")", false, {{"x\\y", 0, 5, true}}}, TokenRow{R"("")", false, {{"", 0, 1, true}}},
        // An unclosed literal runs to the end and is not quoted.
        TokenRow{R"(a "abc)", false, {{"a", 0, 0, false}, {"abc", 2, 5, false}}},
        // A backslash ending the text stays.
        TokenRow{R"("ab\)", false, {{"ab\\", 0, 3, false}}},
        TokenRow{"a&b&&",
                 false,
                 {{"a", 0, 0, false},
                  {"&", 1, 1, false},
                  {"b", 2, 2, false},
                  {"&", 3, 3, false},
                  {"&", 4, 4, false}}},
        TokenRow{"%x%,%y%;", false, {{"%x%", 0, 2, false}, {",", 3, 3, false}, {"%y%;", 4, 7, false}}},
        TokenRow{"a\x01"
                 "b",
                 false,
                 {{"a", 0, 0, false}, {"\x01", 1, 1, false}, {"b", 2, 2, false}}},
        TokenRow{"x\"&\"&y",
                 false,
                 {{"x", 0, 0, false}, {"&", 1, 3, true}, {"&", 4, 4, false}, {"y", 5, 5, false}}},
        // With raw escapes a backslash and its character are kept as they are.
        TokenRow{R"("a\qb" "c\"d")", true, {{"a\\qb", 0, 5, true}, {"c\\\"d", 7, 12, true}}}),
    kerfline::test::RowIndex());

TEST(IllegalEscapes, AreSyntaxErrorsInBothScans) {
  const std::pair<std::string, std::string> rows[] = {{R"("\n")", "Illegal escape sequence: \\n"},
                                                      {R"(a "ok" b & "\z")", "Illegal escape sequence: \\z"},
                                                      {R"("\\\q")", "Illegal escape sequence: \\q"}};
  for (const auto& [text, detail] : rows) {
    for (int scan = 0; scan < 2; ++scan) {
      try {
        if (scan == 0) {
          Tokenizer().tokenize(text);
        } else {
          Tokenizer().ampersand_positions(text);
        }
        ADD_FAILURE() << "no error for " << text;
      } catch (const ScriptError& e) {
        EXPECT_EQ(e.code(), kSyntaxError);
        EXPECT_EQ(e.detail(), detail) << text;
      }
    }
  }
}

TEST(ResolveEscapes, SecondResolutionOfALiteral) {
  EXPECT_EQ(resolve_escapes(R"(a\\b)", false), "a\\b");
  EXPECT_EQ(resolve_escapes(R"(a\"b)", false), "a\"b");
  EXPECT_EQ(resolve_escapes("end\\", false), "end\\");
  EXPECT_EQ(resolve_escapes(R"(a\b)", true), "a\\b");
  try {
    resolve_escapes(R"(a\b)", false);
    ADD_FAILURE();
  } catch (const ScriptError& e) {
    EXPECT_EQ(e.printable(), "[syntax error: Illegal escape sequence: \\b]");
  }
}

}  // namespace
}  // namespace kerfline::script
