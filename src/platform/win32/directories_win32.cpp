#include <algorithm>

#include "platform/directories.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

namespace {

constexpr DWORD kNoAttributes = INVALID_FILE_ATTRIBUTES;

bool is_link(DWORD attributes) { return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0; }

struct FindCloser {
  HANDLE h;
  ~FindCloser() {
    if (h != INVALID_HANDLE_VALUE) ::FindClose(h);
  }
};

// The entries of a directory with their attributes.
Result<std::vector<std::pair<std::string, DWORD>>> entries(const std::string& path) {
  WIN32_FIND_DATAA data{};
  FindCloser find{::FindFirstFileA((path + "\\*").c_str(), &data)};
  std::vector<std::pair<std::string, DWORD>> out;
  if (find.h == INVALID_HANDLE_VALUE) {
    const DWORD err = ::GetLastError();
    if (err == ERROR_FILE_NOT_FOUND) return out;
    return os_error(static_cast<int>(err), "list " + path);
  }
  do {
    const std::string name = data.cFileName;
    if (name != "." && name != "..") out.emplace_back(name, data.dwFileAttributes);
  } while (::FindNextFileA(find.h, &data));
  return out;
}

// Deletes the non-directory entries and the links among the directories.
Result<bool> unlink_files(const std::string& path) {
  auto list = entries(path);
  if (!list) return list.error();
  for (const auto& [name, attributes] : list.value()) {
    std::string full = path;
    full.append("\\").append(name);
    const bool dir = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (dir && !is_link(attributes)) continue;
    // A directory link (junction) goes with RemoveDirectory, which leaves its target alone.
    const BOOL ok = dir ? ::RemoveDirectoryA(full.c_str()) : ::DeleteFileA(full.c_str());
    if (!ok && ::GetLastError() != ERROR_FILE_NOT_FOUND) {
      return os_error(static_cast<int>(::GetLastError()), "delete " + full);
    }
  }
  return true;
}

}  // namespace

Result<bool> make_directory(const std::string& path) {
  if (::CreateDirectoryA(path.c_str(), nullptr)) return true;
  const DWORD err = ::GetLastError();
  const DWORD attributes = ::GetFileAttributesA(path.c_str());
  if (err == ERROR_ALREADY_EXISTS && attributes != kNoAttributes) {
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && !is_link(attributes)) return false;
    return os_error(ERROR_CANT_ACCESS_FILE, "mkdir " + path);
  }
  return os_error(static_cast<int>(err), "mkdir " + path);
}

Result<bool> create_empty_file(const std::string& path) {
  win32::UniqueHandle file(::CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                         FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (file.valid()) return true;
  const DWORD err = ::GetLastError();
  const DWORD attributes = ::GetFileAttributesA(path.c_str());
  if (err == ERROR_FILE_EXISTS && attributes != kNoAttributes) {
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && !is_link(attributes)) return false;
    return os_error(ERROR_CANT_ACCESS_FILE, "create " + path);
  }
  return os_error(static_cast<int>(err), "create " + path);
}

Result<bool> remove_directory_files(const std::string& path,
                                    std::initializer_list<std::string_view> subdirs) {
  const DWORD top = ::GetFileAttributesA(path.c_str());
  if (top == kNoAttributes) return false;
  if ((top & FILE_ATTRIBUTE_DIRECTORY) == 0 || is_link(top))
    return os_error(ERROR_CANT_ACCESS_FILE, "open " + path);
  for (const auto sub : subdirs) {
    const std::string full = path + "\\" + std::string(sub);
    const DWORD attributes = ::GetFileAttributesA(full.c_str());
    if (attributes == kNoAttributes) continue;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 || is_link(attributes)) {
      return os_error(ERROR_CANT_ACCESS_FILE, "open " + full);
    }
    if (auto r = unlink_files(full); !r) return r;
    if (!::RemoveDirectoryA(full.c_str()))
      return os_error(static_cast<int>(::GetLastError()), "rmdir " + full);
  }
  if (auto r = unlink_files(path); !r) return r;
  if (!::RemoveDirectoryA(path.c_str())) return os_error(static_cast<int>(::GetLastError()), "rmdir " + path);
  return true;
}

Result<std::vector<std::string>> list_directory(const std::string& path) {
  auto list = entries(path);
  if (!list) return list.error();
  std::vector<std::string> names;
  for (auto& e : list.value()) names.push_back(std::move(e.first));
  std::sort(names.begin(), names.end());
  return names;
}

Result<std::string> read_first_line(const std::string& path, std::size_t max_bytes) {
  win32::UniqueHandle file(::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                         nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.valid()) return os_error(static_cast<int>(::GetLastError()), "open " + path);
  std::string text(max_bytes, '\0');
  DWORD got = 0;
  if (!::ReadFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &got, nullptr)) {
    return os_error(static_cast<int>(::GetLastError()), "read " + path);
  }
  text.resize(got);
  if (const auto end = text.find_first_of("\r\n"); end != std::string::npos) text.resize(end);
  return text;
}

}  // namespace kerfline::platform
