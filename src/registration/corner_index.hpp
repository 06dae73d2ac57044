// Finds the stored mark positions that lie near a triangle's corners.
//
// A position matches when, for at least one corner, it is less than 0.1 away
// in x and in y. The answer is the first three matching positions in stored
// order, exactly what a walk over all positions would give, but found through
// a grid of 0.2-wide cells so a lookup does not visit every position.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "kerfline/kerfline.h"

namespace kerfline::registration {

inline constexpr double kCornerTolerance = 0.1;

class CornerIndex {
 public:
  CornerIndex() = default;
  // Indexes `count` positions (the caller keeps them alive and unchanged).
  CornerIndex(const MESHPOINT* points, std::int32_t count);

  // Writes the matching indices in ascending order, at most 3, to out;
  // returns how many were written.
  int match(const std::array<MESHPOINT, 3>& corners, std::int32_t* out) const;

 private:
  struct Entry {
    std::int64_t cx;
    std::int64_t cy;
    std::int32_t index;
  };
  const MESHPOINT* points_ = nullptr;
  std::vector<Entry> cells_;       // sorted by (cx, cy, index)
  std::vector<std::int32_t> far_;  // positions too far out for a cell number
};

}  // namespace kerfline::registration
