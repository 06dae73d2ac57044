// Exports that write mark sets out: the debugging dump, the HPGL trace file
// and single HPGL circles.
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>

#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/temp_file.hpp"
#include "registration/hpgl_text.hpp"
#include "registration/trace_text.hpp"

namespace kr = kerfline::registration;

namespace {

// The trace file of the last call with a mode != 0; calls with mode 0 add
// to it. Empty until such a call has created a file.
struct TraceFileName {
  std::mutex lock;
  std::string path;
};

TraceFileName& trace_file_name() {
  static TraceFileName name;
  return name;
}

// The file to append to in this mode, or "" when there is none.
std::string choose_trace_file(const char* dir, int32_t mode) {
  TraceFileName& remembered = trace_file_name();
  std::lock_guard<std::mutex> guard(remembered.lock);
  if (mode != 0) {
    // A failed creation forgets the old file so that later mode-0 calls do
    // not add this job's marks to an older job's trace.
    remembered.path.clear();
    if (dir == nullptr || *dir == '\0') return {};
    auto created = kerfline::platform::create_unique_file(dir, "IN_", ".plt");
    if (created.ok()) remembered.path = created.value();
  }
  return remembered.path;
}

bool append_to_file(const std::string& path, const std::string& text) {
  if (path.empty()) return false;
  // Bytes as they are: the texts carry their own "\r\n" line ends.
  std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "ab"), std::fclose);
  if (!file) return false;
  std::fwrite(text.data(), 1, text.size(), file.get());
  return true;
}

}  // namespace

extern "C" {

KERFLINE_API int32_t ProbeDataTrace(const PROBEDATA* set) noexcept {
  if (set == nullptr) return KERFLINE_BAD_ARGUMENT;
  // Built for a debugger's eyes only; nothing shows or keeps it.
  kerfline::platform::guarded_void([set] { static_cast<void>(kr::format_trace(*set)); });
  return 1;
}

KERFLINE_API int32_t ProbeDataTrace2PLT(const PROBEDATA* set, const char* dir, int32_t mode) noexcept {
  if (set == nullptr) return KERFLINE_BAD_ARGUMENT;
  return kerfline::platform::guarded_as(0, [set, dir, mode] {
    const std::string text = kr::format_plot(*set, mode);
    return append_to_file(choose_trace_file(dir, mode), text) ? 1 : 0;
  });
}

KERFLINE_API int32_t FrmtHpglCircle(double x, double y, double size, char* buffer) noexcept {
  if (buffer == nullptr) return KERFLINE_BAD_ARGUMENT;
  return kerfline::platform::guarded_as(0, [x, y, size, buffer] {
    const double px = x * kr::kPlotterUnitsPerMark;
    const double py = y * kr::kPlotterUnitsPerMark;
    std::string text;
    kr::append_circle(text, px + size * 0.2, px, py);
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<int32_t>(text.size());
  });
}

}  // extern "C"
