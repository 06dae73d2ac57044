#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "platform/directories.hpp"
#include "platform/local_ports.hpp"

namespace kerfline::platform {

namespace {

std::string sysfs_root() {
  const char* env = std::getenv("KERFLINE_SYSFS_ROOT");
  std::string root = env != nullptr && *env != '\0' ? env : "/sys";
  while (root.size() > 1 && root.back() == '/') root.pop_back();
  return root;
}

// The number after the prefix, or -1 when the name is not prefix + digits.
long port_number(std::string_view name, std::string_view prefix) {
  if (name.size() <= prefix.size() || name.substr(0, prefix.size()) != prefix ||
      name.size() > prefix.size() + 9) {
    return -1;
  }
  long n = 0;
  for (const char c : name.substr(prefix.size())) {
    if (c < '0' || c > '9') return -1;
    n = n * 10 + (c - '0');
  }
  return n;
}

// Entries of a sysfs class directory named prefix + number, ascending.
std::vector<std::pair<long, std::string>> numbered(const std::string& dir, std::string_view prefix) {
  std::vector<std::pair<long, std::string>> found;
  auto names = list_directory(dir);
  if (!names) return found;
  for (const auto& name : names.value()) {
    if (const long n = port_number(name, prefix); n >= 0) found.emplace_back(n, name);
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

std::vector<std::string> local_ports() {
  const std::string root = sysfs_root();
  const std::string tty = root + "/class/tty";
  std::vector<std::string> ports;
  // Every 8250 slot has a ttyS node; only those with a UART behind it are ports.
  for (const auto& [n, name] : numbered(tty, "ttyS")) {
    const auto type = read_first_line(std::string(tty).append("/").append(name).append("/type"), 16);
    if (type && !type.value().empty() && type.value() != "0") ports.push_back("/dev/" + name);
  }
  for (const char* prefix : {"ttyUSB", "ttyACM"}) {
    for (const auto& [n, name] : numbered(tty, prefix)) ports.push_back("/dev/" + name);
  }
  for (const auto& [n, name] : numbered(root + "/class/printer", "lp")) ports.push_back("/dev/" + name);
  for (const auto& [n, name] : numbered(root + "/class/usbmisc", "lp")) ports.push_back("/dev/usb/" + name);
  return ports;
}

}  // namespace kerfline::platform
