// Windows lists USB devices through SetupAPI: the present interfaces of the
// USB printer class (the path is the interface's device path, opened with
// CreateFileA as a file) and the present serial ports whose bus is USB (the
// path is \\.\COMn, also right for COM10 and above). There is no alternative
// root: the system's device tree is the only one.
#include <algorithm>
#include <cstddef>
#include <vector>

#include "platform/usb_devices.hpp"
#include "platform/win32/win32_support.hpp"

// clang-format off
#include <setupapi.h>
#include <winioctl.h>
#include <usbprint.h>
// clang-format on

namespace kerfline::platform::usb {
namespace {

// The GUIDs spelled here: with DEFINE_GUID they would need INITGUID in
// exactly one file of the program.
constexpr GUID kUsbPrinterInterface = {
    0x28d78fad, 0x5a12, 0x11d1, {0xae, 0x5b, 0x00, 0x00, 0xf8, 0x03, 0xa8, 0xc2}};
constexpr GUID kSerialPortInterface = {
    0x86e0d1e0, 0x8089, 0x11d0, {0x9c, 0xe4, 0x08, 0x00, 0x3e, 0x30, 0x1f, 0x73}};

// Registry strings and device paths are short; anything longer is skipped.
constexpr DWORD kTextLimit = 4096;

class DeviceList {
 public:
  explicit DeviceList(const GUID& interface_class)
      : set_(SetupDiGetClassDevsA(&interface_class, nullptr, nullptr,
                                  DIGCF_PRESENT | DIGCF_DEVICEINTERFACE)) {}
  ~DeviceList() {
    if (valid()) SetupDiDestroyDeviceInfoList(set_);
  }
  DeviceList(const DeviceList&) = delete;
  DeviceList& operator=(const DeviceList&) = delete;
  [[nodiscard]] bool valid() const { return set_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HDEVINFO get() const { return set_; }

 private:
  HDEVINFO set_;
};

std::string trimmed(std::string text) {
  const std::size_t nul = text.find('\0');
  if (nul != std::string::npos) text.resize(nul);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\r' || text.back() == '\n')) text.pop_back();
  return text;
}

std::string registry_property(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property) {
  std::string text(256, '\0');
  DWORD needed = 0;
  DWORD type = 0;
  if (SetupDiGetDeviceRegistryPropertyA(set, &device, property, &type, reinterpret_cast<BYTE*>(text.data()),
                                        static_cast<DWORD>(text.size()), &needed) == 0) {
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || needed > kTextLimit) return {};
    text.assign(needed, '\0');
    if (SetupDiGetDeviceRegistryPropertyA(set, &device, property, &type, reinterpret_cast<BYTE*>(text.data()),
                                          static_cast<DWORD>(text.size()), &needed) == 0) {
      return {};
    }
  }
  if (type != REG_SZ && type != REG_MULTI_SZ) return {};
  return trimmed(std::move(text));
}

std::string instance_id(HDEVINFO set, SP_DEVINFO_DATA& device) {
  std::string text(kTextLimit, '\0');
  if (SetupDiGetDeviceInstanceIdA(set, &device, text.data(), kTextLimit, nullptr) == 0) return {};
  return trimmed(std::move(text));
}

// The interface's device path, and the device it belongs to.
std::string interface_path(HDEVINFO set, SP_DEVICE_INTERFACE_DATA& interface_data, SP_DEVINFO_DATA& device) {
  DWORD needed = 0;
  SetupDiGetDeviceInterfaceDetailA(set, &interface_data, nullptr, 0, &needed, nullptr);
  if (needed < sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A) || needed > kTextLimit) return {};
  // The detail record is a header followed by the path; DWORD storage keeps
  // it aligned.
  std::vector<DWORD> storage((needed + sizeof(DWORD) - 1) / sizeof(DWORD));
  auto* detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(storage.data());
  detail->cbSize = sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_A);
  device.cbSize = sizeof(device);
  if (SetupDiGetDeviceInterfaceDetailA(set, &interface_data, detail, needed, nullptr, &device) == 0)
    return {};
  return trimmed(
      std::string(detail->DevicePath, needed - offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath)));
}

// The device's IEEE 1284 id, asked of the printer class driver. The answer
// starts with its own length, two bytes big-endian, counting themselves.
std::string printer_id(const std::string& path) {
  // No access rights: the request needs none, and a port in use stays undisturbed.
  win32::UniqueHandle h(
      CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!h.valid()) return {};
  unsigned char reply[1024] = {};
  DWORD got = 0;
  if (DeviceIoControl(h.get(), IOCTL_USBPRINT_GET_1284_ID, nullptr, 0, reply, sizeof(reply), &got, nullptr) ==
          0 ||
      got < 2) {
    return {};
  }
  const std::size_t length = std::min<std::size_t>((std::size_t{reply[0]} << 8) | reply[1], got);
  if (length < 2) return {};
  return trimmed(std::string(reinterpret_cast<const char*>(reply) + 2, length - 2));
}

std::string joined_name(const std::string& manufacturer, const std::string& product) {
  if (manufacturer.empty()) return product;
  if (product.empty()) return manufacturer;
  if (product.rfind(manufacturer, 0) == 0) return product;
  return manufacturer + " " + product;
}

// The name a user knows the device by: what Device Manager shows.
std::string device_name(HDEVINFO set, SP_DEVINFO_DATA& device) {
  std::string name = registry_property(set, device, SPDRP_FRIENDLYNAME);
  if (name.empty()) name = registry_property(set, device, SPDRP_DEVICEDESC);
  return name;
}

template <typename AddFn>
void for_each_interface(const GUID& interface_class, AddFn add) {
  DeviceList list(interface_class);
  if (!list.valid()) return;
  for (DWORD index = 0;; ++index) {
    SP_DEVICE_INTERFACE_DATA interface_data{};
    interface_data.cbSize = sizeof(interface_data);
    if (SetupDiEnumDeviceInterfaces(list.get(), nullptr, &interface_class, index, &interface_data) == 0)
      break;
    SP_DEVINFO_DATA device{};
    const std::string path = interface_path(list.get(), interface_data, device);
    if (!path.empty()) add(list.get(), device, path);
  }
}

bool by_node(const UsbConnection& a, const UsbConnection& b) {
  if (a.node.size() != b.node.size()) return a.node.size() < b.node.size();  // COM9 before COM10
  return a.node < b.node;
}

void add_printers(std::vector<UsbConnection>& out) {
  std::vector<UsbConnection> found;
  for_each_interface(
      kUsbPrinterInterface, [&](HDEVINFO set, SP_DEVINFO_DATA& device, const std::string& path) {
        UsbConnection c;
        c.path = path;
        c.node = instance_id(set, device);
        c.ieee1284_id = printer_id(path);
        c.name = joined_name(ieee1284_field(c.ieee1284_id, "MFG"), ieee1284_field(c.ieee1284_id, "MDL"));
        if (c.name.empty()) c.name = device_name(set, device);
        if (c.name.empty()) c.name = c.node.empty() ? path : c.node;
        found.push_back(std::move(c));
      });
  std::sort(found.begin(), found.end(), by_node);
  out.insert(out.end(), found.begin(), found.end());
}

// The COM name the port driver was given, from the device's own key.
std::string port_name(HDEVINFO set, SP_DEVINFO_DATA& device) {
  HKEY key = SetupDiOpenDevRegKey(set, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_QUERY_VALUE);
  if (key == INVALID_HANDLE_VALUE) return {};
  std::string text(256, '\0');
  DWORD size = static_cast<DWORD>(text.size());
  DWORD type = 0;
  const LONG status =
      RegQueryValueExA(key, "PortName", nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size);
  RegCloseKey(key);
  if (status != ERROR_SUCCESS || type != REG_SZ) return {};
  text.resize(std::min<std::size_t>(size, text.size()));
  return trimmed(std::move(text));
}

// Serial ports on a USB bus: the USB serial class and the vendor buses of
// the common adapter chips (FTDI's own enumerator).
bool on_usb(const std::string& enumerator) {
  return enumerator == "USB" || enumerator == "FTDIBUS" || enumerator == "USBSER";
}

void add_serial_adapters(std::vector<UsbConnection>& out) {
  std::vector<UsbConnection> found;
  for_each_interface(kSerialPortInterface, [&](HDEVINFO set, SP_DEVINFO_DATA& device, const std::string&) {
    if (!on_usb(registry_property(set, device, SPDRP_ENUMERATOR_NAME))) return;
    UsbConnection c;
    c.node = port_name(set, device);
    if (c.node.empty()) return;
    c.path = "\\\\.\\" + c.node;
    c.name = joined_name(registry_property(set, device, SPDRP_MFG), device_name(set, device));
    if (c.name.empty()) c.name = c.node;
    found.push_back(std::move(c));
  });
  std::sort(found.begin(), found.end(), by_node);
  out.insert(out.end(), found.begin(), found.end());
}

}  // namespace

std::vector<UsbConnection> enumerate(const std::string& /*root*/) { return enumerate(); }

std::vector<UsbConnection> enumerate() {
  std::vector<UsbConnection> out;
  add_printers(out);
  add_serial_adapters(out);
  return out;
}

}  // namespace kerfline::platform::usb
