#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <vector>

#include "registration/corner_index.hpp"

namespace kr = kerfline::registration;

namespace {

// What a walk over the stored positions in index order answers.
std::vector<int32_t> walk(const std::vector<MESHPOINT>& points, const std::array<MESHPOINT, 3>& corners) {
  std::vector<int32_t> out;
  for (int32_t i = 0; i < static_cast<int32_t>(points.size()) && out.size() < 3; ++i) {
    for (const MESHPOINT& c : corners) {
      if (std::fabs(points[i].x - c.x) < 0.1 && std::fabs(points[i].y - c.y) < 0.1) {
        out.push_back(i);
        break;
      }
    }
  }
  return out;
}

}  // namespace

// Crowded positions (many within 0.1 of each other), positions on cell
// borders, huge and non-finite ones: the index answers as the walk does.
TEST(CornerIndex, AnswersExactlyAsAWalkInStoredOrder) {
  std::mt19937 rng(42);
  std::uniform_real_distribution<double> crowd(-0.6, 0.6);
  std::vector<MESHPOINT> points;
  for (int i = 0; i < 300; ++i) points.push_back({crowd(rng), crowd(rng)});
  for (int i = -3; i <= 3; ++i) points.push_back({0.2 * i, 0.1 * i});  // on or next to borders
  points.push_back({1e17, 1e17});
  points.push_back({1e17 + 16, 1e17});
  points.push_back({NAN, 0});
  points.push_back({-INFINITY, 0});
  const kr::CornerIndex index(points.data(), static_cast<int32_t>(points.size()));

  std::uniform_int_distribution<std::size_t> pick(0, points.size() - 1);
  for (int n = 0; n < 5000; ++n) {
    std::array<MESHPOINT, 3> corners{};
    for (auto& c : corners) {
      c = n % 2 == 0 ? points[pick(rng)] : MESHPOINT{crowd(rng), crowd(rng)};
    }
    int32_t out[3] = {-1, -1, -1};
    const int written = index.match(corners, out);
    const auto expected = walk(points, corners);
    ASSERT_EQ(std::vector<int32_t>(out, out + written), expected) << n;
  }
}
