// The plug-in's entries: one process-wide mesh, built in coordinates scaled
// to about unit size (Qhull's arithmetic and the locator's tolerances work
// best there) and answered with the caller's own coordinates.
#include "ocv_plugin.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <optional>

#include "qhull_delaunay.hpp"
#include "triangle_locator.hpp"

namespace {

struct Mesh {
  std::vector<OCV_POINT> original;  // corner coordinates as given
  double center_x = 0, center_y = 0, scale = 1;
  std::optional<ocv::TriangleLocator> locator;

  [[nodiscard]] ocv::Point scaled(const OCV_POINT& p) const {
    return {(p.x - center_x) * scale, (p.y - center_y) * scale};
  }
};

std::unique_ptr<Mesh>& current_mesh() {
  static std::unique_ptr<Mesh> mesh;
  return mesh;
}

// The finite points, with the centre and scale that bring them to about
// [-1, 1]; nothing when they have no extent.
std::unique_ptr<Mesh> prepare(std::int32_t count, const OCV_POINT* points) {
  auto mesh = std::make_unique<Mesh>();
  for (std::int32_t i = 0; i < count; ++i) {
    if (std::isfinite(points[i].x) && std::isfinite(points[i].y)) mesh->original.push_back(points[i]);
  }
  if (mesh->original.size() < 3) return nullptr;
  auto [min_x, max_x] = std::minmax_element(mesh->original.begin(), mesh->original.end(),
                                            [](const OCV_POINT& a, const OCV_POINT& b) { return a.x < b.x; });
  auto [min_y, max_y] = std::minmax_element(mesh->original.begin(), mesh->original.end(),
                                            [](const OCV_POINT& a, const OCV_POINT& b) { return a.y < b.y; });
  // Halves first: the full range of two huge coordinates may not be finite.
  mesh->center_x = min_x->x / 2 + max_x->x / 2;
  mesh->center_y = min_y->y / 2 + max_y->y / 2;
  const double extent = std::max(max_x->x / 2 - min_x->x / 2, max_y->y / 2 - min_y->y / 2);
  mesh->scale = 1.0 / extent;
  if (!(extent > 0) || !std::isfinite(mesh->scale)) return nullptr;
  return mesh;
}

}  // namespace

extern "C" {

OCV_API int32_t DelaunayInit(int32_t count, const OCV_POINT* points) {
  current_mesh().reset();
  if (points == nullptr || count <= 0) return 0;
  try {
    auto mesh = prepare(count, points);
    if (!mesh) return 0;
    std::vector<ocv::Point> scaled;
    scaled.reserve(mesh->original.size());
    for (const OCV_POINT& p : mesh->original) scaled.push_back(mesh->scaled(p));
    auto triangles = ocv::delaunay_triangles(scaled);
    if (triangles.empty()) return 0;
    mesh->locator.emplace(std::move(scaled), std::move(triangles));
    current_mesh() = std::move(mesh);
    return 1;
  } catch (...) {
    return -3;
  }
}

OCV_API void DelaunayLocate(const OCV_POINT* query, OCV_POINT* corners) {
  const auto& mesh = current_mesh();
  if (!mesh || query == nullptr || corners == nullptr) return;
  const std::int32_t t = mesh->locator->locate(mesh->scaled(*query));
  if (t < 0) return;
  for (int k = 0; k < 3; ++k) corners[k] = mesh->original[mesh->locator->triangle(t).v[k]];
}

OCV_API void DelaunayFree(void) { current_mesh().reset(); }

}  // extern "C"
