#include "platform/port_access.hpp"

namespace kerfline::platform {

PortAccess port_access(const std::string& /*path*/) { return {}; }

}  // namespace kerfline::platform
