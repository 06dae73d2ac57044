// The link decision and the process-wide link state.
#include <mutex>

#include "devconfig/spool_dir.hpp"
#include "device/port_access.hpp"
#include "driver/vm6drv.hpp"
#include "frame/driver_handle.hpp"
#include "kerfline/device_settings.hpp"
#include "platform/clock.hpp"

namespace kerfline::device {
namespace {

struct Hooks {
  std::mutex mutex;
  SettingsReader settings;
  WaitFunction wait;
};

Hooks& hooks() {
  static Hooks h;
  return h;
}

// The device's settings record in "plotman.ini". Its one USB entry is both
// the name looked for among present devices and the path used when none
// carries that name.
PortSettings default_settings(const std::string& device) {
  CCutterDeviceSettings record(device.c_str());
  record.ReadFromIni(devconfig::device_list_file().c_str());
  PortSettings s;
  s.port_type = record.GetPortType();
  s.write_to = record.GetWriteTo() != nullptr ? record.GetWriteTo() : "";
  s.usb_device_name = record.GetUSBDeviceName() != nullptr ? record.GetUSBDeviceName() : "";
  s.usb_device_path = s.usb_device_name;
  s.ip_address = record.GetTCPIPAddress() != nullptr ? record.GetTCPIPAddress() : "";
  s.ip_port = record.GetTCPIPPort();
  return s;
}

}  // namespace

LinkState& link_state() {
  static LinkState state;
  return state;
}

void reset_link_state() { link_state() = LinkState{}; }

void set_settings_reader(SettingsReader reader) {
  std::lock_guard lock(hooks().mutex);
  hooks().settings = std::move(reader);
}

PortSettings read_port_settings(const std::string& device) {
  SettingsReader reader;
  {
    std::lock_guard lock(hooks().mutex);
    reader = hooks().settings;
  }
  return reader ? reader(device) : default_settings(device);
}

void set_wait_function(WaitFunction wait) {
  std::lock_guard lock(hooks().mutex);
  hooks().wait = std::move(wait);
}

void wait_ms(std::uint32_t ms) {
  WaitFunction wait;
  {
    std::lock_guard lock(hooks().mutex);
    wait = hooks().wait;
  }
  if (wait) {
    wait(ms);
  } else {
    platform::sleep_ms(ms);
  }
}

std::optional<std::string> driver_variable(const VMV6DRV* drv, const std::string& name) {
  driver::CVm6Drv* doc = frame::document_of(drv);
  if (doc == nullptr) return std::nullopt;
  const driver::CDrvItem* item = doc->FindItem(name);
  if (item == nullptr) return std::nullopt;
  return item->GetValue();
}

EDeviceLink DecideDeviceLink(const VMV6DRV* drv, const std::string& device, std::string& usb_device_name) {
  auto is = [&](const char* name, const char* value) {
    const auto v = driver_variable(drv, name);
    return v && *v == value;
  };
  auto port_type_is_usb = [&] { return read_port_settings(device).port_type == 4; };
  auto take_usb_name = [&] { usb_device_name = driver_variable(drv, "%RolandUSBDevName%").value_or(""); };

  EDeviceLink link = LinkPort;
  if (driver_variable(drv, "%RolandUSB%")) {
    const bool usb = port_type_is_usb();
    if (is("%RolandUSB%", "1") && usb) {
      link = LinkRdgUsb;
      take_usb_name();
    }
    if (is("%RolandUSB%", "2") && usb) {
      link = LinkSlotReader;
      take_usb_name();
    }
  } else if (driver_variable(drv, "%USBApi%")) {
    if (is("%USBApi%", "1") && port_type_is_usb()) link = LinkUsbApi;
    if (is("%USBApi%", "2") && port_type_is_usb()) link = LinkUsbPipeSingle;
    if (is("%USBApi%", "3") && port_type_is_usb()) link = LinkGraphtecUsb;
  } else if (is("%TCPIPApi%", "1")) {
    link = LinkTcpIp;
  }
  if (is("%OutFlag_4%", "1")) link_state().out_flag_4 = true;
  return link;
}

std::string resolve_usb_path(const std::vector<UsbEntry>& present, const std::string& stored_name,
                             const std::string& stored_path) {
  const UsbEntry* first_by_name = nullptr;
  for (const UsbEntry& entry : present) {
    if (entry.name != stored_name) continue;
    if (first_by_name == nullptr) first_by_name = &entry;
    if (entry.path == stored_path) return stored_path;
  }
  return first_by_name != nullptr ? first_by_name->path : stored_path;
}

void close_pair(Handle& read_handle, Handle& write_handle) {
  if (platform::port::is_open_handle(read_handle)) platform::port::close(read_handle);
  if (write_handle != read_handle && platform::port::is_open_handle(write_handle)) {
    platform::port::close(write_handle);
  }
  read_handle = platform::port::kInvalidHandle;
  write_handle = platform::port::kInvalidHandle;
}

}  // namespace kerfline::device
