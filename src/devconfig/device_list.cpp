// The device-list exports: listing, adding, updating and removing the
// devices of "plotman.ini", and the queries around them.
#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "devconfig/device_names.hpp"
#include "devconfig/spool_dir.hpp"
#include "devconfig/spool_paths.hpp"
#include "kerfline/device_settings.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/clock.hpp"
#include "platform/codepage.hpp"
#include "platform/host_hooks.hpp"
#include "platform/ini.hpp"
#include "platform/library_memory.hpp"
#include "platform/local_ports.hpp"
#include "platform/paths.hpp"

static_assert(sizeof(CUTDEVICE) == 420);
static_assert(offsetof(CUTDEVICE, szPort) == 0);
static_assert(offsetof(CUTDEVICE, szDrvPath) == 32);
static_assert(offsetof(CUTDEVICE, szName) == 292);
static_assert(sizeof(CUTDEVICEINFO) == 8);
static_assert(offsetof(CUTDEVICEINFO, nReserved) == 0);
static_assert(offsetof(CUTDEVICEINFO, nDeviceType) == 4);

namespace ini = kerfline::platform::ini;
namespace host = kerfline::platform::host;
using namespace kerfline::devconfig;

namespace {

constexpr const char* kChangeMessage = "Umsg_StartDeviceDlg";
// The plot manager answers the listening query with this.
constexpr std::intptr_t kListening = 3;
// Waits of 100 ms before the query gives up on an answer.
constexpr int kQueryWaits = 31;

std::string field_text(const char* field, std::size_t width) {
  return std::string(field, strnlen(field, width));
}

void add_device(const std::string& name, const std::string& port, const std::string& driver) {
  const std::string file = device_list_file();
  CCutterDeviceSettings settings(name.c_str());
  settings.ReadFromIni(file.c_str());
  settings.SetIni(file.c_str());
  settings.InitDir();  // creates the spool layout and the whole record when new
  const std::string index = settings.GetIndexFile();
  ini::write_value(name, "DevIni", index, file);
  ini::write_value(name, "DevIn", directory_part(index), file);
  ini::write_value("DeviceNames", name, "1", file);
  ini::write_value(name, "DevOut", port, file);
  ini::write_value(name, "DevDrvPath", directory_part(driver), file);
  ini::write_value(name, "DevDrvFileName", file_part(driver), file);
  ini::write_value(name, "DevDrvInfo", driver_display_name(driver), file);
}

std::int32_t listening_query() {
  const std::intptr_t answer = host::broadcast(kChangeMessage, 1, 0, true);
  if (answer != -1) return answer == kListening ? 1 : 0;
  // Nobody answered: give a slow plot manager the time the suite always gave.
  for (int i = 0; i < kQueryWaits; ++i) {
    kerfline::platform::sleep_ms(100);
    host::pump_messages();
  }
  return 1;
}

}  // namespace

using kerfline::platform::guarded_as;
using kerfline::platform::guarded_pointer;

KERFLINE_API CUTDEVICE* GetCutDeviceList(int32_t* count) noexcept {
  if (count != nullptr) *count = 0;
  return guarded_pointer([&]() -> CUTDEVICE* {
    const std::vector<ListedDevice> devices = list_devices(device_list_file());
    auto* out = static_cast<CUTDEVICE*>(
        kerfline::platform::library_alloc(sizeof(CUTDEVICE) * std::max<std::size_t>(devices.size(), 1)));
    if (out == nullptr) return nullptr;
    for (std::size_t i = 0; i < devices.size(); ++i) fill_record(devices[i], out[i]);
    if (devices.empty()) std::memset(out, 0, sizeof(CUTDEVICE));
    if (count != nullptr) *count = static_cast<int32_t>(devices.size());
    return out;
  });
}

KERFLINE_API void FreeCutDeviceList(CUTDEVICE* list) noexcept { kerfline::platform::library_free(list); }

KERFLINE_API int32_t WriteCutDevice(const CUTDEVICE* device) noexcept {
  return guarded_as(0, [&] {
    if (device == nullptr) return listening_query();
    const std::string name = field_text(device->szName, sizeof(device->szName));
    const std::string port = field_text(device->szPort, sizeof(device->szPort));
    if (name.empty()) {
      for (const auto& listed : ini::read_key_names("DeviceNames", device_list_file())) remove_device(listed);
    } else if (!usable_device_name(name)) {
      return 0;
    } else if (port.empty()) {
      remove_device(name);
    } else {
      add_device(name, port, field_text(device->szDrvPath, sizeof(device->szDrvPath)));
    }
    announce_device_change();
    return 1;
  });
}

KERFLINE_API int32_t GetCutDeviceInfo(const char* name, CUTDEVICEINFO* info) noexcept {
  const int32_t type =
      guarded_as(0, [name] { return CBaseDeviceSettings::GetDeviceType(name, device_list_file_c()); });
  const bool known = type == DEVTYPE_CUTTER || type == DEVTYPE_FIXED_SPOOL || type == DEVTYPE_REMOTE ||
                     type == DEVTYPE_TCPIP_CLIENT;
  if (info != nullptr) {
    info->nReserved = 0;
    info->nDeviceType = known ? type : 0;
  }
  return known ? 1 : 0;
}

KERFLINE_API int32_t GetCutDevicePortType(const char* name) noexcept {
  return guarded_as(0, [name] { return CBaseDeviceSettings::GetPortType(name, device_list_file_c()); });
}

KERFLINE_API int32_t GetCutDevicePath(const char* name, char* buffer, int32_t size) noexcept {
  return guarded_as(0, [&] {
    const std::string path = ini::read_string(name != nullptr ? name : "", "DevIn", "", device_list_file());
    if (buffer == nullptr || size <= 0) return path.empty() ? 0 : -static_cast<int32_t>(path.size());
    if (path.empty()) {
      buffer[0] = '\0';
      return 0;
    }
    if (path.size() >= static_cast<std::size_t>(size)) return -static_cast<int32_t>(path.size());
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return 1;
  });
}

KERFLINE_API char* GetLocaleDevices(char separator) noexcept {
  return guarded_pointer([&]() -> char* {
    const std::vector<std::string> ports = kerfline::platform::local_ports();
    if (ports.empty()) return nullptr;
    std::string joined;
    for (const auto& p : ports) {
      if (!joined.empty()) joined += separator;
      joined += p;
    }
    return kerfline::platform::library_strdup(joined);
  });
}

KERFLINE_API int32_t IsInputPathUsed(const char* iniFile, const char* path) noexcept {
  if (path == nullptr) return 0;
  return guarded_as(0, [&] {
    namespace cp = kerfline::platform::cp1252;
    const std::string file = iniFile != nullptr ? std::string(iniFile) : device_list_file();
    const std::string wanted = cp::to_upper(path);
    for (const auto& name : ini::read_key_names("DeviceNames", file)) {
      if (cp::to_upper(ini::read_string(name, "DevIn", "", file)) == wanted) return 1;
    }
    return 0;
  });
}

KERFLINE_API int32_t CanDoSetup(const char* iniFile, const char* name) noexcept {
  return guarded_as(0, [iniFile, name] {
    return CBaseDeviceSettings::IsSetupAllowed(name, iniFile != nullptr ? iniFile : device_list_file_c());
  });
}
