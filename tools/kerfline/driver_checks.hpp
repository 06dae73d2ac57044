// What a host would stumble over in a driver that loads: a base driver that
// is not there, text numbers the library does not know, values that do not
// fit their type or range.
#pragma once

#include <string>
#include <vector>

#include "kerfline/kerfline.h"

namespace kerfline::cli {

// One line per finding, for the terminal (UTF-8).
std::vector<std::string> driver_warnings(VMV6DRV* drv, const std::string& file);

}  // namespace kerfline::cli
