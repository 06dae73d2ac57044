#include "triangle_locator.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ocv {

namespace {

// Registrations per triangle beyond which the grid is coarsened: long thin
// triangles must not make the grid quadratic in size.
constexpr std::int64_t kMaxCellsPerTriangle = 16;

double orient(Point a, Point b, Point c) { return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x); }

double squared_distance_to_segment(Point q, Point a, Point b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double len2 = dx * dx + dy * dy;
  double t = len2 > 0 ? ((q.x - a.x) * dx + (q.y - a.y) * dy) / len2 : 0.0;
  t = std::clamp(t, 0.0, 1.0);
  const double ex = a.x + t * dx - q.x;
  const double ey = a.y + t * dy - q.y;
  return ex * ex + ey * ey;
}

}  // namespace

TriangleLocator::TriangleLocator(std::vector<Point> points, std::vector<Triangle> triangles)
    : points_(std::move(points)), triangles_(std::move(triangles)) {
  if (triangles_.empty()) return;
  build_grid();
  find_hull();
}

std::int64_t TriangleLocator::column_of(double x) const {
  const double c = std::floor((x - min_x_) / cell_w_);
  return static_cast<std::int64_t>(std::clamp(c, 0.0, static_cast<double>(columns_ - 1)));
}

std::int64_t TriangleLocator::row_of(double y) const {
  const double r = std::floor((y - min_y_) / cell_h_);
  return static_cast<std::int64_t>(std::clamp(r, 0.0, static_cast<double>(rows_ - 1)));
}

void TriangleLocator::build_grid() {
  min_x_ = min_y_ = std::numeric_limits<double>::max();
  max_x_ = max_y_ = std::numeric_limits<double>::lowest();
  for (const Triangle& t : triangles_) {
    for (const std::int32_t v : t.v) {
      min_x_ = std::min(min_x_, points_[v].x);
      max_x_ = std::max(max_x_, points_[v].x);
      min_y_ = std::min(min_y_, points_[v].y);
      max_y_ = std::max(max_y_, points_[v].y);
    }
  }
  const double width = max_x_ - min_x_;
  const double height = max_y_ - min_y_;
  const auto n = static_cast<double>(triangles_.size());
  // About one cell per triangle, cells about square.
  double cols = width > 0 && height > 0 ? std::sqrt(n * width / height) : 1.0;
  cols = std::clamp(std::round(cols), 1.0, n);
  columns_ = static_cast<std::int64_t>(cols);
  rows_ = std::max<std::int64_t>(1, static_cast<std::int64_t>(n) / columns_);

  std::vector<std::int64_t> counts;
  for (;;) {
    cell_w_ = width > 0 ? width / static_cast<double>(columns_) : 1.0;
    cell_h_ = height > 0 ? height / static_cast<double>(rows_) : 1.0;
    std::int64_t total = 0;
    for (const Triangle& t : triangles_) {
      const Point a = points_[t.v[0]], b = points_[t.v[1]], c = points_[t.v[2]];
      const std::int64_t c0 = column_of(std::min({a.x, b.x, c.x})), c1 = column_of(std::max({a.x, b.x, c.x}));
      const std::int64_t r0 = row_of(std::min({a.y, b.y, c.y})), r1 = row_of(std::max({a.y, b.y, c.y}));
      total += (c1 - c0 + 1) * (r1 - r0 + 1);
    }
    if (total <= kMaxCellsPerTriangle * static_cast<std::int64_t>(triangles_.size()) ||
        (columns_ == 1 && rows_ == 1)) {
      break;
    }
    columns_ = (columns_ + 1) / 2;
    rows_ = (rows_ + 1) / 2;
  }

  // Two passes over the triangles: count per cell, then fill.
  cell_start_.assign(static_cast<std::size_t>(columns_ * rows_) + 1, 0);
  auto for_cells = [this](const Triangle& t, auto visit) {
    const Point a = points_[t.v[0]], b = points_[t.v[1]], c = points_[t.v[2]];
    const std::int64_t c0 = column_of(std::min({a.x, b.x, c.x})), c1 = column_of(std::max({a.x, b.x, c.x}));
    const std::int64_t r0 = row_of(std::min({a.y, b.y, c.y})), r1 = row_of(std::max({a.y, b.y, c.y}));
    for (std::int64_t r = r0; r <= r1; ++r) {
      for (std::int64_t col = c0; col <= c1; ++col) visit(static_cast<std::size_t>(r * columns_ + col));
    }
  };
  for (const Triangle& t : triangles_) for_cells(t, [this](std::size_t cell) { ++cell_start_[cell + 1]; });
  for (std::size_t i = 1; i < cell_start_.size(); ++i) cell_start_[i] += cell_start_[i - 1];
  cell_items_.resize(cell_start_.back());
  std::vector<std::size_t> next(cell_start_.begin(), cell_start_.end() - 1);
  for (std::size_t i = 0; i < triangles_.size(); ++i) {
    for_cells(triangles_[i],
              [&](std::size_t cell) { cell_items_[next[cell]++] = static_cast<std::int32_t>(i); });
  }
}

void TriangleLocator::find_hull() {
  // An edge that belongs to one triangle only lies on the hull.
  std::vector<HullEdge> edges;
  edges.reserve(triangles_.size() * 3);
  for (std::size_t i = 0; i < triangles_.size(); ++i) {
    const Triangle& t = triangles_[i];
    for (int k = 0; k < 3; ++k) {
      const std::int32_t a = t.v[k], b = t.v[(k + 1) % 3];
      edges.push_back({std::min(a, b), std::max(a, b), static_cast<std::int32_t>(i)});
    }
  }
  std::sort(edges.begin(), edges.end(),
            [](const HullEdge& l, const HullEdge& r) { return l.a != r.a ? l.a < r.a : l.b < r.b; });
  for (std::size_t i = 0; i < edges.size();) {
    std::size_t j = i;
    while (j < edges.size() && edges[j].a == edges[i].a && edges[j].b == edges[i].b) ++j;
    if (j - i == 1) hull_.push_back(edges[i]);
    i = j;
  }
}

bool TriangleLocator::contains(const Triangle& t, Point q) const {
  const Point a = points_[t.v[0]], b = points_[t.v[1]], c = points_[t.v[2]];
  const double area = orient(a, b, c);
  if (area == 0) return false;
  // Barycentric weights, with a little slack so points on an edge count.
  const double slack = -1e-12 * std::fabs(area);
  const double sign = area > 0 ? 1.0 : -1.0;
  return sign * orient(b, c, q) >= slack && sign * orient(c, a, q) >= slack &&
         sign * orient(a, b, q) >= slack;
}

std::int32_t TriangleLocator::nearest_on_hull(Point q) const {
  std::int32_t best = hull_.empty() ? 0 : hull_.front().triangle;
  double best_d = std::numeric_limits<double>::infinity();
  for (const HullEdge& e : hull_) {
    const double d = squared_distance_to_segment(q, points_[e.a], points_[e.b]);
    if (d < best_d) {
      best_d = d;
      best = e.triangle;
    }
  }
  return best;
}

std::int32_t TriangleLocator::locate(Point q) const {
  if (triangles_.empty() || !std::isfinite(q.x) || !std::isfinite(q.y)) return -1;
  if (q.x >= min_x_ && q.x <= max_x_ && q.y >= min_y_ && q.y <= max_y_) {
    const auto cell = static_cast<std::size_t>(row_of(q.y) * columns_ + column_of(q.x));
    for (std::size_t i = cell_start_[cell]; i < cell_start_[cell + 1]; ++i) {
      if (contains(triangles_[cell_items_[i]], q)) return cell_items_[i];
    }
  }
  // Outside the mesh: the closest point of the mesh lies on a hull edge.
  return nearest_on_hull(q);
}

}  // namespace ocv
