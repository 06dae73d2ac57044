#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"

#include "kerfline/kerfline.h"

TEST(PointToPoint, EuclideanDistanceAndNullArguments) {
  const MESHPOINT a{0, 0}, b{3, 4}, c{-1.5, 2};
  EXPECT_EQ(PointToPoint(&a, &b), 5.0);
  EXPECT_EQ(PointToPoint(&b, &a), 5.0);
  EXPECT_EQ(PointToPoint(&c, &c), 0.0);
  EXPECT_EQ(PointToPoint(&a, nullptr), -2.0);
  // Null pointers write nothing.
  MESHPOINT foot{7, 7};
  EXPECT_EQ(PointToLine(&a, &b, nullptr, &foot), -2.0);
  EXPECT_EQ(PointToLine(&a, &b, &a, nullptr), -2.0);
  EXPECT_EQ(foot.x, 7.0);
}

struct LineCase {
  MESHPOINT a, b, p;
  double distance;
  MESHPOINT foot;
  double tolerance = 1e-9;
};

class PointToLineTable : public ::testing::TestWithParam<LineCase> {};

TEST_P(PointToLineTable, DistanceAndFootOnTheRayFromA) {
  const LineCase& c = GetParam();
  MESHPOINT foot{-999, -999};
  EXPECT_NEAR(PointToLine(&c.a, &c.b, &c.p, &foot), c.distance, c.tolerance);
  EXPECT_NEAR(foot.x, c.foot.x, 1e-7);
  EXPECT_NEAR(foot.y, c.foot.y, 1e-7);
}

INSTANTIATE_TEST_SUITE_P(Table, PointToLineTable,
                         ::testing::Values(
                             // above the middle of a horizontal segment
                             LineCase{{0, 0}, {10, 0}, {4, 3}, 3.0, {4, 0}},
                             // beyond B: the foot lies on the line past B
                             LineCase{{0, 0}, {10, 0}, {13, -4}, 4.0, {13, 0}},
                             // behind A: the foot is mirrored onto the ray towards B
                             LineCase{{0, 0}, {10, 0}, {-3, 4}, 4.0, {3, 0}},
                             // a slanted line, P on it: distance 0, foot = P
                             LineCase{{1, 1}, {4, 5}, {7, 9}, 0.0, {7, 9}},
                             // a slanted line, P off it
                             LineCase{{1, 1}, {4, 5}, {5, -2}, 5.0, {1, 1}},
                             // A = B: the base counts as 1e-7 (so Heron loses digits), the foot stays at A
                             LineCase{{1, 1}, {1, 1}, {4, 5}, 5.0, {1, 1}, 1e-5}),
                         kerfline::test::RowIndex());
