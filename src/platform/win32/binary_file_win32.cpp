#include <algorithm>
#include <limits>

#include "platform/binary_file.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

Result<std::string> read_binary_file(const std::string& path) {
  return read_binary_file_head(path, std::numeric_limits<std::size_t>::max());
}

Result<std::string> read_binary_file_head(const std::string& path, std::size_t max_bytes) {
  win32::UniqueHandle h(CreateFileA(path.c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!h.valid()) return win32::last_error("open " + path);
  std::string out;
  LARGE_INTEGER size{};
  if (GetFileSizeEx(h.get(), &size) && size.QuadPart > 0) {
    out.reserve(std::min(static_cast<std::size_t>(size.QuadPart), max_bytes));
  }
  char buf[65536];
  while (out.size() < max_bytes) {
    const auto want = static_cast<DWORD>(std::min(sizeof(buf), max_bytes - out.size()));
    DWORD n = 0;
    if (!ReadFile(h.get(), buf, want, &n, nullptr)) return win32::last_error("read " + path);
    if (n == 0) break;
    out.append(buf, n);
  }
  return out;
}

}  // namespace kerfline::platform
