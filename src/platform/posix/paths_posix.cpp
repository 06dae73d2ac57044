#include <dirent.h>
#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <vector>

#include "platform/codepage.hpp"
#include "platform/paths.hpp"

namespace kerfline::platform {

char path_separator() { return '/'; }

std::string executable_path() {
  std::vector<char> buf(4096);
  const ssize_t n = readlink("/proc/self/exe", buf.data(), buf.size() - 1);
  return n <= 0 ? std::string() : std::string(buf.data(), static_cast<std::size_t>(n));
}

std::string executable_dir() {
  const std::string path = executable_path();
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

std::string library_dir() {
  // Any address inside this file names the object it was linked into. The
  // program itself has an empty name in its link map (dladdr would give
  // argv[0], which may be relative).
  Dl_info info{};
  link_map* map = nullptr;
  if (dladdr1(reinterpret_cast<void*>(&library_dir), &info, reinterpret_cast<void**>(&map),
              RTLD_DL_LINKMAP) == 0 ||
      map == nullptr || map->l_name == nullptr || map->l_name[0] == '\0') {
    return executable_dir();
  }
  std::string path(map->l_name);
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return executable_dir();
  return path.substr(0, slash + 1);
}

bool path_exists(const std::string& path) {
  struct stat st {};
  return !path.empty() && stat(path.c_str(), &st) == 0;
}

bool is_directory(const std::string& path) {
  struct stat st {};
  return !path.empty() && stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

namespace {

// The entry of `dir` whose name equals `name` ignoring case, if any. When
// several differ only in case, the first the directory lists is taken.
std::optional<std::string> find_entry_no_case(const std::string& dir, const std::string& name) {
  std::unique_ptr<DIR, int (*)(DIR*)> handle(opendir(dir.empty() ? "." : dir.c_str()), closedir);
  if (!handle) return std::nullopt;
  while (const dirent* entry = readdir(handle.get())) {
    if (cp1252::equals_no_case(entry->d_name, name)) return std::string(entry->d_name);
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> resolve_case_insensitive(std::string_view path_in) {
  const std::string path = native_separators(path_in);
  if (path.empty()) return std::nullopt;
  if (path_exists(path)) return path;

  std::string resolved = path.front() == '/' ? "/" : "";
  std::size_t pos = path.front() == '/' ? 1 : 0;
  while (pos <= path.size()) {
    std::size_t next = path.find('/', pos);
    if (next == std::string::npos) next = path.size();
    const std::string part = path.substr(pos, next - pos);
    pos = next + 1;
    if (part.empty()) continue;  // doubled separators
    std::string candidate = resolved + part;
    if (part != "." && part != ".." && !path_exists(candidate)) {
      const auto found = find_entry_no_case(resolved, part);
      if (!found) return std::nullopt;
      candidate = resolved + *found;
    }
    resolved = candidate;
    if (next < path.size()) resolved.push_back('/');
  }
  if (!path_exists(resolved)) return std::nullopt;
  return resolved;
}

}  // namespace kerfline::platform
