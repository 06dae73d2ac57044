// Mesh correction: one process-wide Delaunay mesh over measured mark
// positions, built and searched by the plug-in "ocv.dll".
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>

#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/dynlib.hpp"
#include "platform/library_memory.hpp"
#include "registration/corner_index.hpp"

namespace kr = kerfline::registration;

namespace {

// The plug-in's entries.
using DelaunayInitFn = int32_t(int32_t count, const MESHPOINT* points);
using DelaunayLocateFn = void(const MESHPOINT* query, MESHPOINT* corners);
using DelaunayFreeFn = void();

struct FreeDeleter {
  void operator()(MESHPOINT* p) const { std::free(p); }
};

struct MeshState {
  std::mutex lock;
  std::optional<kerfline::platform::DynamicLibrary> library;
  DelaunayInitFn* init = nullptr;
  DelaunayLocateFn* locate = nullptr;
  DelaunayFreeFn* free = nullptr;
  int32_t count = 0;
  std::unique_ptr<MESHPOINT, FreeDeleter> points;  // C run-time block, count points
  kr::CornerIndex corners;

  // Back to idle: the plug-in forgets its mesh before it is unloaded.
  void release() {
    if (library && free != nullptr) free();
    corners = kr::CornerIndex();
    points.reset();
    count = 0;
    init = nullptr;
    locate = nullptr;
    free = nullptr;
    library.reset();
  }
};

MeshState& mesh() {
  static MeshState state;
  return state;
}

}  // namespace

extern "C" {

KERFLINE_API int32_t CreateDelaunay(int32_t count, const MESHPOINT* points) noexcept {
  return kerfline::platform::guarded(KERFLINE_OUT_OF_MEMORY, [count, points]() mutable -> int32_t {
    MeshState& m = mesh();
    std::lock_guard<std::mutex> guard(m.lock);
    // A mesh left from an earlier call is released, not leaked.
    m.release();
    if (points == nullptr || count < 0) count = 0;

    auto library = kerfline::platform::DynamicLibrary::open("ocv.dll");
    if (!library.ok()) return -1;
    m.library.emplace(std::move(library.value()));
    m.init = m.library->function<DelaunayInitFn>("DelaunayInit");
    m.locate = m.library->function<DelaunayLocateFn>("DelaunayLocate");
    m.free = m.library->function<DelaunayFreeFn>("DelaunayFree");
    constexpr int32_t kNoInitEntry = -2;
    if (m.init == nullptr) return kNoInitEntry;  // stays loaded until FreeDelaunay

    if (count > 0) {
      if (static_cast<std::size_t>(count) > std::numeric_limits<std::size_t>::max() / sizeof(MESHPOINT)) {
        return KERFLINE_OUT_OF_MEMORY;
      }
      const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(MESHPOINT);
      m.points.reset(static_cast<MESHPOINT*>(kerfline::platform::c_runtime_alloc(bytes)));
      if (!m.points) return KERFLINE_OUT_OF_MEMORY;
      std::memcpy(m.points.get(), points, bytes);
      m.corners = kr::CornerIndex(m.points.get(), count);
    }
    m.count = count;
    return m.init(count, m.points.get());
  });
}

KERFLINE_API int32_t LocatePt(const MESHPOINT* query, int32_t* out) noexcept {
  if (query == nullptr || out == nullptr) return KERFLINE_BAD_ARGUMENT;
  return kerfline::platform::guarded_as(0, [query, out] {
    MeshState& m = mesh();
    std::lock_guard<std::mutex> guard(m.lock);
    if (!m.library || m.locate == nullptr) return 0;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    // A plug-in that finds no triangle leaves corners that match nothing.
    std::array<MESHPOINT, 3> corners{{{nan, nan}, {nan, nan}, {nan, nan}}};
    m.locate(query, corners.data());
    if (m.count > 0) m.corners.match(corners, out);
    return 1;
  });
}

KERFLINE_API void FreeDelaunay(void) noexcept {
  kerfline::platform::guarded_void([] {
    MeshState& m = mesh();
    std::lock_guard<std::mutex> guard(m.lock);
    m.release();
  });
}

}  // extern "C"
