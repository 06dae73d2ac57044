// Unique files: a new file whose name nobody else can take between choosing
// the name and creating the file (the choice and the creation are one step).
#pragma once

#include <string>
#include <string_view>

#include "platform/os_error.hpp"

namespace kerfline::platform {

// Creates a new, empty file named dir + prefix + <unique part> + suffix and
// returns its path. The unique part is made of letters and digits. Fails when
// the directory does not exist or is not writable.
Result<std::string> create_unique_file(std::string_view dir, std::string_view prefix,
                                       std::string_view suffix);

}  // namespace kerfline::platform
