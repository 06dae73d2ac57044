// The export through which processes share the data block.
#include "device/shared_block.hpp"
#include "kerfline/kerfline.h"

extern "C" {

KERFLINE_API int32_t SharedDataMan(int32_t nOperation, uintptr_t nArgument) {
  if (nOperation < 1 || nOperation > 55) return 0;
  try {
    return kerfline::device::run_shared_operation(kerfline::device::process_shared_block(), nOperation,
                                                  nArgument);
  } catch (...) {
    return -3;  // the block could not even be set up (out of memory)
  }
}

}  // extern "C"
