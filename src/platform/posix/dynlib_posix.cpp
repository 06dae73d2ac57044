#include <dlfcn.h>

#include "platform/codepage.hpp"
#include "platform/dynlib.hpp"
#include "platform/paths.hpp"

namespace kerfline::platform {

struct DynamicLibrary::Impl {
  void* handle = nullptr;
  std::string path;
  ~Impl() {
    if (handle != nullptr) dlclose(handle);
  }
};

std::vector<std::string> library_file_candidates(std::string_view windows_name) {
  std::string stem(windows_name);
  if (stem.size() > 4 && cp1252::equals_no_case(std::string_view(stem).substr(stem.size() - 4), ".dll")) {
    stem.resize(stem.size() - 4);
  }
  std::vector<std::string> names;
  auto add = [&names](const std::string& n) {
    for (const auto& have : names) {
      if (have == n) return;
    }
    names.push_back(n);
  };
  const std::string lower = cp1252::to_lower(stem);
  add(stem + ".so");
  add("lib" + stem + ".so");
  add(lower + ".so");
  add("lib" + lower + ".so");
  return names;
}

Result<DynamicLibrary> DynamicLibrary::open(std::string_view windows_name) {
  if (windows_name.empty()) return OsError{0, "empty library name"};

  std::vector<std::string> attempts;
  if (windows_name.find('/') != std::string_view::npos) {
    attempts.emplace_back(windows_name);
  } else {
    const auto names = library_file_candidates(windows_name);
    const std::string beside = library_dir();
    const std::string dir = home_dir();
    if (!beside.empty() && beside != dir) {
      for (const auto& n : names) attempts.push_back(join_path(beside, n));
    }
    for (const auto& n : names) attempts.push_back(join_path(dir, n));
    // Plug-ins installed with the library, wherever its prefix was moved.
    if (const std::string plugins = plugin_dir(); !plugins.empty()) {
      for (const auto& n : names) attempts.push_back(join_path(plugins, n));
    }
    for (const auto& n : names) attempts.push_back(n);  // default search path
  }

  std::string tried;
  for (const auto& candidate : attempts) {
    dlerror();
    void* handle = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle != nullptr) {
      auto impl = std::make_unique<Impl>();
      impl->handle = handle;
      impl->path = candidate;
      return DynamicLibrary(std::move(impl));
    }
    const char* why = dlerror();
    // A library that exists but fails to load says more than "not found".
    if (why != nullptr && candidate.find('/') != std::string::npos && path_exists(candidate)) {
      return OsError{0, why};
    }
    if (!tried.empty()) tried += ", ";
    tried += candidate;
  }
  return OsError{0, "cannot load " + std::string(windows_name) + " (tried " + tried + ")"};
}

DynamicLibrary::DynamicLibrary(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
DynamicLibrary::DynamicLibrary(DynamicLibrary&&) noexcept = default;
DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&&) noexcept = default;
DynamicLibrary::~DynamicLibrary() = default;

void* DynamicLibrary::symbol(const char* name) const {
  if (!impl_ || name == nullptr) return nullptr;
  return dlsym(impl_->handle, name);
}

void* DynamicLibrary::symbol_by_ordinal(std::uint16_t /*ordinal*/, const char* name_elsewhere) const {
  return symbol(name_elsewhere);
}

const std::string& DynamicLibrary::path() const { return impl_->path; }

}  // namespace kerfline::platform
