#include "devconfig/device_names.hpp"

#include <algorithm>
#include <cstring>

#include "devconfig/spool_dir.hpp"
#include "devconfig/spool_paths.hpp"
#include "kerfline/device_settings.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace kerfline::devconfig {

namespace ini = platform::ini;

namespace {

constexpr const char* kRemotePort = "Remote Plotmanager";

// The whole "DeviceNames" section as "k=v\0...\0". The buffer doubles
// rather than growing by 512 bytes, so a long list is read in a number of
// passes logarithmic in its size; the result is the same.
std::vector<std::string> device_lines(const std::string& file) {
  std::vector<char> buffer(512);
  for (;;) {
    const auto size = static_cast<std::uint32_t>(buffer.size());
    const std::uint32_t n = ini::get_section("DeviceNames", buffer.data(), size, file);
    if (n + 2 < size || size >= 0x40000000u) {
      std::vector<std::string> lines;
      for (std::size_t at = 0; at < n && buffer[at] != '\0';) {
        const std::size_t len = strnlen(buffer.data() + at, n - at);
        lines.emplace_back(buffer.data() + at, len);
        at += len + 1;
      }
      return lines;
    }
    buffer.assign(buffer.size() * 2, '\0');
  }
}

std::string port_of(const std::string& name, const std::string& file) {
  if (ini::read_int(name, "DevFlgLocal", 1, file) == 0) return {};
  // The list's default for the spooler flag is 1, unlike the settings class.
  if (ini::read_int(name, "DevFlgUseSpooler", 1, file) != 0)
    return ini::read_string(name, "DevOut", "", file);
  switch (ini::read_int(name, "DevPortType", PORTTYPE_PATH, file)) {
    case PORTTYPE_PATH:
    case PORTTYPE_PRINTER:
    case PORTTYPE_USB:
      return ini::read_string(name, "DevOut", "", file);
    case PORTTYPE_TCPIP:
      return ini::read_string(name, "IP_ADDR", "", file);
    default:
      return {};
  }
}

void copy_cut(char* field, std::size_t width, const std::string& text) {
  const std::size_t n = std::min(text.size(), width - 1);
  // NOLINTNEXTLINE(bugprone-not-null-terminated-result): the memset below ends the field with zeros
  std::memcpy(field, text.data(), n);
  std::memset(field + n, 0, width - n);
}

}  // namespace

std::vector<ListedDevice> list_devices(const std::string& file) {
  std::vector<ListedDevice> devices;
  for (const auto& line : device_lines(file)) {
    const auto eq = line.rfind('=');
    ListedDevice d;
    d.name = eq == std::string::npos ? line : line.substr(0, eq);
    const std::int32_t type = ini::read_int(d.name, "DevType", DEVTYPE_CUTTER, file);
    if (type == DEVTYPE_FIXED_SPOOL) continue;
    d.port = port_of(d.name, file);
    std::string dir;
    if (type == DEVTYPE_CUTTER || type == DEVTYPE_REMOTE) {
      dir = ini::read_string(d.name, "DevDrvPath", "", file);
    } else if (type == DEVTYPE_TCPIP_CLIENT) {
      dir = platform::join_path(ini_directory(file), platform::native_separators("cutter/"));
    }
    if (type == DEVTYPE_REMOTE || type == DEVTYPE_TCPIP_CLIENT) d.port = kRemotePort;
    if (type == DEVTYPE_CUTTER || type == DEVTYPE_REMOTE || type == DEVTYPE_TCPIP_CLIENT) {
      if (!dir.empty() && dir.back() != '/' && dir.back() != '\\') dir += platform::path_separator();
      d.driver_path = dir + ini::read_string(d.name, "DevDrvFileName", "", file);
    }
    devices.push_back(std::move(d));
  }
  return devices;
}

void fill_record(const ListedDevice& device, CUTDEVICE& record) {
  copy_cut(record.szPort, sizeof(record.szPort), device.port);
  copy_cut(record.szDrvPath, sizeof(record.szDrvPath), device.driver_path);
  copy_cut(record.szName, sizeof(record.szName), device.name);
}

bool usable_device_name(std::string_view name) {
  if (name.empty() || name.front() == '[' || name.front() == ';') return false;
  if (name.front() == ' ' || name.back() == ' ') return false;
  return std::none_of(name.begin(), name.end(), [](char c) {
    const auto u = static_cast<unsigned char>(c);
    return u < 0x20 || u == 0x7F || c == '=';
  });
}

std::string driver_display_name(const std::string& driver_path) {
  char buffer[512] = {};
  std::string name;
  const int32_t n = GetDrvName(driver_path.c_str(), buffer, sizeof(buffer));
  if (n > 0) {
    name.assign(buffer, static_cast<std::size_t>(n));
  } else if (n < 0) {
    std::vector<char> big(static_cast<std::size_t>(-n) + 1);
    const int32_t m = GetDrvName(driver_path.c_str(), big.data(), static_cast<int32_t>(big.size()));
    if (m > 0)
      name.assign(big.data(), std::min<std::size_t>(static_cast<std::size_t>(m), sizeof(buffer) - 1));
  }
  while (!name.empty() && name.back() == ' ') name.pop_back();
  return name;
}

const char* device_list_file_c() {
  thread_local std::string file;
  file = device_list_file();
  return file.c_str();
}

}  // namespace kerfline::devconfig
