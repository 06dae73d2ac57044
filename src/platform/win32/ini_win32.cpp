// The profile functions on Windows are the system's own: the suite's other
// programs read and write the same files through them, and only they know
// the system's caching of those files (and any mapping to the registry).
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "platform/ini.hpp"
#include "platform/paths.hpp"
#include "platform/text_trim.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform::ini {
namespace {

// Large enough for any real file; a bound so hostile data cannot make the
// buffer loops below grow without end.
constexpr std::uint32_t kMaxBuffer = 16U << 20;

std::string z(std::string_view text) { return std::string(text); }

// Reads with a buffer that grows until the answer fits. A list is cut at
// size - 2, a single value at size - 1.
template <typename Call>
std::string read_growing(Call call, bool list) {
  std::vector<char> buf(1024);
  for (;;) {
    const auto size = static_cast<DWORD>(buf.size());
    const DWORD n = call(buf.data(), size);
    const DWORD cut = list ? size - 2 : size - 1;
    if (n < cut || buf.size() >= kMaxBuffer) {
      return list ? std::string(buf.data(), n + (n > 0 ? 1 : 0)) : std::string(buf.data(), n);
    }
    buf.resize(buf.size() * 4);
  }
}

// "a\0b\0" into its parts.
std::vector<std::string> split_list(const std::string& list) {
  std::vector<std::string> out;
  for (std::size_t pos = 0; pos < list.size();) {
    const std::size_t end = list.find('\0', pos);
    const std::size_t stop = end == std::string::npos ? list.size() : end;
    if (stop > pos) out.push_back(list.substr(pos, stop - pos));
    pos = stop + 1;
  }
  return out;
}

std::string trim_default(std::string_view text) { return std::string(trim_right(text, " \t")); }

// The system's profile writes read, change and rewrite the whole file with no
// lock between processes, so two of the library's processes writing one file
// at once lose each other's changes. A named mutex per file serialises them.
// Its name holds a hash of the full path in lower case (a mutex name may not
// hold a backslash, and the file system ignores case).
constexpr DWORD kWriteLockWaitMs = 10000;

std::string write_lock_name(const std::string& path) {
  std::string full(MAX_PATH, '\0');
  const DWORD n = GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  full.resize(n > 0 && n < full.size() ? n : 0);
  if (full.empty()) full = path;
  std::uint64_t hash = 14695981039346656037ULL;  // FNV-1a
  for (const char c : full) {
    hash ^= static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    hash *= 1099511628211ULL;
  }
  char name[48];
  std::snprintf(name, sizeof name, "Local\\kerfline-ini-%016llx", static_cast<unsigned long long>(hash));
  return name;
}

class WriteLock {
 public:
  explicit WriteLock(const std::string& path)
      : mutex_(CreateMutexA(nullptr, FALSE, write_lock_name(path).c_str())) {
    if (!mutex_.valid()) return;
    // An abandoned mutex: a writer ended while holding it; the file is as
    // the system left it, and the lock is now ours.
    const DWORD r = WaitForSingleObject(mutex_.get(), kWriteLockWaitMs);
    held_ = r == WAIT_OBJECT_0 || r == WAIT_ABANDONED;
  }
  ~WriteLock() {
    if (held_) ReleaseMutex(mutex_.get());
  }
  WriteLock(const WriteLock&) = delete;
  WriteLock& operator=(const WriteLock&) = delete;
  // False when no mutex could be made or another writer held it too long:
  // the write is then refused rather than risk losing someone's change.
  [[nodiscard]] bool held() const { return held_; }

 private:
  win32::UniqueHandle mutex_;
  bool held_ = false;
};

}  // namespace

std::string resolve_file(const std::string& file) {
  if (file.empty()) return {};
  // A bare name would send the system to the Windows directory.
  std::string path =
      file.find_first_of("/\\") == std::string::npos ? join_path(home_dir(), file) : native_separators(file);
  if (auto on_disk = resolve_case_insensitive(path)) return std::move(*on_disk);
  return path;
}

std::uint32_t get_string(const char* section, const char* key, const char* default_value, char* buffer,
                         std::uint32_t size, const std::string& file) {
  if (buffer == nullptr || size == 0) return 0;
  return GetPrivateProfileStringA(section, key, default_value, buffer, size, resolve_file(file).c_str());
}

std::uint32_t get_int(const char* section, const char* key, std::int32_t default_value,
                      const std::string& file) {
  return GetPrivateProfileIntA(section, key, default_value, resolve_file(file).c_str());
}

std::uint32_t get_section(const char* section, char* buffer, std::uint32_t size, const std::string& file) {
  if (buffer == nullptr || size == 0) return 0;
  if (section == nullptr) {
    // The system has no meaning for it (Wine crashes): an empty list.
    buffer[0] = '\0';
    if (size >= 2) buffer[1] = '\0';
    return 0;
  }
  return GetPrivateProfileSectionA(section, buffer, size, resolve_file(file).c_str());
}

std::uint32_t get_section_names(char* buffer, std::uint32_t size, const std::string& file) {
  if (buffer == nullptr || size == 0) return 0;
  return GetPrivateProfileSectionNamesA(buffer, size, resolve_file(file).c_str());
}

bool write_string(const char* section, const char* key, const char* value, const std::string& file) {
  if (section == nullptr || file.empty()) return false;
  const std::string path = resolve_file(file);
  const WriteLock lock(path);
  return lock.held() && WritePrivateProfileStringA(section, key, value, path.c_str()) != 0;
}

bool write_section(const char* section, const char* data, const std::string& file) {
  if (section == nullptr || file.empty()) return false;
  const std::string path = resolve_file(file);
  const WriteLock lock(path);
  return lock.held() && WritePrivateProfileSectionA(section, data, path.c_str()) != 0;
}

std::string read_string(std::string_view section, std::string_view key, std::string_view default_value,
                        const std::string& file) {
  if (auto value = find_string(section, key, file)) return std::move(*value);
  return trim_default(default_value);
}

std::optional<std::string> find_string(std::string_view section, std::string_view key,
                                       const std::string& file) {
  if (file.empty()) return std::nullopt;
  const std::string path = resolve_file(file);
  const std::string s = z(section);
  const std::string k = z(key);
  auto read_with = [&](const char* fallback) {
    return read_growing(
        [&](char* buf, DWORD size) {
          return GetPrivateProfileStringA(s.c_str(), k.c_str(), fallback, buf, size, path.c_str());
        },
        false);
  };
  // A missing key gives back the default: two different defaults tell a
  // missing key from one whose value happens to equal a default.
  std::string first = read_with("\x01");
  if (first != "\x01") return first;
  std::string second = read_with("\x02");
  if (second != "\x02") return second;
  return std::nullopt;
}

std::int32_t read_int(std::string_view section, std::string_view key, std::int32_t default_value,
                      const std::string& file) {
  return static_cast<std::int32_t>(get_int(z(section).c_str(), z(key).c_str(), default_value, file));
}

std::vector<std::string> read_section_names(const std::string& file) {
  if (file.empty()) return {};
  const std::string path = resolve_file(file);
  return split_list(read_growing(
      [&](char* buf, DWORD size) { return GetPrivateProfileSectionNamesA(buf, size, path.c_str()); }, true));
}

std::vector<std::string> read_key_names(std::string_view section, const std::string& file) {
  if (file.empty()) return {};
  const std::string path = resolve_file(file);
  const std::string s = z(section);
  return split_list(read_growing(
      [&](char* buf, DWORD size) {
        return GetPrivateProfileStringA(s.c_str(), nullptr, "", buf, size, path.c_str());
      },
      true));
}

std::vector<std::string> read_section(std::string_view section, const std::string& file) {
  if (file.empty()) return {};
  const std::string path = resolve_file(file);
  const std::string s = z(section);
  return split_list(read_growing(
      [&](char* buf, DWORD size) { return GetPrivateProfileSectionA(s.c_str(), buf, size, path.c_str()); },
      true));
}

bool write_value(std::string_view section, std::string_view key, std::string_view value,
                 const std::string& file) {
  return write_string(z(section).c_str(), z(key).c_str(), z(value).c_str(), file);
}

bool delete_key(std::string_view section, std::string_view key, const std::string& file) {
  return write_string(z(section).c_str(), z(key).c_str(), nullptr, file);
}

bool delete_section(std::string_view section, const std::string& file) {
  return write_string(z(section).c_str(), nullptr, nullptr, file);
}

bool uses_system_engine() { return true; }

CacheStats cache_stats() { return {}; }

void clear_cache() {
  // Makes the system drop its cached copy of every profile file.
  WritePrivateProfileStringA(nullptr, nullptr, nullptr, nullptr);
}

}  // namespace kerfline::platform::ini
