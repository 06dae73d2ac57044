#include "platform/binary_file.hpp"

#include "platform/file_io.hpp"

namespace kerfline::platform {

// Driver files are replaced the way INI files are: one safe mechanism.
Result<bool> replace_binary_file(const std::string& path, std::string_view bytes) {
  auto written = file_io::replace_atomically(path, bytes);
  if (!written) return written.error();
  return true;
}

}  // namespace kerfline::platform
