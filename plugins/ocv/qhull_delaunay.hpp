// The Delaunay triangulation of a point set, computed with Qhull.
#pragma once

#include <vector>

#include "triangle_locator.hpp"

namespace ocv {

// The triangles (indices into points) of the Delaunay triangulation; empty
// when the points span no triangle. The points must be finite and should be
// scaled to about unit size. Throws std::bad_alloc when memory runs out.
std::vector<Triangle> delaunay_triangles(const std::vector<Point>& points);

}  // namespace ocv
