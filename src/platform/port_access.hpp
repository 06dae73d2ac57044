// Whether this user may use a port's device node, asked without opening it
// (opening a serial port can toggle its modem lines).
#pragma once

#include <string>

namespace kerfline::platform {

struct PortAccess {
  bool usable = true;
  bool permission_denied = false;  // the node exists but this user may not open it
  std::string reason;              // the system's text when not usable
};

// POSIX: read and write permission on the path. Windows: ports are opened by
// name and the system decides at open time, so every port counts as usable.
PortAccess port_access(const std::string& path);

}  // namespace kerfline::platform
