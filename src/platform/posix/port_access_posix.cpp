#include <unistd.h>

#include <cerrno>

#include "platform/os_error.hpp"
#include "platform/port_access.hpp"

namespace kerfline::platform {

PortAccess port_access(const std::string& path) {
  if (::access(path.c_str(), R_OK | W_OK) == 0) return {};
  const int code = errno;
  return {false, code == EACCES || code == EPERM, os_error(code, "").message};
}

}  // namespace kerfline::platform
