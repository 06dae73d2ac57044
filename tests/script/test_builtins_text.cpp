// Text functions: call -> exact output.
#include "builtin_rows.hpp"

namespace kerfline::test {
namespace {

TEST(BuiltinText, CallsGiveExactOutput) {
  expect_rows({
      // Case, length and search.
      {"&Upper(\"abc \xE4\xF6\xFC\xFF 1\")", "ABC \xC4\xD6\xDC\x9F 1"},
      {"&Lower(\"ABC \xC4\x8A\")", "abc \xE4\x9A"},
      {R"(&Len(""))", "0"},
      {"&Len(\"a b\xE4\")", "4"},
      {R"(&Find("abcabc", "ca"))", "2"},
      {R"(&Find("abc", "B"))", "-1"},
      {R"(&Find("abc", ""))", "0"},
      {R"(&Find("", "a"))", "-1"},
      // Left, Right and Mid.
      {R"(&Left("ABCDEF", 2))", "AB"},
      {R"(&Left("ABC", 5))", "ABC"},
      {R"(&Left("ABC", -1))", ""},
      {R"(&Left("ABC", "x"))", ""},
      {R"(&Left("ABC", 2.9))", "AB"},
      {R"(&Right("ABCDEF", 2))", "EF"},
      {R"(&Right("ABC", 9))", "ABC"},
      {R"(&Right("ABC", -2))", ""},
      // Mid(Text, count, start): the count comes first.
      {R"(&Mid("ABCDEF", 2, 1))", "BC"},
      {R"(&Mid("ABCDEF", 10, 4))", "EF"},
      {R"(&Mid("ABCDEF", 2, 6))", ""},
      {R"(&Mid("ABCDEF", 2, 9))", ""},
      {R"(&Mid("ABCDEF", -1, 1))", ""},
      {R"(&Mid("ABCDEF", 2, -3))", "AB"},
      // Repl ignores case in 1252.
      {R"(&Repl("aXbxc", "x", "--"))", "a--b--c"},
      {"&Repl(\"\xE4"
       "bc\xC4\", \"\xC4\", \"A\")",
       "AbcA"},
      {R"(&Repl("aaa", "aa", "b"))", "ba"},
      {R"(&Repl("abc", "", "x"))", "abc"},
      {R"(&Repl("abc", "abc", ""))", ""},
      // A literal's escapes are resolved twice: four backslashes make one.
      {R"(&Repl("Path\\\\File", "\\\\", "/"))", "Path/File"},
      // Joining, quoting and padding.
      {R"(&Join("a", "b"))", "ab"},
      {R"(&Join3("a", "", "c"))", "ac"},
      {R"(&AddNChar("ab", "xyz", 3))", "abxxx"},
      {R"(&AddNChar("ab", "", 3))", "ab"},
      {R"(&AddNChar("ab", "-", -2))", "ab"},
      {R"x(&T("a, (b)"))x", "a, (b)"},
      {R"(&Q("a"))", "\"a\""},
      {R"(&Q(""))", "\"\""},
      {R"(&Left(Upper(Join("ab", "cd")), 3))", "ABC"},
  });
}

TEST(BuiltinText, ResultsThatMultiplyTheirInputAreCapped) {
  const std::string padded = evaluate_call(R"(&AddNChar("", "x", 2000000000))");
  EXPECT_EQ(padded.size(), std::size_t{16} << 20);
  EXPECT_EQ(padded.find_first_not_of('x'), std::string::npos);
}

}  // namespace
}  // namespace kerfline::test
