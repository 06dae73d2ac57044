#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"

#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <vector>

#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "platform/paths.hpp"

namespace kp = kerfline::platform;

namespace {

using Points = std::vector<MESHPOINT>;

double cross(MESHPOINT o, MESHPOINT a, MESHPOINT b) { return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x); }

double segment_distance(MESHPOINT q, MESHPOINT a, MESHPOINT b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double t = std::clamp(((q.x - a.x) * dx + (q.y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
  return std::hypot(a.x + t * dx - q.x, a.y + t * dy - q.y);
}

bool inside_triangle(MESHPOINT q, MESHPOINT a, MESHPOINT b, MESHPOINT c, double slack) {
  const double s = cross(a, b, c) > 0 ? 1.0 : -1.0;
  return s * cross(a, b, q) >= -slack && s * cross(b, c, q) >= -slack && s * cross(c, a, q) >= -slack;
}

double triangle_distance(MESHPOINT q, MESHPOINT a, MESHPOINT b, MESHPOINT c) {
  if (inside_triangle(q, a, b, c, 0)) return 0;
  return std::min({segment_distance(q, a, b), segment_distance(q, b, c), segment_distance(q, c, a)});
}

// Counter-clockwise convex hull (monotone chain), the test's own reference.
Points convex_hull(Points p) {
  std::sort(p.begin(), p.end(), [](MESHPOINT l, MESHPOINT r) { return l.x != r.x ? l.x < r.x : l.y < r.y; });
  Points h(2 * p.size());
  std::size_t k = 0;
  for (std::size_t i = 0; i < p.size(); ++i) {
    while (k >= 2 && cross(h[k - 2], h[k - 1], p[i]) <= 0) --k;
    h[k++] = p[i];
  }
  for (std::size_t i = p.size() - 1, t = k + 1; i-- > 0;) {
    while (k >= t && cross(h[k - 2], h[k - 1], p[i]) <= 0) --k;
    h[k++] = p[i];
  }
  h.resize(k - 1);
  return h;
}

double hull_distance(MESHPOINT q, const Points& hull) {
  bool inside = true;
  double d = INFINITY;
  for (std::size_t i = 0; i < hull.size(); ++i) {
    const MESHPOINT a = hull[i], b = hull[(i + 1) % hull.size()];
    if (cross(a, b, q) < 0) inside = false;
    d = std::min(d, segment_distance(q, a, b));
  }
  return inside ? 0 : d;
}

std::vector<int32_t> locate(MESHPOINT q) {
  int32_t out[3] = {-1, -1, -1};
  EXPECT_EQ(LocatePt(&q, out), 1);
  std::vector<int32_t> found;
  for (const int32_t i : out) {
    if (i >= 0) found.push_back(i);
  }
  return found;
}

class Mesh : public ::testing::Test {
 protected:
  void SetUp() override {
#ifndef KERFLINE_TEST_OCV_DIR
    GTEST_SKIP() << "the ocv plug-in is not built (no libqhull_r)";
#else
    kp::set_home_dir(KERFLINE_TEST_OCV_DIR);
#endif
  }
  void TearDown() override {
    FreeDelaunay();
    kp::set_home_dir("");
  }
};

}  // namespace

TEST(MeshPlugin, AbsentPluginGivesMinusOne) {
  kerfline::test::TempDir empty;
  kp::set_home_dir(empty.str());
  const MESHPOINT pts[3] = {{0, 0}, {1, 0}, {0, 1}};
  EXPECT_EQ(CreateDelaunay(3, pts), -1);
  int32_t out[3] = {-1, -1, -1};
  const MESHPOINT q{0.2, 0.2};
  EXPECT_EQ(LocatePt(&q, out), 0);
  EXPECT_EQ(out[0], -1);
  FreeDelaunay();
  kp::set_home_dir("");
}

TEST(MeshPlugin, PluginWithoutInitGivesMinusTwo) {
  kp::set_home_dir(KERFLINE_TEST_OCV_WITHOUT_INIT_DIR);
  const MESHPOINT pts[3] = {{0, 0}, {1, 0}, {0, 1}};
  EXPECT_EQ(CreateDelaunay(3, pts), -2);
  // It stays loaded: its locate entry answers, finding nothing.
  int32_t out[3] = {-1, -1, -1};
  const MESHPOINT q{0.2, 0.2};
  EXPECT_EQ(LocatePt(&q, out), 1);
  EXPECT_EQ(out[0], -1);
  FreeDelaunay();
  kp::set_home_dir("");
}

// A 5 x 4 grid of marks: every point near a corner of a cell is answered
// with three corners of that cell, that corner among them.
TEST_F(Mesh, GridCellsAnswerTheirCorners) {
  constexpr int kCols = 5, kRows = 4;
  Points marks;
  for (int r = 0; r < kRows; ++r) {
    for (int c = 0; c < kCols; ++c) marks.push_back({3.0 + 10.0 * c, 7.0 + 12.5 * r});
  }
  ASSERT_EQ(CreateDelaunay(static_cast<int32_t>(marks.size()), marks.data()), 1);
  for (int r = 0; r + 1 < kRows; ++r) {
    for (int c = 0; c + 1 < kCols; ++c) {
      const int32_t corner[4] = {r * kCols + c, r * kCols + c + 1, (r + 1) * kCols + c, (r + 1) * kCols + c + 1};
      const MESHPOINT centre{3.0 + 10.0 * c + 5.0, 7.0 + 12.5 * r + 6.25};
      std::set<int32_t> seen;
      for (const int32_t k : corner) {
        const MESHPOINT q{marks[k].x + 0.2 * (centre.x - marks[k].x), marks[k].y + 0.2 * (centre.y - marks[k].y)};
        const auto found = locate(q);
        ASSERT_EQ(found.size(), 3u) << "cell " << r << "," << c << " corner " << k;
        EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
        EXPECT_NE(std::find(found.begin(), found.end(), k), found.end());
        for (const int32_t i : found) {
          EXPECT_NE(std::find(std::begin(corner), std::end(corner), i), std::end(corner)) << i;
          seen.insert(i);
        }
      }
      EXPECT_EQ(seen.size(), 4u);
    }
  }
}

// Scattered marks against the test's own geometry: inside the hull the
// answer contains the query and is a Delaunay triangle (no mark inside its
// circumcircle); outside it is as near as the hull itself.
TEST_F(Mesh, ScatteredMarksAreLocatedInDelaunayTriangles) {
  std::mt19937 rng(20261122);
  std::uniform_real_distribution<double> coord(0, 1000), wide(-300, 1300);
  Points marks(400);
  for (auto& m : marks) m = {coord(rng), coord(rng)};
  ASSERT_EQ(CreateDelaunay(static_cast<int32_t>(marks.size()), marks.data()), 1);
  const Points hull = convex_hull(marks);

  for (int n = 0; n < 3000; ++n) {
    const MESHPOINT q{wide(rng), wide(rng)};
    const auto f = locate(q);
    ASSERT_EQ(f.size(), 3u);
    const MESHPOINT a = marks[f[0]], b = marks[f[1]], c = marks[f[2]];
    const double d = hull_distance(q, hull);
    if (d == 0) {
      EXPECT_TRUE(inside_triangle(q, a, b, c, 1e-6)) << q.x << "," << q.y;
    } else {
      EXPECT_NEAR(triangle_distance(q, a, b, c), d, 1e-9 * (1 + d)) << q.x << "," << q.y;
    }
    // Empty circumcircle.
    const double bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y;
    const double den = 2 * (bx * cy - by * cx);
    const double ux = (cy * (bx * bx + by * by) - by * (cx * cx + cy * cy)) / den;
    const double uy = (bx * (cx * cx + cy * cy) - cx * (bx * bx + by * by)) / den;
    const double r2 = ux * ux + uy * uy;
    for (const MESHPOINT& m : marks) {
      const double ex = m.x - a.x - ux, ey = m.y - a.y - uy;
      ASSERT_GE(ex * ex + ey * ey, r2 * (1 - 1e-9)) << "mark inside the circumcircle";
    }
  }
}

TEST_F(Mesh, MarksWithinTheToleranceOfACornerAllMatchInStoredOrder) {
  // Mark 0 lies within 0.1 of mark 1, a corner of the triangle that holds
  // (3, 3): both are written, and mark 3, the third corner, is missed.
  const Points marks = {{0, 0}, {0.05, 0.05}, {10, 0}, {0, 10}};
  ASSERT_EQ(CreateDelaunay(4, marks.data()), 1);
  EXPECT_EQ(locate({3, 3}), (std::vector<int32_t>{0, 1, 2}));
  EXPECT_EQ(locate({9, 0.01}), (std::vector<int32_t>{0, 1, 2}));
}

TEST_F(Mesh, ASecondMeshReplacesTheFirst) {
  const Points first = {{0, 0}, {10, 0}, {0, 10}};
  const Points second = {{100, 100}, {110, 100}, {100, 110}, {110, 110}};
  ASSERT_EQ(CreateDelaunay(3, first.data()), 1);
  ASSERT_EQ(CreateDelaunay(4, second.data()), 1);  // no FreeDelaunay between
  const auto found = locate({101, 101});
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(found[0], 0);
  FreeDelaunay();
  int32_t out[3];
  const MESHPOINT q{1, 1};
  EXPECT_EQ(LocatePt(&q, out), 0);  // idle again
}

struct NoTriangleCase {
  Points marks;
  int32_t count;
};

class MeshWithoutTriangles : public Mesh, public ::testing::WithParamInterface<NoTriangleCase> {};

TEST_P(MeshWithoutTriangles, InitAnswersZeroAndLocateFindsNothing) {
  const NoTriangleCase& c = GetParam();
  EXPECT_EQ(CreateDelaunay(c.count, c.marks.empty() ? nullptr : c.marks.data()), 0);
  EXPECT_TRUE(locate({1, 1}).empty());
}

INSTANTIATE_TEST_SUITE_P(Table, MeshWithoutTriangles,
                         ::testing::Values(NoTriangleCase{{}, 0}, NoTriangleCase{{}, -5},
                                           NoTriangleCase{{{0, 0}, {1, 1}}, 2},
                                           NoTriangleCase{{{0, 0}, {1, 1}, {2, 2}, {3, 3}}, 4},
                                           NoTriangleCase{{{5, 5}, {5, 5}, {5, 5}}, 3},
                                           NoTriangleCase{{{0, 0}, {NAN, 1}, {1, INFINITY}, {2, 0}}, 4}),
                         kerfline::test::RowIndex());
