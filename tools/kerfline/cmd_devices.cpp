// `kerfline devices`: the suite's device list through the library's
// exports, as a host sees it.
#include <cstdio>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "commands.hpp"
#include "kerfline/device_settings.hpp"
#include "kerfline/kerfline.h"
#include "platform/codepage.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"
#include "port_hint.hpp"

namespace kerfline::cli {
namespace {

namespace cp = platform::cp1252;
using Settings = std::vector<std::pair<std::string, std::string>>;

struct DevicesOptions {
  bool json = false;
  std::string name;
  std::string port;
  std::string driver;
};

std::string utf8(const char* text) { return cp::to_utf8(text != nullptr ? text : ""); }

// A command-line argument (UTF-8) as a library text; false when 1252 cannot hold it.
bool to_library_text(const std::string& arg, std::string& out) {
  auto converted = cp::from_utf8(arg);
  if (!converted) {
    std::fprintf(stderr, "kerfline: \"%s\" has characters that Windows-1252 cannot hold\n", arg.c_str());
    return false;
  }
  out = std::move(*converted);
  return true;
}

bool fits(const std::string& text, std::size_t width, const char* what) {
  if (text.size() < width) return true;
  std::fprintf(stderr, "kerfline: the %s may have at most %zu characters\n", what, width - 1);
  return false;
}

std::string device_file() { return platform::join_path(platform::home_dir(), "plotman.ini"); }

int run_list(const DevicesOptions& o) {
  int32_t count = 0;
  std::unique_ptr<CUTDEVICE, void (*)(CUTDEVICE*)> list(GetCutDeviceList(&count), FreeCutDeviceList);
  if (!list) {
    std::fprintf(stderr, "kerfline: out of memory\n");
    return kExitFailure;
  }
  if (o.json) {
    nlohmann::ordered_json out = nlohmann::ordered_json::array();
    for (int32_t i = 0; i < count; ++i) {
      const CUTDEVICE& d = list.get()[i];
      out.push_back({{"name", utf8(d.szName)}, {"port", utf8(d.szPort)}, {"driver", utf8(d.szDrvPath)}});
    }
    std::printf("%s\n", out.dump(2).c_str());
    return kExitOk;
  }
  if (count == 0) std::printf("no devices in %s\n", device_file().c_str());
  for (int32_t i = 0; i < count; ++i) {
    const CUTDEVICE& d = list.get()[i];
    std::printf("%-24s %-20s %s\n", utf8(d.szName).c_str(), utf8(d.szPort).c_str(),
                utf8(d.szDrvPath).c_str());
  }
  return kExitOk;
}

void base_settings(const CBaseDeviceSettings& s, Settings& out) {
  const auto num = [](long long v) { return std::to_string(v); };
  out.insert(out.end(), {{"DevType", num(s.GetDeviceType())},
                         {"DevOut", s.GetWriteTo()},
                         {"DevIn", s.GetReadFrom()},
                         {"DevIni", s.GetIndexFile()},
                         {"DevSuffix", s.GetJobSuffix()},
                         {"DevFlgAsk", num(s.IsMsgFlag())},
                         {"active", num(s.IsActive())},
                         {"DevFlgWav", num(s.IsPlayWav())},
                         {"DevNotifyWavFile", s.GetWav()},
                         {"DevPlotToFile", num(s.GetPlotToFile())},
                         {"DevDefCount", num(s.GetDefCount())},
                         {"DevDefSavedCount", num(s.GetMaxFileCount())}});
}

void driver_settings(const CDriverDeviceSettings& s, Settings& out) {
  out.insert(out.end(), {{"DevDrvPath", s.GetDrvPath()},
                         {"DevDrvFileName", s.GetDrvFileName()},
                         {"DevDrvInfo", s.GetDrvName()}});
}

// The device read with the class its type stands for, as setting/value pairs.
Settings read_settings(const std::string& name, const std::string& file, const char*& class_name) {
  const auto num = [](long long v) { return std::to_string(v); };
  Settings out;
  switch (CBaseDeviceSettings::GetDeviceType(name.c_str(), file.c_str())) {
    case DEVTYPE_CUTTER: {
      CCutterDeviceSettings s(name.c_str());
      s.ReadFromIni(file.c_str());
      class_name = "CCutterDeviceSettings";
      base_settings(s, out);
      driver_settings(s, out);
      out.insert(out.end(), {{"IP_ADDR", s.GetTCPIPAddress()},
                             {"IP_PORT", num(s.GetTCPIPPort())},
                             {"DevFlgUseSpooler", num(s.GetSpoolerFlag())},
                             {"DevFlgServer", num(s.GetServerFlag())},
                             {"ActJobNr", num(s.GetJobNr())},
                             {"DevUsbDeviceName", s.GetUSBDeviceName()},
                             {"DevPortType", num(s.GetPortType())},
                             {"DevServerPort", num(s.GetServerPort())}});
      break;
    }
    case DEVTYPE_REMOTE: {
      CRemoteDeviceSettings s;
      s.SetDeviceName(name.c_str());
      s.ReadFromIni(file.c_str());
      class_name = "CRemoteDeviceSettings";
      base_settings(s, out);
      driver_settings(s, out);
      out.insert(out.end(), {{"DevRemoteIndexFile", s.GetRemoteIndexFile()},
                             {"DevRemoteIni", s.GetRemoteIniFile()},
                             {"DevRemoteDevName", s.GetServerDeviceName()}});
      break;
    }
    case DEVTYPE_TCPIP_CLIENT: {
      CTcpIpClientDeviceSettings s;
      s.SetDeviceName(name.c_str());
      s.ReadFromIni(file.c_str());
      class_name = "CTcpIpClientDeviceSettings";
      base_settings(s, out);
      out.insert(out.end(), {{"DevServerDevName", s.GetServerDeviceName()},
                             {"IP_ADDR", s.GetTCPIPAddress()},
                             {"IP_PORT", num(s.GetTCPIPPort())},
                             {"TcpIpType", num(s.GetTcpIpType())},
                             {"DevDrvFileName", s.GetServerDriverFileName()},
                             {"DevDrvInfo", s.GetServerDriverInfo()},
                             {"TcpIpHostname", s.GetTCPIPHostName()}});
      break;
    }
    case DEVTYPE_LOCALE: {
      CLocaleDeviceSettings s;
      s.SetDeviceName(name.c_str());
      s.ReadFromIni(file.c_str());
      class_name = "CLocaleDeviceSettings";
      base_settings(s, out);
      out.insert(out.end(), {{"DevPortType", num(s.GetPortType())}, {"LastDir", s.GetLastDir()}});
      break;
    }
    default: {
      CBaseDeviceSettings s(name.c_str());
      s.ReadFromIni(file.c_str());
      class_name = "CBaseDeviceSettings";
      base_settings(s, out);
    }
  }
  return out;
}

int run_show(const DevicesOptions& o) {
  std::string name;
  if (!to_library_text(o.name, name)) return kExitUsage;
  const std::string file = device_file();
  if (!platform::ini::find_string("DeviceNames", name, file) &&
      !platform::ini::find_string("LocaleDevices", name, file)) {
    std::fprintf(stderr, "kerfline: no device \"%s\" in %s\n", o.name.c_str(), file.c_str());
    return kExitFailure;
  }
  const char* class_name = "";
  const Settings settings = read_settings(name, file, class_name);
  if (o.json) {
    nlohmann::ordered_json out;
    out["name"] = utf8(name.c_str());
    out["class"] = class_name;
    nlohmann::ordered_json values;
    for (const auto& [k, v] : settings) values[k] = utf8(v.c_str());
    out["settings"] = std::move(values);
    std::printf("%s\n", out.dump(2).c_str());
    return kExitOk;
  }
  std::printf("%s (%s)\n", utf8(name.c_str()).c_str(), class_name);
  for (const auto& [k, v] : settings) std::printf("  %-18s %s\n", k.c_str(), utf8(v.c_str()).c_str());
  return kExitOk;
}

int run_add(const DevicesOptions& o) {
  CUTDEVICE d{};
  std::string name, port, driver;
  if (!to_library_text(o.name, name) || !to_library_text(o.port, port) ||
      !to_library_text(o.driver, driver)) {
    return kExitUsage;
  }
  if (name.empty() || port.empty()) {
    std::fprintf(stderr, "kerfline: a device needs a name and a port\n");
    return kExitUsage;
  }
  if (!fits(name, sizeof d.szName, "name") || !fits(port, sizeof d.szPort, "port") ||
      !fits(driver, sizeof d.szDrvPath, "driver path")) {
    return kExitUsage;
  }
  std::memcpy(d.szName, name.c_str(), name.size());
  std::memcpy(d.szPort, port.c_str(), port.size());
  std::memcpy(d.szDrvPath, driver.c_str(), driver.size());
  if (WriteCutDevice(&d) != 1) {
    std::fprintf(stderr, "kerfline: \"%s\" cannot be a device name\n", o.name.c_str());
    return kExitFailure;
  }
  char spool[1024];
  const int32_t r = GetCutDevicePath(d.szName, spool, sizeof spool);
  std::printf("added %s on %s, spool directory %s\n", o.name.c_str(), o.port.c_str(), r == 1 ? spool : "");
  return kExitOk;
}

int run_remove(const DevicesOptions& o) {
  CUTDEVICE d{};
  std::string name;
  if (!to_library_text(o.name, name)) return kExitUsage;
  if (name.empty() || !fits(name, sizeof d.szName, "name")) return kExitUsage;
  if (!platform::ini::find_string("DeviceNames", name, device_file())) {
    std::fprintf(stderr, "kerfline: no device \"%s\" in %s\n", o.name.c_str(), device_file().c_str());
    return kExitFailure;
  }
  std::memcpy(d.szName, name.c_str(), name.size());
  if (WriteCutDevice(&d) != 1) return kExitFailure;
  std::printf("removed %s\n", o.name.c_str());
  return kExitOk;
}

int run_ports() {
  char* ports = GetLocaleDevices('\n');
  if (ports == nullptr) {
    std::printf("no serial or parallel ports found\n");
    return kExitOk;
  }
  std::printf("%s\n", ports);
  std::fflush(stdout);
  // Hints after the list, which stays one port a line for scripts.
  for (const char *p = ports, *end = nullptr; *p != '\0'; p = *end != '\0' ? end + 1 : end) {
    end = std::strchr(p, '\n');
    if (end == nullptr) end = p + std::strlen(p);
    print_port_hint(std::string(p, end));
  }
  QuickFree(ports);
  return kExitOk;
}

}  // namespace

void register_devices(CLI::App& app, CommandList& commands) {
  auto opts = std::make_shared<DevicesOptions>();
  CLI::App* devices = app.add_subcommand("devices", "List, show, add and remove the suite's output devices");
  devices->require_subcommand(1);

  CLI::App* list = devices->add_subcommand("list", "The devices of plotman.ini (GetCutDeviceList)");
  list->add_flag("--json", opts->json, "Print JSON");
  commands.add(list, [opts] { return run_list(*opts); });

  CLI::App* show = devices->add_subcommand("show", "Every setting of one device, read with its class");
  show->add_option("name", opts->name, "Device name")->required();
  show->add_flag("--json", opts->json, "Print JSON");
  commands.add(show, [opts] { return run_show(*opts); });

  CLI::App* add = devices->add_subcommand("add", "Add or update a cutter (WriteCutDevice)");
  add->add_option("name", opts->name, "Device name")->required();
  add->add_option("--port", opts->port, "Port or path, e.g. /dev/ttyUSB0 or COM3")->required();
  add->add_option("--driver", opts->driver, "Driver file")->required();
  commands.add(add, [opts] { return run_add(*opts); });

  CLI::App* remove = devices->add_subcommand("remove", "Remove a device and its spool files");
  remove->add_option("name", opts->name, "Device name")->required();
  commands.add(remove, [opts] { return run_remove(*opts); });

  CLI::App* ports =
      devices->add_subcommand("ports", "The machine's serial and parallel ports (GetLocaleDevices)");
  commands.add(ports, run_ports);
}

}  // namespace kerfline::cli
