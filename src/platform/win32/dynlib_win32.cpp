#include "platform/dynlib.hpp"
#include "platform/paths.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

struct DynamicLibrary::Impl {
  win32::UniqueModule module;
  std::string path;
};

std::vector<std::string> library_file_candidates(std::string_view windows_name) {
  return {std::string(windows_name)};
}

Result<DynamicLibrary> DynamicLibrary::open(std::string_view windows_name) {
  if (windows_name.empty()) return OsError{0, "empty library name"};
  std::vector<std::string> attempts;
  if (windows_name.find_first_of("\\/") != std::string_view::npos) {
    attempts.push_back(native_separators(windows_name));
  } else {
    // Beside this library first (its plug-ins), then the suite directory, the
    // installed plug-ins, and last the system's own search order.
    const std::string beside = library_dir();
    const std::string dir = home_dir();
    if (!beside.empty() && beside != dir) attempts.push_back(join_path(beside, windows_name));
    attempts.push_back(join_path(dir, windows_name));
    if (const std::string plugins = plugin_dir(); !plugins.empty()) {
      attempts.push_back(join_path(plugins, windows_name));
    }
    attempts.emplace_back(windows_name);
  }
  // A missing vendor library must not make Windows ask the user for a disk.
  const UINT old_mode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  std::string tried;
  OsError failure{0, {}};
  for (const auto& candidate : attempts) {
    HMODULE handle = LoadLibraryA(candidate.c_str());
    if (handle != nullptr) {
      SetErrorMode(old_mode);
      auto impl = std::make_unique<Impl>();
      impl->module = win32::UniqueModule(handle);
      impl->path = resolve_case_insensitive(candidate).value_or(candidate);
      return DynamicLibrary(std::move(impl));
    }
    const DWORD code = GetLastError();
    // A library that exists but fails to load says more than "not found".
    if (candidate.find_first_of("\\/") != std::string::npos && path_exists(candidate) &&
        code != ERROR_MOD_NOT_FOUND) {
      SetErrorMode(old_mode);
      return os_error(static_cast<int>(code), "load " + candidate);
    }
    if (!tried.empty()) tried += ", ";
    tried += candidate;
  }
  SetErrorMode(old_mode);
  return OsError{ERROR_MOD_NOT_FOUND, "cannot load " + std::string(windows_name) + " (tried " + tried + ")"};
}

DynamicLibrary::DynamicLibrary(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
DynamicLibrary::DynamicLibrary(DynamicLibrary&&) noexcept = default;
DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&&) noexcept = default;
DynamicLibrary::~DynamicLibrary() = default;

void* DynamicLibrary::symbol(const char* name) const {
  if (!impl_ || name == nullptr) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(impl_->module.get(), name));
}

void* DynamicLibrary::symbol_by_ordinal(std::uint16_t ordinal, const char* /*name_elsewhere*/) const {
  if (!impl_ || ordinal == 0) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(impl_->module.get(), MAKEINTRESOURCEA(ordinal)));
}

const std::string& DynamicLibrary::path() const { return impl_->path; }

}  // namespace kerfline::platform
