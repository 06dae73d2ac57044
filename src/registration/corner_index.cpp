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

std::uint64_t hash_cell(std::int64_t cx, std::int64_t cy) {
  std::uint64_t h = static_cast<std::uint64_t>(cx) * 0x9E3779B97F4A7C15ull ^ static_cast<std::uint64_t>(cy);
  h ^= h >> 31;  // splitmix64 finaliser
  h *= 0xBF58476D1CE4E5B9ull;
  h ^= h >> 29;
  return h;
}

bool near(const MESHPOINT& p, const MESHPOINT& corner) {
  return std::fabs(p.x - corner.x) < kCornerTolerance && std::fabs(p.y - corner.y) < kCornerTolerance;
}

// The three smallest distinct indices seen so far, ascending.
class SmallestThree {
 public:
  void add(std::int32_t index) {
    int at = 0;  // insertion place, keeping best_ ascending
    while (at < n_ && best_[at] < index) ++at;
    if (at == 3 || (at < n_ && best_[at] == index)) return;
    if (n_ < 3) ++n_;
    for (int i = n_ - 1; i > at; --i) best_[i] = best_[i - 1];
    best_[at] = index;
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
  struct Entry {
    std::int64_t cx, cy;
    std::int32_t index;
  };
  std::vector<Entry> entries;
  entries.reserve(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) {
    const auto cx = cell_of(points[i].x);
    const auto cy = cell_of(points[i].y);
    if (cx && cy) {
      entries.push_back({*cx, *cy, i});
    } else if (std::isfinite(points[i].x) && std::isfinite(points[i].y)) {
      far_.push_back(i);  // NaN and infinite positions can never match
    }
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.cx != b.cx ? a.cx < b.cx : a.cy < b.cy; });

  std::size_t capacity = 16;
  while (capacity < 2 * entries.size()) capacity *= 2;
  slots_.resize(capacity);
  order_.reserve(entries.size());
  for (std::size_t i = 0; i < entries.size();) {
    Slot slot{entries[i].cx, entries[i].cy, static_cast<std::uint32_t>(order_.size()), 0};
    for (; i < entries.size() && entries[i].cx == slot.cx && entries[i].cy == slot.cy; ++i) {
      order_.push_back(entries[i].index);
    }
    slot.end = static_cast<std::uint32_t>(order_.size());
    std::size_t at = hash_cell(slot.cx, slot.cy) & (capacity - 1);
    while (slots_[at].end != 0) at = (at + 1) & (capacity - 1);
    slots_[at] = slot;
  }
}

const CornerIndex::Slot* CornerIndex::find(std::int64_t cx, std::int64_t cy) const {
  if (slots_.empty()) return nullptr;
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t at = hash_cell(cx, cy) & mask; slots_[at].end != 0; at = (at + 1) & mask) {
    if (slots_[at].cx == cx && slots_[at].cy == cy) return &slots_[at];
  }
  return nullptr;
}

int CornerIndex::match(const std::array<MESHPOINT, 3>& corners, std::int32_t* out) const {
  SmallestThree found;
  for (const MESHPOINT& corner : corners) {
    for (const std::int32_t i : far_) {
      if (near(points_[i], corner)) found.add(i);
    }
    // The cells that the open square of side 0.2 around the corner touches,
    // widened by more than the rounding of these sums (two cells per axis,
    // at most three).
    const double mx = kCornerTolerance + std::min(kCornerTolerance, 1e-12 * (1 + std::fabs(corner.x)));
    const double my = kCornerTolerance + std::min(kCornerTolerance, 1e-12 * (1 + std::fabs(corner.y)));
    const auto x0 = cell_of(corner.x - mx), x1 = cell_of(corner.x + mx);
    const auto y0 = cell_of(corner.y - my), y1 = cell_of(corner.y + my);
    if (!x0 || !x1 || !y0 || !y1) continue;
    for (std::int64_t x = *x0; x <= *x1; ++x) {
      for (std::int64_t y = *y0; y <= *y1; ++y) {
        const Slot* slot = find(x, y);
        if (slot == nullptr) continue;
        for (std::uint32_t k = slot->begin; k < slot->end; ++k) {
          if (near(points_[order_[k]], corner)) found.add(order_[k]);
        }
      }
    }
  }
  return found.write(out);
}

}  // namespace kerfline::registration
