// The USB devices present now: printer-class devices and USB serial
// adapters, each with a friendly name and the path to open.
//
// On POSIX the list comes from sysfs: /sys/class/usbmisc/lp* (path
// /dev/usb/lpN) and /sys/class/tty/ttyUSB*, ttyACM* (path: the stable
// /dev/serial/by-id/ name when one points at the device, else /dev/ttyXXXN).
// Every path is taken below the system root: "/" unless the environment
// variable KERFLINE_SYSTEM_ROOT names another (tests build a fake tree).
// Attribute files are read bounded; a broken entry is skipped, never fatal.
//
// On Windows the list comes from SetupAPI: present USB printer-class
// interfaces (path: the interface's device path; name from the IEEE-1284 id,
// else as Device Manager shows it; node: the device instance id) and present
// serial ports on a USB bus (path \\.\COMn; node COMn). There is no other
// root there: enumerate(root) lists the system's devices.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kerfline::platform::usb {

struct UsbConnection {
  std::string name;         // "Manufacturer Product", else from the IEEE-1284 id, else the node name
  std::string path;         // what to open
  std::string node;         // the kernel name: lp0, ttyUSB0
  std::string ieee1284_id;  // printer class only
};

// Present devices, printers first, each class in node-name order.
std::vector<UsbConnection> enumerate();

// The same below an explicit root ("" is "/").
std::vector<UsbConnection> enumerate(const std::string& root);

// "MFG:Graphtec;MDL:CE6000-60;CMD:HPGL;": the value of a key (also matched
// by its long form: MANUFACTURER, MODEL, COMMAND SET), "" when absent.
std::string ieee1284_field(std::string_view id, std::string_view key);

}  // namespace kerfline::platform::usb
