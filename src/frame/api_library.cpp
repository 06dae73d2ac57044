// Exports that concern the library as a whole: version, suite directory and
// the host's user-interface hooks.
#include <cstring>

#include "kerfline/kerfline.h"
#include "platform/host_hooks.hpp"
#include "platform/paths.hpp"

extern "C" {

KERFLINE_API const char* KerflineGetVersion(void) { return KERFLINE_VERSION_TEXT; }

KERFLINE_API int32_t KerflineSetHomeDir(const char* dir) {
  kerfline::platform::set_home_dir(dir != nullptr ? dir : "");
  return 1;
}

KERFLINE_API int32_t KerflineGetHomeDir(char* buf, uint32_t size) {
  if (buf == nullptr) return -2;
  try {
    const std::string dir = kerfline::platform::home_dir();
    if (dir.size() + 1 > size) return -static_cast<int32_t>(dir.size() + 1);
    std::memcpy(buf, dir.c_str(), dir.size() + 1);
    return static_cast<int32_t>(dir.size());
  } catch (...) {
    return -3;
  }
}

KERFLINE_API int32_t KerflineSetHostHooks(const KERFLINE_HOST_HOOKS* hooks) {
  return kerfline::platform::host::install(hooks) ? 1 : -2;
}

}  // extern "C"
