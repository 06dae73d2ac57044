// The conditional pass: block splitting, the decision table, operands that
// are evaluated by the template pass, and the status result "0.0".
#include <gtest/gtest.h>

#include <string>

#include "fixtures/table_names.hpp"
#include "script_fixture.hpp"

namespace kerfline::script {
namespace {

struct Row {
  std::string text;
  bool closed;
  std::string expected;
};

class ConditionalPass : public ::testing::TestWithParam<Row> {
 protected:
  ConditionalPass() {
    bench_.shared.set("BLK", "{[1][yes][no]}", 0xFFFFFFFFu);
    bench_.shared.set("LOOP", "{[&T(LOOP) == x][a][b]}", 0xFFFFFFFFu);
  }
  kerfline::test::ScriptBench bench_;
};

TEST_P(ConditionalPass, Output) {
  const Row& row = GetParam();
  EXPECT_EQ(bench_.evaluator->conditional_pass(row.text, row.closed), row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Decisions, ConditionalPass,
    ::testing::Values(Row{"{[1][yes][no]}", false, "yes"}, Row{"{[0][yes][no]}", false, "no"},
                      Row{"{[TRUE][yes][no]}", false, "yes"}, Row{"{[false][yes][no]}", false, "no"},
                      Row{"{[ISCLOSED][yes][no]}", false, "no"}, Row{"{[isClosed][yes][no]}", true, "yes"},
                      Row{"{[a == a][yes][no]}", false, "yes"}, Row{"{[A == a][yes][no]}", false, "no"},
                      Row{"{[b != a][yes][no]}", false, "yes"}, Row{"{[2 < 10][yes][no]}", false, "yes"},
                      Row{"{[2 > 10][yes][no]}", false, "no"}, Row{"{[10 <= 10.0][yes][no]}", false, "yes"},
                      Row{"{[9 >= 10][yes][no]}", false, "no"}, Row{"{[abc < 1][yes][no]}", false, "yes"},
                      Row{"{[x ~ y][yes][no]}", false, "yes"}, Row{"{[x][yes][no]}", false, "yes"},
                      Row{"{[a true a][yes][no]}", false, "no"}, Row{"{[a IsClosed a][yes][no]}", true, "no"},
                      Row{"{[a  == b][yes][no]}", false, "yes"}),
    kerfline::test::RowIndex());

INSTANTIATE_TEST_SUITE_P(
    Splitting, ConditionalPass,
    ::testing::Values(Row{"pre {[1][a][b]} mid {[0][c][d]} post", false, "pre a mid d post"},
                      Row{"{[1][a]b][c]}", false, "a]b"}, Row{"{[0][a][[c]]}", false, "c"},
                      Row{"{[1][][no]}", false, ""}, Row{"{[1][{inner][no]}", false, "{inner"},
                      Row{"{[0][yes]}", false, ""}, Row{"{}", false, ""},
                      Row{"x{[1][%[1+1]%][&T(2)]}y", false, "x%[1+1]%y"},
                      // Braces inside a quoted literal are still braces.
                      Row{R"(say "{" now} end)", false, "say \" end"},
                      // The end is looked for from the scan position.
                      Row{"a}b{[1][x][y]}", false, "a}bbx"},
                      // Unclosed blocks give the status text.
                      Row{"{[1][yes][no]", false, "0.0"}, Row{"text {[1][a][b]} and {", false, "0.0"},
                      Row{"no blocks at all }", false, "no blocks at all }"}),
    kerfline::test::RowIndex());

INSTANTIATE_TEST_SUITE_P(Operands, ConditionalPass,
                         ::testing::Values(Row{R"({[&Upper("a") == A][yes][no]})", false, "yes"},
                                           // An operand's error is only its value.
                                           Row{R"({[&Left("A") == x][yes][no]})", false, "no"},
                                           Row{"{[&T(BLK) == yes][match][differ]}", false, "match"},
                                           Row{"{[&T(LOOP) == x][a][b]}", false, "b"}),
                         kerfline::test::RowIndex());

TEST(ConditionalPassBounds, RunawayOutputGivesTheStatusText) {
  kerfline::test::ScriptBench bench;
  const std::string text = std::string(20000, '}') + "{[1][a][b]}";
  EXPECT_EQ(bench.evaluator->conditional_pass(text, false), "0.0");
}

}  // namespace
}  // namespace kerfline::script
