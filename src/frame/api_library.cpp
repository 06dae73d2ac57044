// Exports that concern the library as a whole: version, suite directory and
// the host's user-interface hooks.
#include <cstring>

#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/host_hooks.hpp"
#include "platform/paths.hpp"

using kerfline::platform::guarded;

extern "C" {

KERFLINE_API const char* KerflineGetVersion(void) noexcept { return KERFLINE_VERSION_TEXT; }

KERFLINE_API int32_t KerflineSetHomeDir(const char* dir) noexcept {
  return guarded(KERFLINE_OUT_OF_MEMORY, [dir] {
    kerfline::platform::set_home_dir(dir != nullptr ? dir : "");
    return KERFLINE_SUCCESS;
  });
}

KERFLINE_API int32_t KerflineGetHomeDir(char* buf, uint32_t size) noexcept {
  if (buf == nullptr) return KERFLINE_BAD_ARGUMENT;
  return guarded(KERFLINE_OUT_OF_MEMORY, [buf, size] {
    const std::string dir = kerfline::platform::home_dir();
    if (dir.size() + 1 > size) return -static_cast<int32_t>(dir.size() + 1);
    std::memcpy(buf, dir.c_str(), dir.size() + 1);
    return static_cast<int32_t>(dir.size());
  });
}

KERFLINE_API int32_t KerflineSetHostHooks(const KERFLINE_HOST_HOOKS* hooks) noexcept {
  return kerfline::platform::host::install(hooks) ? 1 : -2;
}

}  // extern "C"
