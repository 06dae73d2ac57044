#include <atomic>

#include "platform/clock.hpp"
#include "platform/paths.hpp"
#include "platform/temp_file.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

Result<std::string> create_unique_file(std::string_view dir, std::string_view prefix,
                                       std::string_view suffix) {
  static std::atomic<std::uint64_t> counter{0};
  static constexpr char kAlphabet[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::uint64_t seed = (static_cast<std::uint64_t>(GetCurrentProcessId()) << 32) ^ file_time_now();
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::uint64_t x = seed + counter.fetch_add(1) * 0x9E3779B97F4A7C15ULL;
    std::string unique;
    for (int i = 0; i < 8; ++i) {
      unique.push_back(kAlphabet[x % 36]);
      x /= 36;
    }
    const std::string path = join_path(dir, std::string(prefix) + unique + std::string(suffix));
    // CREATE_NEW makes the choice and the creation one step.
    HANDLE h =
        CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h != INVALID_HANDLE_VALUE) {
      CloseHandle(h);
      return path;
    }
    const DWORD code = GetLastError();
    if (code != ERROR_FILE_EXISTS && code != ERROR_ALREADY_EXISTS) {
      return os_error(static_cast<int>(code), "create a unique file in " + std::string(dir));
    }
    seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
  }
  return os_error(ERROR_FILE_EXISTS, "create a unique file in " + std::string(dir));
}

}  // namespace kerfline::platform
