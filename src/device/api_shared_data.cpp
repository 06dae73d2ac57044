// The export through which processes share the data block.
#include "device/shared_block.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"

extern "C" {

KERFLINE_API int32_t SharedDataMan(int32_t nOperation, uintptr_t nArgument) noexcept {
  if (nOperation < 1 || nOperation > 55) return 0;
  // Only setting the block up can fail, and only for want of memory.
  return kerfline::platform::guarded(KERFLINE_OUT_OF_MEMORY, [nOperation, nArgument] {
    return kerfline::device::run_shared_operation(kerfline::device::process_shared_block(), nOperation,
                                                  nArgument);
  });
}

}  // extern "C"
