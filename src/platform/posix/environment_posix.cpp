#include <stdlib.h>

#include "platform/environment.hpp"

namespace kerfline::platform {

void set_environment(const std::string& name, const std::string& value) {
  ::setenv(name.c_str(), value.c_str(), 1);
}

void unset_environment(const std::string& name) { ::unsetenv(name.c_str()); }

}  // namespace kerfline::platform
