// The serial and parallel ports this machine really has, as names a user
// can type into a device's port field.
#pragma once

#include <string>
#include <vector>

namespace kerfline::platform {

// POSIX: device paths found through sysfs, in this order: /dev/ttyS<N> whose
// "type" attribute names a UART (not 0), /dev/ttyUSB<N>, /dev/ttyACM<N> (all
// from class/tty), /dev/lp<N> (class/printer), /dev/usb/lp<N>
// (class/usbmisc); numbers ascending within each kind. The environment
// variable KERFLINE_SYSFS_ROOT replaces "/sys", so tests can build a tree.
// Windows: the MS-DOS device names holding "COM" or "LPT" of at most four
// characters, each with ':' appended.
std::vector<std::string> local_ports();

}  // namespace kerfline::platform
