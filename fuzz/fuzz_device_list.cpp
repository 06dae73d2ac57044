// The device list read from an arbitrary plotman.ini: every record must be
// terminated within its fields, and the listing must not crash or hang.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "kerfline/kerfline.h"
#include "platform/ini.hpp"
#include "platform/paths.hpp"
#include "sandbox.hpp"

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

const std::string& suite_dir() {
  static const std::string dir = [] {
    const auto d = kerfline::fuzz::sandbox_dir("device-list");
    kerfline::platform::set_home_dir(d.string() + "/");
    return d.string() + "/";
  }();
  return dir;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string file = suite_dir() + "plotman.ini";
  {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  int32_t count = -1;
  CUTDEVICE* list = GetCutDeviceList(&count);
  check(list != nullptr && count >= 0);
  for (int32_t i = 0; i < count; ++i) {
    check(std::memchr(list[i].szPort, 0, sizeof list[i].szPort) != nullptr);
    check(std::memchr(list[i].szDrvPath, 0, sizeof list[i].szDrvPath) != nullptr);
    check(std::memchr(list[i].szName, 0, sizeof list[i].szName) != nullptr);
    char path[64];
    const int32_t r = GetCutDevicePath(list[i].szName, path, sizeof path);
    check(r >= -static_cast<int32_t>(size) && r <= 1);
    CUTDEVICEINFO info{};
    GetCutDeviceInfo(list[i].szName, &info);
    check(info.nReserved == 0);
  }
  FreeCutDeviceList(list);
  (void)IsInputPathUsed(file.c_str(), "/spool/");
  return 0;
}
