#include "port_hint.hpp"

#include <cstdio>

#include "platform/port_access.hpp"

namespace kerfline::cli {

bool print_port_hint(const std::string& path) {
  const platform::PortAccess access = platform::port_access(path);
  if (!access.permission_denied) return false;
  std::fprintf(stderr,
               "  %s: %s. Install the udev rules share/kerfline/udev/70-kerfline.rules (to\n"
               "  /etc/udev/rules.d/, then reconnect the device) or add yourself to the group of the\n"
               "  device, usually dialout: sudo usermod -aG dialout $USER (log in again afterwards).\n",
               path.c_str(), access.reason.c_str());
  return true;
}

}  // namespace kerfline::cli
