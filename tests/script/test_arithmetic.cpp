// The arithmetic evaluator and the arithmetic pass around it.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>

#include "fixtures/table_names.hpp"
#include "script/arithmetic.hpp"
#include "script/numbers.hpp"
#include "script_fixture.hpp"

namespace kerfline::script {
namespace {

struct ValueRow {
  std::string expression;
  std::optional<double> expected;
};

class Arithmetic : public ::testing::TestWithParam<ValueRow> {};

TEST_P(Arithmetic, Value) {
  const ValueRow& row = GetParam();
  const std::optional<double> value = evaluate_arithmetic(row.expression);
  ASSERT_EQ(value.has_value(), row.expected.has_value()) << row.expression;
  if (value) {
    EXPECT_NEAR(*value, *row.expected, 1e-9) << row.expression;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Arithmetic,
    ::testing::Values(
        ValueRow{"1+2*3", 7}, ValueRow{"(1+2)*3", 9}, ValueRow{" 10 / 4 ", 2.5}, ValueRow{"2^3^2", 512},
        ValueRow{"-2^2", -4}, ValueRow{"2^-1", 0.5}, ValueRow{"--3", 3}, ValueRow{"+3-1-1", 1},
        ValueRow{"1e3+.5", 1000.5}, ValueRow{"2*-3", -6}, ValueRow{"(-8)^(1/3)", std::nullopt},
        ValueRow{"(-2)^2", 4}, ValueRow{"0^-1", std::nullopt}, ValueRow{"1/0", std::nullopt},
        ValueRow{"1/0.0000000001", std::nullopt}, ValueRow{"", std::nullopt}, ValueRow{"1+", std::nullopt},
        ValueRow{"(1", std::nullopt}, ValueRow{"1)", std::nullopt}, ValueRow{"1..2", std::nullopt},
        ValueRow{"1e400", std::nullopt}, ValueRow{"abc", std::nullopt}, ValueRow{"1 2", std::nullopt},
        ValueRow{"10^400", std::nullopt},
        // Functions, in degrees.
        ValueRow{"SIN(30)", 0.5}, ValueRow{"sin 90", 1}, ValueRow{"COS(60)", 0.5}, ValueRow{"TAN(45)", 1},
        ValueRow{"COT(45)", 1}, ValueRow{"ASIN(1)", 90}, ValueRow{"ACOS(0)", 90}, ValueRow{"ATAN(1)", 45},
        ValueRow{"ACOT(1)", 45}, ValueRow{"ACOT(0)", 90}, ValueRow{"SINH(0)", 0}, ValueRow{"COSH(0)", 1},
        ValueRow{"TANH(0)", 0}, ValueRow{"COTH(1)", 1 / std::tanh(1.0)}, ValueRow{"ASINH(0)", 0},
        ValueRow{"ACOSH(1)", 0}, ValueRow{"ATANH(0.5)", std::atanh(0.5)},
        ValueRow{"ACOTH(2)", std::atanh(0.5)}, ValueRow{"LG(1000)", 3}, ValueRow{"LN(EXP(2))", 2},
        ValueRow{"SQRT(16)", 4}, ValueRow{"ABS(-3)", 3}, ValueRow{"SIGN(-2)", -1},
        ValueRow{"SIGN(0.0000000001)", 0}, ValueRow{"SIGN(5)", 1}, ValueRow{"FAK(5)", 120},
        ValueRow{"FAK(0)", 1}, ValueRow{"SWON(1)", 1}, ValueRow{"SWON(0)", 0}, ValueRow{"SWOF(1)", 0},
        ValueRow{"SWOFF(-1)", 1}, ValueRow{"2*SQRT 9", 6}, ValueRow{"SIN(180)", 0},
        ValueRow{"ASIN(1.0000000001)", 90},
        // Outside a function's domain.
        ValueRow{"TAN(90)", std::nullopt}, ValueRow{"COT(0)", std::nullopt},
        ValueRow{"ASIN(2)", std::nullopt}, ValueRow{"ACOS(-1.1)", std::nullopt},
        ValueRow{"LG(0)", std::nullopt}, ValueRow{"LN(-1)", std::nullopt}, ValueRow{"SQRT(-1)", std::nullopt},
        ValueRow{"FAK(-1)", std::nullopt}, ValueRow{"FAK(2.5)", std::nullopt},
        ValueRow{"FAK(171)", std::nullopt}, ValueRow{"EXP(1000)", std::nullopt},
        ValueRow{"ATANH(1)", std::nullopt}, ValueRow{"ACOTH(1)", std::nullopt},
        ValueRow{"ACOSH(0)", std::nullopt}, ValueRow{"COTH(0)", std::nullopt},
        ValueRow{"SINH(1000)", std::nullopt}, ValueRow{"NOPE(1)", std::nullopt},
        ValueRow{"SIN", std::nullopt}),
    kerfline::test::RowIndex());

TEST(ArithmeticBounds, DeepNestingFailsInsteadOfOverflowing) {
  EXPECT_EQ(evaluate_arithmetic(std::string(150, '(') + "1" + std::string(150, ')')),
            std::optional<double>(1));
  EXPECT_EQ(evaluate_arithmetic(std::string(100000, '(') + "1" + std::string(100000, ')')), std::nullopt);
  EXPECT_EQ(evaluate_arithmetic(std::string(100000, '-') + "1"), std::nullopt);
}

struct PassRow {
  std::string text;
  int decimals;
  std::string expected;
};

class ArithmeticPass : public ::testing::TestWithParam<PassRow> {
 protected:
  kerfline::test::ScriptBench bench_;
};

TEST_P(ArithmeticPass, Output) {
  const PassRow& row = GetParam();
  EXPECT_EQ(bench_.evaluator->arithmetic_pass(row.text, row.decimals), row.expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, ArithmeticPass,
                         ::testing::Values(PassRow{"%[2*3.4]%", 0, "7"}, PassRow{"%[1/3]%", 0, "0"},
                                           PassRow{"%[1/3]%", 2, "0.33"},
                                           PassRow{"x=%[1+1]% y=%[ 3 * 3 ]%;", 0, "x=2 y=9;"},
                                           PassRow{"%[bad]%", 3, "0.00"}, PassRow{"%[]%", 0, "0.00"},
                                           PassRow{"%[2.5]%", 0, "2"}, PassRow{"%[3.5]%", 0, "4"},
                                           PassRow{"%[-0.4]%", 0, "-0"}, PassRow{"%[-0.0000000001]%", 0, "0"},
                                           PassRow{"%[1e20]%", 0, "100000000000000000000"},
                                           PassRow{"%[1+2", 0, "0.0"}, PassRow{"a %[1]% b %[2", 0, "0.0"},
                                           PassRow{"no blocks ]% here", 0, "no blocks ]% here"},
                                           // The end is looked for from the scan position.
                                           PassRow{"]%%[1]%", 0, "]%0.001"}),
                         kerfline::test::RowIndex());

TEST(ArithmeticPassBounds, RunawayOutputGivesTheStatusText) {
  kerfline::test::ScriptBench bench;
  std::string many;
  for (int i = 0; i < 20000; ++i) many += "]%";
  EXPECT_EQ(bench.evaluator->arithmetic_pass(many + "%[1]%", 0), "0.0");
}

struct NumberRow {
  std::string text;
  double expected;
};

class TextToNumber : public ::testing::TestWithParam<NumberRow> {};

TEST_P(TextToNumber, ReadsTheLeadingDecimal) {
  EXPECT_EQ(text_to_number(GetParam().text), GetParam().expected) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Rows, TextToNumber,
                         ::testing::Values(NumberRow{"12", 12}, NumberRow{" -3.5x", -3.5}, NumberRow{"+2", 2},
                                           NumberRow{"abc", 0}, NumberRow{"", 0}, NumberRow{".", 0},
                                           NumberRow{".5", 0.5}, NumberRow{"1e3", 1000}, NumberRow{"1e", 1},
                                           NumberRow{"1,5", 1}, NumberRow{"1e-400", 0},
                                           NumberRow{"-1e400", -HUGE_VAL}, NumberRow{"0.000e999", 0}),
                         kerfline::test::RowIndex());

}  // namespace
}  // namespace kerfline::script
