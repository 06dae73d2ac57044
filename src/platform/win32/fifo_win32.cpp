// Windows named pipes are not FIFOs in the file system: not offered here.
#include "platform/fifo.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

Result<bool> make_fifo(const std::string& path) { return os_error(ERROR_NOT_SUPPORTED, "mkfifo " + path); }
Result<ByteStream> open_fifo_reader(const std::string& path) {
  return os_error(ERROR_NOT_SUPPORTED, "open " + path);
}
Result<ByteStream> open_fifo_writer(const std::string& path) {
  return os_error(ERROR_NOT_SUPPORTED, "open " + path);
}

}  // namespace kerfline::platform
