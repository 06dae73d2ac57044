#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "platform/paths.hpp"

namespace kp = kerfline::platform;

namespace {

using Points = std::vector<MESHPOINT>;

double cross(MESHPOINT o, MESHPOINT a, MESHPOINT b) {
  return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double segment_distance(MESHPOINT q, MESHPOINT a, MESHPOINT b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double t = std::clamp(((q.x - a.x) * dx + (q.y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
  return std::hypot(a.x + t * dx - q.x, a.y + t * dy - q.y);
}

// Distance of q from a convex polygon (0 inside); corners in either order.
double polygon_distance(MESHPOINT q, const Points& poly) {
  int left = 0, right = 0;
  double d = INFINITY;
  for (std::size_t i = 0; i < poly.size(); ++i) {
    const MESHPOINT a = poly[i], b = poly[(i + 1) % poly.size()];
    (cross(a, b, q) >= 0 ? left : right)++;
    d = std::min(d, segment_distance(q, a, b));
  }
  return left == 0 || right == 0 ? 0 : d;
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

// No plug-in: init answers -1 and locate is idle (0). A plug-in without its
// init entry: -2, yet it stays loaded and its locate entry finds nothing (1).
TEST(MeshPlugin, MissingPluginOrInitEntry) {
  kerfline::test::TempDir empty;
  const struct {
    std::string dir;
    int32_t init, locate;
  } cases[] = {{empty.str(), -1, 0}, {KERFLINE_TEST_OCV_WITHOUT_INIT_DIR, -2, 1}};
  for (const auto& c : cases) {
    kp::set_home_dir(c.dir);
    const MESHPOINT pts[3] = {{0, 0}, {1, 0}, {0, 1}};
    EXPECT_EQ(CreateDelaunay(3, pts), c.init);
    int32_t out[3] = {-1, -1, -1};
    const MESHPOINT q{0.2, 0.2};
    EXPECT_EQ(LocatePt(&q, out), c.locate);
    EXPECT_EQ(out[0], -1);
    FreeDelaunay();
  }
  kp::set_home_dir("");
}

// Random queries in [lo, hi)^2 against the test's own geometry: the answer is
// a Delaunay triangle (no mark inside its circumcircle) in stored order, as
// near to the query as the hull (so it contains a query inside the hull).
void expect_delaunay_answers(const Points& marks, double lo, double hi) {
  ASSERT_EQ(CreateDelaunay(static_cast<int32_t>(marks.size()), marks.data()), 1);
  const Points hull = convex_hull(marks);
  std::mt19937 rng(20261122);
  std::uniform_real_distribution<double> coord(lo, hi);
  for (int n = 0; n < 3000; ++n) {
    const MESHPOINT q{coord(rng), coord(rng)};
    const auto f = locate(q);
    ASSERT_EQ(f.size(), 3u);
    EXPECT_TRUE(std::is_sorted(f.begin(), f.end()));
    const Points t = {marks[f[0]], marks[f[1]], marks[f[2]]};
    EXPECT_NEAR(polygon_distance(q, t), polygon_distance(q, hull), 1e-9) << q.x << "," << q.y;
    // No mark lies inside the circumcircle (centre u relative to t[0]).
    const double bx = t[1].x - t[0].x, by = t[1].y - t[0].y, cx = t[2].x - t[0].x, cy = t[2].y - t[0].y;
    const double den = 2 * (bx * cy - by * cx);
    const double ux = (cy * (bx * bx + by * by) - by * (cx * cx + cy * cy)) / den;
    const double uy = (bx * (cx * cx + cy * cy) - cx * (bx * bx + by * by)) / den;
    for (const MESHPOINT& m : marks) {
      ASSERT_GE(std::hypot(m.x - t[0].x - ux, m.y - t[0].y - uy), std::hypot(ux, uy) * (1 - 1e-9));
    }
  }
}

// Scattered marks, and a grid whose cells' four corners lie on one circle.
TEST_F(Mesh, ScatteredAndGridMarksAreLocatedInDelaunayTriangles) {
  std::mt19937 rng(42);
  std::uniform_real_distribution<double> coord(0, 1000);
  Points marks(400);
  for (auto& m : marks) m = {coord(rng), coord(rng)};
  expect_delaunay_answers(marks, -300, 1300);
  Points grid;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 5; ++c) grid.push_back({3.0 + 10.0 * c, 7.0 + 12.5 * r});
  }
  expect_delaunay_answers(grid, -10, 60);
}

// Mark 0 lies within 0.1 of mark 1, a corner of the triangle that holds
// (3, 3): both are written, and mark 3, the third corner, is missed.
TEST_F(Mesh, CloseMarksAllMatchInStoredOrderAndASecondMeshReplacesTheFirst) {
  const Points first = {{0, 0}, {0.05, 0.05}, {10, 0}, {0, 10}};
  ASSERT_EQ(CreateDelaunay(4, first.data()), 1);
  EXPECT_EQ(locate({3, 3}), (std::vector<int32_t>{0, 1, 2}));
  EXPECT_EQ(locate({9, 0.01}), (std::vector<int32_t>{0, 1, 2}));
  const Points second = {{100, 100}, {110, 100}, {100, 110}, {110, 110}};
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
