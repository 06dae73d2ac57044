// The process environment, changed the way the C run-time's getenv sees it
// (on Windows the run-time keeps its own copy beside the system's).
#pragma once

#include <string>

namespace kerfline::platform {

// Sets the variable (an empty value is a value on POSIX; Windows removes the
// variable instead, as its run-time does).
void set_environment(const std::string& name, const std::string& value);

void unset_environment(const std::string& name);

}  // namespace kerfline::platform
