#include <string_view>

#include "platform/local_ports.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

std::vector<std::string> local_ports() {
  // The suite asked for 1024 bytes; a machine with many devices needs more,
  // so the buffer grows until the whole list fits.
  std::string buffer(1024, '\0');
  DWORD n = 0;
  for (;;) {
    n = ::QueryDosDeviceA(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (n != 0 || ::GetLastError() != ERROR_INSUFFICIENT_BUFFER || buffer.size() >= (1u << 24)) break;
    buffer.assign(buffer.size() * 2, '\0');
  }
  std::vector<std::string> ports;
  for (std::size_t at = 0; at < n && buffer[at] != '\0';) {
    const std::string_view name(buffer.data() + at);
    at += name.size() + 1;
    if (name.size() <= 4 &&
        (name.find("COM") != std::string_view::npos || name.find("LPT") != std::string_view::npos)) {
      ports.push_back(std::string(name) + ":");
    }
  }
  return ports;
}

}  // namespace kerfline::platform
