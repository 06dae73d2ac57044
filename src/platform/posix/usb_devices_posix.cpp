#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/usb_devices.hpp"

namespace kerfline::platform::usb {
namespace {

namespace fs = std::filesystem;

// Attribute files are a page at most; anything longer is not an attribute.
constexpr std::size_t kAttributeLimit = 4096;

std::string read_attribute(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return {};
  std::string text(kAttributeLimit, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(in.gcount()));
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ')) text.pop_back();
  return text;
}

// The USB device directory above a class device: the first ancestor (up to
// three levels) that has the device's descriptor strings.
fs::path usb_device_dir(const fs::path& class_device) {
  std::error_code ec;
  fs::path dir = fs::canonical(class_device / "device", ec);
  if (ec) return {};
  for (int level = 0; level < 4 && !dir.empty(); ++level, dir = dir.parent_path()) {
    if (fs::exists(dir / "product", ec) || fs::exists(dir / "manufacturer", ec)) return dir;
  }
  return {};
}

std::string joined_name(const std::string& manufacturer, const std::string& product) {
  if (manufacturer.empty()) return product;
  if (product.empty()) return manufacturer;
  return manufacturer + " " + product;
}

std::vector<std::string> nodes(const fs::path& class_dir, const std::vector<std::string>& prefixes) {
  std::vector<std::string> found;
  std::error_code ec;
  for (fs::directory_iterator it(class_dir, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string node = it->path().filename().string();
    for (const std::string& prefix : prefixes) {
      if (node.rfind(prefix, 0) == 0) found.push_back(node);
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

void add_printers(const fs::path& root, std::vector<UsbConnection>& out) {
  const fs::path class_dir = root / "sys/class/usbmisc";
  for (const std::string& node : nodes(class_dir, {"lp"})) {
    UsbConnection c;
    c.node = node;
    c.path = (root / "dev/usb" / node).string();
    std::error_code ec;
    const fs::path interface_dir = fs::canonical(class_dir / node / "device", ec);
    if (!ec) c.ieee1284_id = read_attribute(interface_dir / "ieee1284_id");
    const fs::path device = usb_device_dir(class_dir / node);
    if (!device.empty())
      c.name = joined_name(read_attribute(device / "manufacturer"), read_attribute(device / "product"));
    if (c.name.empty()) {
      c.name = joined_name(ieee1284_field(c.ieee1284_id, "MFG"), ieee1284_field(c.ieee1284_id, "MDL"));
    }
    if (c.name.empty()) c.name = node;
    out.push_back(std::move(c));
  }
}

// The /dev/serial/by-id/ entry that points at the node, if any.
std::string stable_path(const fs::path& root, const std::string& node) {
  std::error_code ec;
  std::vector<std::string> hits;
  for (fs::directory_iterator it(root / "dev/serial/by-id", ec), end; !ec && it != end; it.increment(ec)) {
    std::error_code link_ec;
    const fs::path target = fs::read_symlink(it->path(), link_ec);
    if (!link_ec && target.filename() == node) hits.push_back(it->path().string());
  }
  std::sort(hits.begin(), hits.end());
  return hits.empty() ? std::string() : hits.front();
}

void add_serial_adapters(const fs::path& root, std::vector<UsbConnection>& out) {
  const fs::path class_dir = root / "sys/class/tty";
  for (const std::string& node : nodes(class_dir, {"ttyUSB", "ttyACM"})) {
    UsbConnection c;
    c.node = node;
    c.path = stable_path(root, node);
    if (c.path.empty()) c.path = (root / "dev" / node).string();
    const fs::path device = usb_device_dir(class_dir / node);
    if (!device.empty())
      c.name = joined_name(read_attribute(device / "manufacturer"), read_attribute(device / "product"));
    if (c.name.empty()) c.name = node;
    out.push_back(std::move(c));
  }
}

}  // namespace

std::vector<UsbConnection> enumerate(const std::string& root) {
  const fs::path base = root.empty() ? fs::path("/") : fs::path(root);
  std::vector<UsbConnection> out;
  add_printers(base, out);
  add_serial_adapters(base, out);
  return out;
}

std::vector<UsbConnection> enumerate() {
  const char* root = std::getenv("KERFLINE_SYSTEM_ROOT");
  return enumerate(root != nullptr ? root : "");
}

}  // namespace kerfline::platform::usb
