// Entry points that hosts call but that have nothing to do in this library:
// they keep their documented answers so that hosts built against them work.
#include "kerfline/kerfline.h"
#include "platform/library_memory.hpp"

extern "C" {

KERFLINE_API int32_t AddObjects(void) noexcept { return 1; }
KERFLINE_API int32_t Log(void) noexcept { return 1; }
KERFLINE_API int32_t ReadFromDevice(void) noexcept { return 1; }
KERFLINE_API int32_t SerializeCutData(void) noexcept { return 1; }
KERFLINE_API int32_t DoDeviceSetupDlgTest(void) noexcept { return 1; }
KERFLINE_API int32_t WriteDeviceFlags(void) noexcept { return 1; }
KERFLINE_API int32_t IsRemoteAvailable(void) noexcept { return 1; }
KERFLINE_API int32_t QuickRead(void) noexcept { return 0; }
KERFLINE_API int32_t ReadDeviceValsEx(void) noexcept { return 0; }

KERFLINE_API int32_t QuickFree(void* block) noexcept {
  kerfline::platform::library_free(block);
  return 1;
}

}  // extern "C"
