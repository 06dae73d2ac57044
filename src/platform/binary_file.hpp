// Whole-file reads and safe whole-file replacement for binary files (driver
// files). Failures carry the system's error code and text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/os_error.hpp"

namespace kerfline::platform {

// Reads the whole file; others may read it at the same time.
Result<std::string> read_binary_file(const std::string& path);

// Reads at most max_bytes from the start of the file (all of a shorter file).
Result<std::string> read_binary_file_head(const std::string& path, std::size_t max_bytes);

// Replaces the file with `bytes`: they go to a new file beside it, which is
// flushed to disk and then renamed over the old one, so a failure at any
// point leaves the old file as it was. An existing file keeps its
// permissions.
Result<bool> replace_binary_file(const std::string& path, std::string_view bytes);

}  // namespace kerfline::platform
