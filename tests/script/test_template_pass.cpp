// The template pass through the evaluation entry: calls, copying of the text
// around them, and every error with its exact printed form. An error makes
// the pass's whole output the bracketed message.
#include <gtest/gtest.h>

#include <string>

#include "fixtures/table_names.hpp"
#include "script/function_registry.hpp"
#include "script_fixture.hpp"

namespace kerfline::script {
namespace {

struct Row {
  std::string templ;
  std::string expected;
  bool error;  // the pass failed: its output is the error text
};

class TemplatePass : public ::testing::TestWithParam<Row> {
 protected:
  TemplatePass() {
    add_user_function(bench_.registry, "Twice", "a", "&Join(a, a)");
    add_user_function(bench_.registry, "Wrap", "x", R"(Join("[", Join(x, "]")))");
    add_user_function(bench_.registry, "Both", "a, b", "Join(b, a)");
    add_user_function(bench_.registry, "Empty", "", "");
    add_user_function(bench_.registry, "BadBody", "", R"(T("\q"))");
    add_user_function(bench_.registry, "Loop", "a", "Loop(a)");
    add_user_function(bench_.registry, "Grow", "a", "Grow(Join(a, a))");
    bench_.shared.set("%x%", "hello", 0xFFFFFFFFu);
    bench_.shared.set("low", "seen on channel 0 only", 0x1u);
    bench_.shared.set("high", "bit 31", 0x80000000u);
    bench_.shared.set("dup", "shared", 0xFFFFFFFFu);
    bench_.evaluator->own_variables().set("own", "mine", 0xFFFFFFFFu);
    bench_.evaluator->own_variables().set("dup", "own", 0xFFFFFFFFu);
  }
  kerfline::test::ScriptBench bench_;
};

TEST_P(TemplatePass, Output) {
  const Row& row = GetParam();
  EXPECT_EQ(bench_.evaluator->evaluate(row.templ, -1), row.expected);
  EXPECT_EQ(bench_.evaluator->pass_failed(), row.error);
  // A pass that catches its error leaves the error flag clear.
  EXPECT_FALSE(bench_.evaluator->error());
  if (row.error) {
    EXPECT_EQ(bench_.evaluator->last_error(), row.expected);
  }
}

// Text without calls, and "&" that starts no call, come back byte for byte;
// then calls, variables and user functions.
INSTANTIATE_TEST_SUITE_P(
    Output, TemplatePass,
    ::testing::Values(
        Row{"PU %x%,%y%;", "PU %x%,%y%;", false},
        Row{"line 1\r\n\tline  2 \n", "line 1\r\n\tline  2 \n", false}, Row{"", "", false},
        Row{"a & b && c", "a & b && c", false},
        Row{"&Unknown(1) &Left x &Left", "&Unknown(1) &Left x &Left", false},
        Row{"&\"Left\"(\"a\", 1)", "&\"Left\"(\"a\", 1)", false},
        Row{R"x(say "&Left(1,1)" now)x", R"x(say "&Left(1,1)" now)x", false}, Row{"&", "&", false},
        // Calls.
        Row{R"(&Left("ABCDEF", 2))", "AB", false}, Row{R"(a &Left("ABCDEF", 2) b)", "a AB b", false},
        Row{R"(&left("abc", 1)&LEFT("xyz", 1))", "ax", false},
        Row{"& Left ( \"ABC\" ,\n 1 ) !", "A !", false}, Row{R"(&Left(Upper("abc"), 2);)", "AB;", false},
        Row{R"(&Left("A\"B", 2))", "A\"", false}, Row{R"(&T("a\\\\b"))", "a\\b", false},
        Row{"&T(-1.5)&T(1.2.3)&T(7)", "-1.51.2.37", false}, Row{"&&T(1)", "&1", false},
        Row{"(&T(\"(\"))", "(()", false},
        // Variables.
        Row{"VS&T(%x%);", "VShello;", false}, Row{"&T(%X%)", "hello", false},
        Row{"&T(high)", "bit 31", false}, Row{"&T(own)", "mine", false}, Row{"&T(dup)", "shared", false},
        Row{R"(&VarSet("v", "set")&T(V))", "set", false},
        Row{R"(&VarSet("dup", "script")&T(dup))", "shared", false},
        Row{"&T(low)", "[unrecognized variable or operator: low]", true},
        // User functions.
        Row{R"(&Twice("ab"))", "abab", false}, Row{R"(&Wrap("a"))", "[a]", false},
        Row{R"(&Wrap(Upper("b")))", "[B]", false}, Row{R"(&Both("1", Left("23", 1)))", "21", false},
        Row{R"(&Twice("a", "b"))", "[incorrect number of parameters: Operator Twice expects 1 parameters]",
            true},
        Row{"&Empty()", "[fatal internal error: No token]", true},
        Row{"&BadBody()", "[syntax error: Illegal escape sequence: \\q]", true},
        Row{"&Loop(1)", "[internal recursion limit reached]", true},
        Row{R"(&Grow("x"))", "[internal recursion limit reached]", true}),
    kerfline::test::RowIndex());

// Code 1: syntax errors, from the tokenizer (anywhere in the text) and parser.
INSTANTIATE_TEST_SUITE_P(
    Errors, TemplatePass,
    ::testing::Values(
        Row{R"(&T("a\nb"))", "[syntax error: Illegal escape sequence: \\n]", true},
        Row{R"(no call, "bad\q" literal)", "[syntax error: Illegal escape sequence: \\q]", true},
        Row{R"(&T("x") then "\q")", "[syntax error: Illegal escape sequence: \\q]", true},
        Row{R"(&T("a\\b"))", "[syntax error: Illegal escape sequence: \\b]", true},
        Row{"&Left(Upper, 1)", "[syntax error: Operator Upper missing parameter list]", true},
        Row{"&Left(, 1)", "[syntax error: , is not a valid operator]", true},
        Row{R"(&Left("a",))", "[syntax error: ) is not a valid operator]", true},
        Row{R"(&Left(&Upper("a"), 1))", "[syntax error: & is not a valid operator]", true},
        Row{R"(&Left(("a"), 1))", "[syntax error: ( is not a valid operator]", true},
        // Code 2: a call without its closing parenthesis; the text before it is lost.
        Row{R"(&Left("ABCDEF", 2)", "[invalid expression (no end found): &(]", true},
        Row{R"(kept? &T("a") &T("abc)", "[invalid expression (no end found): &(]", true},
        Row{R"(&Left(Upper("a", 1))", "[invalid expression (no end found): &(]", true},
        // Code 3: parameter counts.
        Row{R"(&Left("AB"))", "[incorrect number of parameters: Operator Left expects 2 parameters]", true},
        Row{R"(before &T("x") &Left("A"))",
            "[incorrect number of parameters: Operator Left expects 2 parameters]", true},
        Row{"&T()", "[incorrect number of parameters: Operator T expects 1 parameters]", true},
        // An unclosed literal is not quoted, so its ")" closes the call.
        Row{R"(&T("))", "[incorrect number of parameters: Operator T expects 1 parameters]", true},
        Row{R"(&Left("A", "B", "C"))", "[incorrect number of parameters]", true},
        Row{R"(&T("a" "b"))", "[incorrect number of parameters]", true},
        // Codes 4 and 6.
        Row{"&Greedy()", "[fatal internal error: Not enough operands on the stack]", true},
        Row{"&T(abc)", "[unrecognized variable or operator: abc]", true},
        Row{"&T(12abc)", "[unrecognized variable or operator: 12abc]", true}),
    kerfline::test::RowIndex());

}  // namespace
}  // namespace kerfline::script
