// Windows lists USB devices through SetupAPI device interfaces; that
// enumeration is not written yet, so no device is reported and a stored
// device path is used as it is.
#include "platform/usb_devices.hpp"

namespace kerfline::platform::usb {

std::vector<UsbConnection> enumerate(const std::string& /*root*/) { return {}; }

std::vector<UsbConnection> enumerate() { return {}; }

}  // namespace kerfline::platform::usb
