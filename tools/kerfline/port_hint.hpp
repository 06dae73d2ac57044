// The most common question about ports: the device is there, but this user
// may not open it.
#pragma once

#include <string>

namespace kerfline::cli {

// When the port exists but this user may not open it, prints (to stderr) why
// and what gives access, and answers true.
bool print_port_hint(const std::string& path);

}  // namespace kerfline::cli
