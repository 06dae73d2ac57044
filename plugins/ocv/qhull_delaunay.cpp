#include "qhull_delaunay.hpp"

#include <cstdio>
#include <memory>
#include <new>

extern "C" {
#include <libqhull_r/qhull_ra.h>
}

namespace ocv {

namespace {

// Qhull's messages are of no use to the host; they go to a scratch file.
struct ScratchFile {
  FILE* file = std::tmpfile();
  ~ScratchFile() {
    if (file != nullptr) std::fclose(file);
  }
};

double orientation(Point a, Point b, Point c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

}  // namespace

std::vector<Triangle> delaunay_triangles(const std::vector<Point>& points) {
  std::vector<Triangle> triangles;
  if (points.size() < 3) return triangles;
  if (points.size() == 3) {  // too few for Qhull's lifted hull
    if (orientation(points[0], points[1], points[2]) != 0) triangles.push_back({{0, 1, 2}});
    return triangles;
  }

  std::vector<coordT> coords;
  coords.reserve(points.size() * 2);
  for (const Point& p : points) {
    coords.push_back(p.x);
    coords.push_back(p.y);
  }

  ScratchFile messages;
  auto qh = std::make_unique<qhT>();
  qh_zero(qh.get(), messages.file);
  // d: Delaunay; QJ: joggle the input so every facet is a triangle (merging
  // the facets of cocircular input, as a grid of marks is, costs far more);
  // Qbb: scale the lifted coordinate.
  char options[] = "qhull d QJ Qbb";
  const int failed = qh_new_qhull(qh.get(), 2, static_cast<int>(points.size()), coords.data(), False, options,
                                  nullptr, messages.file);
  bool out_of_memory = false;
  if (failed == 0) {
    try {
      qhT* q = qh.get();
      for (facetT* facet = q->facet_list; facet != nullptr && facet->next != nullptr; facet = facet->next) {
        if (facet->upperdelaunay) continue;
        Triangle t{};
        int n = 0;
        bool usable = true;
        vertexT** vertexp = nullptr;
        vertexT* vertex = nullptr;
        FOREACHvertex_(facet->vertices) {
          const int id = qh_pointid(q, vertex->point);
          if (n < 3) t.v[n] = id;
          if (id < 0 || id >= static_cast<int>(points.size())) usable = false;
          ++n;
        }
        // The joggle can make a flat triangle of three points on one line;
        // it is no triangle of the points as given.
        if (usable && n == 3 && orientation(points[t.v[0]], points[t.v[1]], points[t.v[2]]) != 0) {
          triangles.push_back(t);
        }
      }
    } catch (const std::bad_alloc&) {
      out_of_memory = true;
    }
  }
  qh_freeqhull(qh.get(), !qh_ALL);
  int still_long = 0, still_total = 0;
  qh_memfreeshort(qh.get(), &still_long, &still_total);
  if (out_of_memory) throw std::bad_alloc();
  return triangles;
}

}  // namespace ocv
