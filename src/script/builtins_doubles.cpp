// Floating-point functions and the interpolations. Each D function applies
// the C function its second text names; results print with up to 15
// significant digits (double_text).
#include <algorithm>
#include <cmath>

#include "platform/codepage.hpp"
#include "script/builtins.hpp"
#include "script/limits.hpp"
#include "script/numbers.hpp"

namespace kerfline::script::builtin {
namespace {

double arg(std::string_view text) { return text_to_number(text); }

template <typename F>
std::string unary(ArgStack& args, F f) {
  return double_text(f(arg(args.pop())));
}

template <typename F>
std::string binary(ArgStack& args, F f) {
  const auto [a, b] = pop_args<2>(args);
  return double_text(f(arg(a), arg(b)));
}

// "%.0f", and "???" where there is no number to print.
std::string whole_coordinate(double value) { return std::isfinite(value) ? format_fixed(value, 0) : "???"; }

// As whole_coordinate, but never "-0": the rounding noise of cos and sin
// must not show in device instructions.
std::string arc_coordinate(double value) {
  std::string text = whole_coordinate(value);
  return text == "-0" ? "0" : text;
}

// The point at `length` along the line from start towards end (beyond the
// end for a longer length, behind the start for a negative one); the start
// itself for a line of no length.
void point_on_line(ArgStack& args, double& x, double& y) {
  const auto [xs, ys, xe, ye, length] = pop_args<5>(args);
  x = arg(xs);
  y = arg(ys);
  const double dx = arg(xe) - x;
  const double dy = arg(ye) - y;
  const double line = std::hypot(dx, dy);
  if (line == 0.0 || !std::isfinite(line)) return;
  const double t = arg(length) / line;
  x += dx * t;
  y += dy * t;
}

// Replaces every "%x%" and "%y%" (any case) of the template.
std::string fill_point(std::string_view templ, std::string_view x, std::string_view y) {
  std::string out;
  std::size_t i = 0;
  while (i < templ.size()) {
    if (i + 2 < templ.size() && templ[i] == '%' && templ[i + 2] == '%') {
      const unsigned char c = platform::cp1252::to_upper(static_cast<unsigned char>(templ[i + 1]));
      if (c == 'X' || c == 'Y') {
        out += c == 'X' ? x : y;
        i += 3;
        continue;
      }
    }
    out.push_back(templ[i++]);
  }
  return out;
}

}  // namespace

std::string d_add(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return binary(args, [](double a, double b) { return a + b; });
}
std::string d_sub(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return binary(args, [](double a, double b) { return a - b; });
}
std::string d_mul(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return binary(args, [](double a, double b) { return a * b; });
}
std::string d_div(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return binary(args, [](double a, double b) { return a / b; });
}
std::string d_mod(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return binary(args, [](double a, double b) { return std::fmod(a, b); });
}
std::string d_pow(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return binary(args, [](double a, double b) { return std::pow(a, b); });
}
// atan(y/x), as its texts say: the quadrant is not restored.
std::string d_atan2(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return binary(args, [](double y, double x) { return std::atan(y / x); });
}

std::string d_round(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [value, digits] = pop_args<2>(args);
  return rounded_text(arg(value), text_to_int(digits));
}

std::string d_ceil(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::ceil(d); });
}
std::string d_floor(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::floor(d); });
}
std::string d_abs(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::abs(d); });
}
std::string d_fract(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return d - std::trunc(d); });
}
std::string d_int(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::trunc(d); });
}
std::string d_sin(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::sin(d); });
}
std::string d_cos(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::cos(d); });
}
std::string d_tan(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::tan(d); });
}
std::string d_asin(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::asin(d); });
}
std::string d_acos(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::acos(d); });
}
std::string d_atan(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::atan(d); });
}
std::string d_sinh(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::sinh(d); });
}
std::string d_cosh(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::cosh(d); });
}
// The function its second text names is atanh; drivers get what they had.
std::string d_tanh(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::atanh(d); });
}
std::string d_sqrt(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::sqrt(d); });
}
std::string d_ln(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::log(d); });
}
// log(d1) as named: the natural logarithm, like DLn.
std::string d_log(ArgStack& args, const FunctionRecord&, Evaluator&) {
  return unary(args, [](double d) { return std::log(d); });
}

std::string i_line_x(ArgStack& args, const FunctionRecord&, Evaluator&) {
  double x = 0.0;
  double y = 0.0;
  point_on_line(args, x, y);
  return whole_coordinate(x);
}

std::string i_line_y(ArgStack& args, const FunctionRecord&, Evaluator&) {
  double x = 0.0;
  double y = 0.0;
  point_on_line(args, x, y);
  return whole_coordinate(y);
}

// IAR(Count, xAct, yAct, xCenter, yCenter, Arc, Templ, scaleX, scaleY): the
// arc from the current point around the center by Arc degrees
// (counter-clockwise when positive) as Count lines; the template is written
// once per line end with %x% and %y% replaced by the end point times the
// scales ("%.0f", "-0" written as "0"; a scale of 0 counts as 1).
std::string iar(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [count_text, xa, ya, xc, yc, arc, templ, sx, sy] = pop_args<9>(args);
  const int count = std::min(text_to_int(count_text), kMaxArcLines);
  const double cx = arg(xc);
  const double cy = arg(yc);
  const double radius = std::hypot(arg(xa) - cx, arg(ya) - cy);
  const double start = std::atan2(arg(ya) - cy, arg(xa) - cx);
  const double sweep = arg(arc) * (3.14159265358979323846 / 180.0);
  const double scale_x = arg(sx) == 0.0 ? 1.0 : arg(sx);
  const double scale_y = arg(sy) == 0.0 ? 1.0 : arg(sy);
  std::string out;
  for (int i = 1; i <= count && out.size() < kMaxFunctionResultBytes; ++i) {
    const double angle = start + sweep * i / count;
    const double x = (cx + radius * std::cos(angle)) * scale_x;
    const double y = (cy + radius * std::sin(angle)) * scale_y;
    append_capped(out, fill_point(templ, arc_coordinate(x), arc_coordinate(y)));
  }
  return out;
}

}  // namespace kerfline::script::builtin
