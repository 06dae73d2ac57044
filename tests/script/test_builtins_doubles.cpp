// Floating-point functions and interpolation: call -> exact output.
#include "builtin_rows.hpp"

namespace kerfline::test {
namespace {

TEST(BuiltinDoubles, CallsGiveExactOutput) {
  expect_rows({
      // Arithmetic prints short decimals.
      {R"(&DAdd(0.1, 0.2))", "0.3"},
      {R"(&DSub(1, 3))", "-2"},
      {R"(&DSub(0.3, 0.1))", "0.2"},
      {R"(&DMul(2.5, 2.5))", "6.25"},
      {R"(&DMul(-1, 0))", "0"},
      {R"(&DMul(1.5, 0.000001))", "0.0000015"},
      {R"(&DMul(0.00000000001, 1))", "0"},
      {R"(&DDiv(1, 3))", "0.3333333333"},
      {R"(&DDiv(2, 3))", "0.6666666667"},
      {R"(&DDiv(1, 0))", "???"},
      {R"(&DDiv(0, 0))", "???"},
      {R"(&DAdd(123456789012345678, 0))", "123456789012346000"},
      {R"(&DAdd("1e3", "x"))", "1000"},
      // Rounding and the parts of a number.
      {R"(&DRound(3.14159, 2))", "3.14"},
      {R"(&DRound(2.5, 0))", "3"},
      {R"(&DRound(-2.5, 0))", "-3"},
      {R"(&DRound(1.005, 2))", "1.01"},
      {R"(&DRound(3.1, 3))", "3.100"},
      {R"(&DRound(9.996, 2))", "10.00"},
      {R"(&DRound(-0.001, 2))", "0.00"},
      {R"(&DRound(5.5, -1))", "6"},
      {R"(&DCeil(1.2))", "2"},
      {R"(&DFloor(-1.2))", "-2"},
      {R"(&DAbs(-3.5))", "3.5"},
      {R"(&DMod(10, 3))", "1"},
      {R"(&DMod(-10, 3))", "-1"},
      {R"(&DMod(1, 0))", "???"},
      {R"(&DFract(12.01))", "0.01"},
      {R"(&DFract(-12.01))", "-0.01"},
      {R"(&DInt(12.01))", "12"},
      {R"(&DInt(-12.9))", "-12"},
      // Functions as their second texts name them.
      {R"(&DSin(0))", "0"},
      {R"(&DCos(0))", "1"},
      {R"(&DTan(0.5))", "0.5463024898"},
      {R"(&DaSin(1))", "1.5707963268"},
      {R"(&DaCos(2))", "???"},
      {R"(&DaTan(1))", "0.7853981634"},
      {R"(&DaTan2(1, 0))", "1.5707963268"},
      {R"(&DaTan2(-1, -1))", "0.7853981634"},  // atan(y/x): no quadrant
      {R"(&DaTan2(0, 0))", "???"},
      {R"(&DSinh(1))", "1.1752011936"},
      {R"(&DCosh(0))", "1"},
      {R"(&DTanh(0.5))", "0.5493061443"},  // atanh, as its second text says
      {R"(&DSqrt(2))", "1.4142135624"},
      {R"(&DSqrt(-1))", "???"},
      {R"(&DPow(2, 10))", "1024"},
      {R"(&DLn(1))", "0"},
      {R"(&DLog(100))", "4.605170186"},  // log(d1): the natural logarithm
      // Interpolation along a line and an arc.
      {R"(&ILineX(0, 0, 10, 0, 5))", "5"},
      {R"(&ILineY(0, 0, 0, 10, 2.6))", "3"},
      {R"(&ILineX(0, 0, 3, 4, 10))", "6"},
      {R"(&ILineY(0, 0, 3, 4, 10))", "8"},
      {R"(&ILineX(7, 8, 7, 8, 5))", "7"},
      {R"(&ILineY(7, 8, 7, 8, 5))", "8"},
      {R"(&ILineX(0, 0, 10, 0, 15))", "15"},
      {R"(&ILineX(0, 0, -10, 0, 0.4))", "-0"},  // "%.0f" as C prints it
      {R"(&IAR(4, 10, 0, 0, 0, 360, "PA%x%,%y%;", 1, 1))", "PA0,10;PA-10,0;PA0,-10;PA10,0;"},
      {R"(&IAR(2, 10, 0, 0, 0, 180, "%x%/%Y% ", 2, 0.5))", "0/5 -20/0 "},
      {R"(&IAR(1, 10, 0, 0, 0, -90, "%x%,%y%", 1, 1))", "0,-10"},
      {R"x(&IAR(2, 5, 5, 5, 0, 90, "(%x%,%y%)", 0, 0))x", "(1,4)(0,0)"},
      {R"(&IAR(0, 10, 0, 0, 0, 90, "x", 1, 1))", ""},
      {R"(&IAR(1, 10, 0, 0, 0, 90, "%z%", 1, 1))", "%z%"},
  });
}

}  // namespace
}  // namespace kerfline::test
