// Graphtec's library: side 0 is the write pipe, 1 the read pipe, files
// "out" and "in" of FAKE_VENDOR_DIR; each side refuses FAKE_VENDOR_FAILS
// opens first.
#ifdef _WIN32
#  include <windows.h>
#else
#  include <fcntl.h>
#endif

#include <cstdint>

#include "fake_vendor.hpp"

FAKE_EXPORT std::intptr_t GITK_OpenUsb(int, int side, int) {
  // The library stays loaded between tests: a new directory is a new device.
  static int refused[2] = {0, 0};
  static std::string device;
  if (device != fake::env_text("FAKE_VENDOR_DIR")) {
    device = fake::env_text("FAKE_VENDOR_DIR");
    refused[0] = refused[1] = 0;
  }
  if (side < 0 || side > 1) return -1;
  if (refused[side] < fake::env_int("FAKE_VENDOR_FAILS")) {
    ++refused[side];
    return -1;
  }
  const std::string path = fake::env_text("FAKE_VENDOR_DIR") + (side == 0 ? "/out" : "/in");
#ifdef _WIN32
  return reinterpret_cast<std::intptr_t>(CreateFileA(path.c_str(), side == 0 ? GENERIC_WRITE : GENERIC_READ,
                                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                     OPEN_EXISTING, 0, nullptr));
#else
  return ::open(path.c_str(), (side == 0 ? O_WRONLY : O_RDONLY) | O_CLOEXEC);
#endif
}
