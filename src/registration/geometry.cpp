// Small plane geometry for mesh correction.
#include <algorithm>
#include <cmath>

#include "kerfline/kerfline.h"

namespace {

double distance(const MESHPOINT& a, const MESHPOINT& b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  return std::sqrt(dx * dx + dy * dy);
}

}  // namespace

extern "C" {

KERFLINE_API double PointToPoint(const MESHPOINT* a, const MESHPOINT* b) noexcept {
  if (a == nullptr || b == nullptr) return -2.0;
  return distance(*a, *b);
}

KERFLINE_API double PointToLine(const MESHPOINT* a, const MESHPOINT* b, const MESHPOINT* p,
                                MESHPOINT* foot) noexcept {
  if (a == nullptr || b == nullptr || p == nullptr || foot == nullptr) return -2.0;
  double c = distance(*a, *b);
  if (c == 0.0) c = 1e-7;
  const double side_a = distance(*b, *p);
  const double side_b = distance(*a, *p);
  // Heron's formula; for a point on the line rounding can push the product
  // a little below zero, which is a zero area.
  const double s = (side_a + side_b + c) / 2;
  const double area = std::sqrt(std::max(0.0, s * (s - side_a) * (s - side_b) * (s - c)));
  const double h = 2 * area / c;
  // The foot's distance from a, always taken towards b.
  const double t = std::sqrt(std::max(0.0, side_b * side_b - h * h));
  foot->x = a->x + (b->x - a->x) * t / c;
  foot->y = a->y + (b->y - a->y) * t / c;
  return h;
}

}  // extern "C"
