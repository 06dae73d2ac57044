// Logic, comparison and bit functions: call -> exact output.
#include "builtin_rows.hpp"

namespace kerfline::test {
namespace {

TEST(BuiltinLogic, CallsGiveExactOutput) {
  expect_rows({
      // Truth of numbers and texts.
      {R"(&If("0.0", "a", "b"))", "b"},
      {R"(&If("abc", "a", "b"))", "a"},
      {R"(&If("", "a", "b"))", "b"},
      {R"(&If("-0", "a", "b"))", "b"},
      {R"(&If("-", "a", "b"))", "b"},
      {R"(&If(0.5, "a", "b"))", "a"},
      {R"(&If("12abc", "a", "b"))", "a"},  // not a number, so true
      {R"(&If(" 0", "a", "b"))", "a"},     // a blank makes it text
      {R"(&Not(""))", "1"},
      {R"(&Not("0.0"))", "1"},
      {R"(&Not("a"))", "0"},
      {R"(&Or(0, 1))", "1"},
      {R"(&Or("", 0))", "0"},
      {R"(&And(1, "x"))", "1"},
      {R"(&And(1, ""))", "0"},
      {R"(&XOR(1, 0))", "1"},
      {R"(&XOR("a", "b"))", "0"},
      {R"(&While(1, "x"))", ""},
      // Equality keeps its asymmetry.
      {R"(&Eql("abc", "ABC"))", "1"},
      {"&Eql(\"\xE4\", \"\xC4\")", "1"},
      {R"(&Eql("1.0", "1"))", "1"},
      {R"(&NEql("1.0", "1"))", "1"},
      {R"(&NEql("abc", "ABC"))", "0"},
      {R"(&Eql("a", "b"))", "0"},
      {R"(&Eql("", "0"))", "1"},  // the empty text is the number 0
      {R"(&Eql("1a", "1"))", "0"},
      // Order is numeric or byte-wise.
      {R"(&Grtr("10", "9"))", "1"},
      {R"(&Grtr("b", "a"))", "1"},
      {R"(&Less("10", "9"))", "0"},
      {R"(&Less("10", "9a"))", "1"},
      {R"(&Less("B", "a"))", "1"},
      {"&Grtr(\"\xE4\", \"z\")", "1"},
      {R"(&Less("", "1"))", "1"},
      {R"(&Less("ab", "abc"))", "1"},
      {R"(&LEql("2", "2.0"))", "1"},
      {R"(&GEql("2", "2.0"))", "1"},
      {R"(&LEql("b", "a"))", "0"},
      {R"(&GEql("a", "a"))", "1"},
      {R"(&Less(-2, -10))", "0"},
      // Bit functions work on unsigned 32 bits.
      {R"(&BITAND(12, 10))", "8"},
      {R"(&BITOR(12, 10))", "14"},
      {R"(&BITXOR(12, 10))", "6"},
      {R"(&BITNOT(0))", "4294967295"},
      {R"(&BITNOT(-1))", "0"},
      {R"(&BITAND("0xFF", 4660))", "52"},
      {R"(&BITOR(4294967295, 0))", "4294967295"},
      {R"(&BITNOT(5000000000))", "0"},
      {R"(&BITAND("x", 7))", "0"},
      // OR, AND and NOT reach the shadowing basic entries: the
      // error names them as the basic table registered them.
      {R"(&OR(0, 1))", "1"},
      {R"(&OR(1))", "[incorrect number of parameters: Operator Or expects 2 parameters]"},
      {R"(&AND(1))", "[incorrect number of parameters: Operator And expects 2 parameters]"},
      {R"(&not())", "[incorrect number of parameters: Operator Not expects 1 parameters]"},
  });
}

}  // namespace
}  // namespace kerfline::test
