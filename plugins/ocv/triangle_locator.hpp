// Point location in a triangle mesh through a uniform grid of the triangles'
// bounding boxes: a query looks only at the triangles whose boxes cover its
// cell. A query outside the mesh is answered with the triangle of the nearest
// hull edge.
#pragma once

#include <cstdint>
#include <vector>

namespace ocv {

struct Point {
  double x;
  double y;
};

struct Triangle {
  std::int32_t v[3];  // indices into the points
};

class TriangleLocator {
 public:
  TriangleLocator(std::vector<Point> points, std::vector<Triangle> triangles);

  // The triangle containing q, else the nearest one; -1 when there are no
  // triangles or q is not finite.
  [[nodiscard]] std::int32_t locate(Point q) const;

  [[nodiscard]] const Triangle& triangle(std::int32_t i) const { return triangles_[i]; }
  [[nodiscard]] std::size_t triangle_count() const { return triangles_.size(); }

 private:
  struct HullEdge {
    std::int32_t a, b, triangle;
  };

  void build_grid();
  void find_hull();
  [[nodiscard]] bool contains(const Triangle& t, Point q) const;
  [[nodiscard]] std::int32_t nearest_on_hull(Point q) const;
  [[nodiscard]] std::int64_t column_of(double x) const;
  [[nodiscard]] std::int64_t row_of(double y) const;

  std::vector<Point> points_;
  std::vector<Triangle> triangles_;
  std::vector<HullEdge> hull_;
  // Grid over [min_x, max_x] x [min_y, max_y]: cell (c, r) lists the
  // triangles cell_items_[cell_start_[r * columns_ + c] ...].
  double min_x_ = 0, min_y_ = 0, max_x_ = 0, max_y_ = 0;
  double cell_w_ = 1, cell_h_ = 1;
  std::int64_t columns_ = 1, rows_ = 1;
  std::vector<std::size_t> cell_start_;
  std::vector<std::int32_t> cell_items_;
};

}  // namespace ocv
