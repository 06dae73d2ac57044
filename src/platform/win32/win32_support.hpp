// The one way platform code reaches <windows.h> (and Winsock 2): lean,
// without the min/max macros, and with owners for the handles the Win32
// files keep.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#  define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#  define NOMINMAX
#endif
// Winsock 2 before windows.h, which would otherwise bring the old winsock.h.
// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
#include <windows.h>
// clang-format on

#include <string>
#include <string_view>
#include <utility>

#include "platform/os_error.hpp"

namespace kerfline::platform::win32 {

// Owns a kernel handle; both null and INVALID_HANDLE_VALUE mean none, since
// Win32 functions disagree on which one they return for failure.
class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(HANDLE h) : handle_(h) {}
  ~UniqueHandle() { reset(); }
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) reset(std::exchange(other.handle_, nullptr));
    return *this;
  }
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;

  [[nodiscard]] HANDLE get() const { return handle_; }
  [[nodiscard]] bool valid() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
  HANDLE release() { return std::exchange(handle_, nullptr); }
  void reset(HANDLE h = nullptr) {
    if (valid()) CloseHandle(handle_);
    handle_ = h;
  }

 private:
  HANDLE handle_ = nullptr;
};

// Owns a loaded module.
class UniqueModule {
 public:
  UniqueModule() = default;
  explicit UniqueModule(HMODULE m) : module_(m) {}
  ~UniqueModule() {
    if (module_ != nullptr) FreeLibrary(module_);
  }
  UniqueModule(UniqueModule&& other) noexcept : module_(std::exchange(other.module_, nullptr)) {}
  UniqueModule& operator=(UniqueModule&& other) noexcept {
    if (this != &other) {
      if (module_ != nullptr) FreeLibrary(module_);
      module_ = std::exchange(other.module_, nullptr);
    }
    return *this;
  }
  UniqueModule(const UniqueModule&) = delete;
  UniqueModule& operator=(const UniqueModule&) = delete;

  [[nodiscard]] HMODULE get() const { return module_; }

 private:
  HMODULE module_ = nullptr;
};

// Owns a mapped view of a file mapping.
class UniqueView {
 public:
  UniqueView() = default;
  explicit UniqueView(void* view) : view_(view) {}
  ~UniqueView() {
    if (view_ != nullptr) UnmapViewOfFile(view_);
  }
  UniqueView(UniqueView&& other) noexcept : view_(std::exchange(other.view_, nullptr)) {}
  UniqueView& operator=(UniqueView&& other) noexcept {
    if (this != &other) {
      if (view_ != nullptr) UnmapViewOfFile(view_);
      view_ = std::exchange(other.view_, nullptr);
    }
    return *this;
  }
  UniqueView(const UniqueView&) = delete;
  UniqueView& operator=(const UniqueView&) = delete;

  [[nodiscard]] void* get() const { return view_; }

 private:
  void* view_ = nullptr;
};

// The error of the Win32 call that just failed, read at once.
inline OsError last_error(const std::string& context) {
  return os_error(static_cast<int>(GetLastError()), context);
}

// Splits a 64-bit quantity the way FILETIME and the size arguments want it.
inline DWORD low_dword(unsigned long long v) { return static_cast<DWORD>(v & 0xFFFFFFFFULL); }
inline DWORD high_dword(unsigned long long v) { return static_cast<DWORD>(v >> 32); }
inline unsigned long long make_u64(DWORD high, DWORD low) {
  return (static_cast<unsigned long long>(high) << 32) | low;
}

}  // namespace kerfline::platform::win32
