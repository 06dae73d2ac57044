// Dynamic libraries: the vendor and plug-in DLLs of the suite, loaded by the
// name Windows code uses ("ocv.dll"). On POSIX "name.dll" is looked for as
// name.so and libname.so (as given, then in lower case) beside the library
// itself (library_dir() in paths.hpp), then in the suite directory, then in the installed
// plug-in directory (plugin_dir()), then on the default search path: a host
// whose suite directory is elsewhere still finds the plug-ins installed with
// the library. A name with a separator in it
// is a path and is opened as it is.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/os_error.hpp"

namespace kerfline::platform {

class DynamicLibrary {
 public:
  // Loads the library; the error names every place that was tried.
  static Result<DynamicLibrary> open(std::string_view windows_name);

  DynamicLibrary(DynamicLibrary&&) noexcept;
  DynamicLibrary& operator=(DynamicLibrary&&) noexcept;
  ~DynamicLibrary();  // unloads

  // The address of an exported symbol, or null.
  [[nodiscard]] void* symbol(const char* name) const;

  // An export by its ordinal number, as vendor libraries that publish no
  // names are imported on Windows. Elsewhere libraries have no ordinals and
  // the symbol is looked up by name_elsewhere, the name the replacement
  // library documents for it. Null when there is none.
  [[nodiscard]] void* symbol_by_ordinal(std::uint16_t ordinal, const char* name_elsewhere) const;

  // A typed symbol lookup: auto f = lib.function<int(int)>("Name").
  template <typename Signature>
  [[nodiscard]] Signature* function(const char* name) const {
    return reinterpret_cast<Signature*>(symbol(name));  // NOLINT
  }

  // Where the library was found.
  [[nodiscard]] const std::string& path() const;

 private:
  struct Impl;
  explicit DynamicLibrary(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

// The file names tried for a Windows library name, in order (without the
// directory). Exposed for tests and for messages.
std::vector<std::string> library_file_candidates(std::string_view windows_name);

}  // namespace kerfline::platform
