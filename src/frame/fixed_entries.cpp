// Entry points that hosts call but that have nothing to do in this library:
// they keep their documented answers so that hosts built against them work.
#include "kerfline/kerfline.h"
#include "platform/library_memory.hpp"

extern "C" {

KERFLINE_API int32_t AddObjects(void) { return 1; }
KERFLINE_API int32_t Log(void) { return 1; }
KERFLINE_API int32_t ReadFromDevice(void) { return 1; }
KERFLINE_API int32_t SerializeCutData(void) { return 1; }
KERFLINE_API int32_t DoDeviceSetupDlgTest(void) { return 1; }
KERFLINE_API int32_t WriteDeviceFlags(void) { return 1; }
KERFLINE_API int32_t IsRemoteAvailable(void) { return 1; }
KERFLINE_API int32_t QuickRead(void) { return 0; }
KERFLINE_API int32_t ReadDeviceValsEx(void) { return 0; }

KERFLINE_API int32_t QuickFree(void* block) {
  kerfline::platform::library_free(block);
  return 1;
}

}  // extern "C"
