#include <vector>

#include "platform/codepage.hpp"
#include "platform/paths.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

char path_separator() { return '\\'; }

namespace {

// The path of a loaded module's file; empty when the name cannot be had.
// Long paths are at most 32767 characters.
std::string module_path(HMODULE module) {
  std::vector<char> buf(MAX_PATH);
  for (;;) {
    const DWORD n = GetModuleFileNameA(module, buf.data(), static_cast<DWORD>(buf.size()));
    if (n == 0) return {};
    if (n < buf.size()) return {buf.data(), n};
    if (buf.size() >= 32768) return {};
    buf.resize(buf.size() * 2);
  }
}

// The directory of a loaded module's file, ending in the separator; empty when
// the name cannot be had.
std::string module_dir(HMODULE module) {
  const std::string path = module_path(module);
  const std::size_t sep = path.find_last_of("\\/");
  return sep == std::string::npos ? std::string() : path.substr(0, sep + 1);
}

}  // namespace

std::string executable_path() { return module_path(nullptr); }

// The host executable's directory (GetModuleFileName of the process, not of
// this DLL: the suite's files live beside the program).
std::string executable_dir() {
  std::string dir = module_dir(nullptr);
  return dir.empty() ? ".\\" : dir;
}

// The module that holds this function: kerfline.dll, or the program when the
// library is linked in statically. No reference is taken, so nothing to free.
std::string library_dir() {
  HMODULE self = nullptr;
  if (GetModuleHandleExA(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          reinterpret_cast<LPCSTR>(&library_dir), &self) == 0) {
    return executable_dir();
  }
  std::string dir = module_dir(self);
  return dir.empty() ? executable_dir() : dir;
}

bool path_exists(const std::string& path) {
  return !path.empty() && GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool is_directory(const std::string& path) {
  if (path.empty()) return false;
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The file system ignores case already; what is left is giving back the
// spelling the disk has, component by component, as the POSIX side does.
std::optional<std::string> resolve_case_insensitive(std::string_view path_in) {
  const std::string path = native_separators(path_in);
  if (!path_exists(path)) return std::nullopt;
  // The root ("C:\", "\\server\share\", "\") keeps its spelling.
  std::size_t pos = 0;
  if (path.size() >= 2 && path[1] == ':') pos = 2;
  if (path.compare(0, 2, "\\\\") == 0) {
    const std::size_t server_end = path.find('\\', 2);
    const std::size_t share_end =
        server_end == std::string::npos ? server_end : path.find('\\', server_end + 1);
    pos = share_end == std::string::npos ? path.size() : share_end;
  }
  std::string resolved = path.substr(0, pos);
  while (pos < path.size()) {
    if (path[pos] == '\\') {
      if (resolved.empty() || resolved.back() != '\\') resolved.push_back('\\');
      ++pos;
      continue;
    }
    std::size_t next = path.find('\\', pos);
    if (next == std::string::npos) next = path.size();
    const std::string part = path.substr(pos, next - pos);
    pos = next;
    std::string spelled = part;
    if (part != "." && part != "..") {
      WIN32_FIND_DATAA found{};
      HANDLE h = FindFirstFileA((resolved + part).c_str(), &found);
      if (h == INVALID_HANDLE_VALUE) return std::nullopt;
      FindClose(h);
      spelled = found.cFileName;
    }
    resolved += spelled;
  }
  return resolved;
}

}  // namespace kerfline::platform
