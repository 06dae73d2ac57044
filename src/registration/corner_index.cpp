#include "registration/corner_index.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

namespace kerfline::registration {

namespace {

// Cells twice the tolerance wide: a match is at most one cell away.
constexpr double kCellsPerUnit = 1.0 / (2 * kCornerTolerance);
// Beyond this a cell number would lose integer precision.
constexpr double kCellLimit = 9.0e15;

std::optional<std::int64_t> cell_of(double v) {
  const double c = std::floor(v * kCellsPerUnit);
  if (!(std::fabs(c) < kCellLimit)) return std::nullopt;  // also NaN and infinities
  return static_cast<std::int64_t>(c);
}

bool near(const MESHPOINT& p, const MESHPOINT& corner) {
  return std::fabs(p.x - corner.x) < kCornerTolerance && std::fabs(p.y - corner.y) < kCornerTolerance;
}

// The three smallest distinct indices seen so far, ascending.
class SmallestThree {
 public:
  void add(std::int32_t index) {
    for (int i = 0; i < n_; ++i) {
      if (best_[i] == index) return;
    }
    if (n_ < 3) {
      best_[n_++] = index;
    } else if (index < best_[2]) {
      best_[2] = index;
    } else {
      return;
    }
    std::sort(best_.begin(), best_.begin() + n_);
  }
  int write(std::int32_t* out) const {
    std::copy(best_.begin(), best_.begin() + n_, out);
    return n_;
  }

 private:
  std::array<std::int32_t, 3> best_{};
  int n_ = 0;
};

}  // namespace

CornerIndex::CornerIndex(const MESHPOINT* points, std::int32_t count) : points_(points) {
  cells_.reserve(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) {
    const auto cx = cell_of(points[i].x);
    const auto cy = cell_of(points[i].y);
    if (cx && cy) {
      cells_.push_back({*cx, *cy, i});
    } else if (std::isfinite(points[i].x) && std::isfinite(points[i].y)) {
      far_.push_back(i);  // NaN and infinite positions can never match
    }
  }
  std::sort(cells_.begin(), cells_.end(), [](const Entry& a, const Entry& b) {
    if (a.cx != b.cx) return a.cx < b.cx;
    if (a.cy != b.cy) return a.cy < b.cy;
    return a.index < b.index;
  });
}

int CornerIndex::match(const std::array<MESHPOINT, 3>& corners, std::int32_t* out) const {
  SmallestThree found;
  auto before = [](const Entry& e, std::pair<std::int64_t, std::int64_t> key) {
    return e.cx != key.first ? e.cx < key.first : e.cy < key.second;
  };
  for (const MESHPOINT& corner : corners) {
    for (const std::int32_t i : far_) {
      if (near(points_[i], corner)) found.add(i);
    }
    const auto cx = cell_of(corner.x);
    const auto cy = cell_of(corner.y);
    if (!cx || !cy) continue;
    for (std::int64_t x = *cx - 1; x <= *cx + 1; ++x) {
      // Cells (x, cy-1) .. (x, cy+1) are one run in the sorted order.
      auto it = std::lower_bound(cells_.begin(), cells_.end(), std::make_pair(x, *cy - 1), before);
      for (; it != cells_.end() && it->cx == x && it->cy <= *cy + 1; ++it) {
        if (near(points_[it->index], corner)) found.add(it->index);
      }
    }
  }
  return found.write(out);
}

}  // namespace kerfline::registration
