// Finds the stored mark positions that lie near a triangle's corners.
//
// A position matches when, for at least one corner, it is less than 0.1 away
// in x and in y. The answer is the first three matching positions in stored
// order, exactly what a walk over all positions would give, but found through
// a hashed grid of 0.2-wide cells, so a lookup visits only the positions in
// the (at most 3 x 3, usually 2 x 2) cells around each corner.
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
  // A non-empty cell: its positions are order_[begin, end).
  struct Slot {
    std::int64_t cx = 0;
    std::int64_t cy = 0;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;  // 0: the slot is free
  };
  [[nodiscard]] const Slot* find(std::int64_t cx, std::int64_t cy) const;

  const MESHPOINT* points_ = nullptr;
  std::vector<std::int32_t> order_;  // indices grouped by cell
  std::vector<Slot> slots_;          // open addressing, a power of two long
  std::vector<std::int32_t> far_;    // positions too far out for a cell number
};

}  // namespace kerfline::registration
