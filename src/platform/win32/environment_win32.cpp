#include <stdlib.h>

#include "platform/environment.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

// Both copies: the run-time's for getenv, the system's for child processes.
void set_environment(const std::string& name, const std::string& value) {
  _putenv_s(name.c_str(), value.c_str());
  SetEnvironmentVariableA(name.c_str(), value.empty() ? nullptr : value.c_str());
}

void unset_environment(const std::string& name) {
  _putenv_s(name.c_str(), "");
  SetEnvironmentVariableA(name.c_str(), nullptr);
}

}  // namespace kerfline::platform
