// The one way platform code reaches <windows.h>: lean, without the min/max
// macros.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#  define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#  define NOMINMAX
#endif
#include <windows.h>

#include <string>

#include "platform/os_error.hpp"

namespace kerfline::platform::win32 {

// The error of the Win32 call that just failed, read at once.
inline OsError last_error(const std::string& context) {
  return os_error(static_cast<int>(GetLastError()), context);
}

}  // namespace kerfline::platform::win32
