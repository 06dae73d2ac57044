// The one place <windows.h> comes in: lean, without the min/max macros.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#  define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#  define NOMINMAX
#endif
// Winsock 2 must come before windows.h, which would pull in the old winsock.h.
#include <windows.h>
#include <winsock2.h>
#include <ws2tcpip.h>

namespace kerfline::platform {

// A kernel handle closed when it goes out of scope.
class UniqueHandle {
 public:
  explicit UniqueHandle(HANDLE h = INVALID_HANDLE_VALUE) : h_(h) {}
  ~UniqueHandle() {
    if (valid()) ::CloseHandle(h_);
  }
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;
  [[nodiscard]] bool valid() const { return h_ != INVALID_HANDLE_VALUE && h_ != nullptr; }
  [[nodiscard]] HANDLE get() const { return h_; }

 private:
  HANDLE h_;
};

}  // namespace kerfline::platform
