// Suite paths: where the suite lives and how paths are formed on this OS.
//
// The suite directory is what Windows code calls "the directory of the host
// executable": it holds plotman.ini, Res/, Lang/ and the spool directories.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kerfline::platform {

// The path separator of this OS ('/' or '\\').
char path_separator();

// The suite directory, always ending in the separator. Taken from, in order:
// the override set with set_home_dir, the environment variable KERFLINE_HOME,
// the directory of the running executable.
std::string home_dir();

// Sets (non-empty) or clears (empty) the override.
void set_home_dir(std::string_view dir);

// Counts changes of the suite directory; code that caches paths derived from
// it compares the generation it saw with this one.
std::uint64_t home_dir_generation();

// Joins two path parts with exactly one separator between them. An empty
// part yields the other one unchanged; an absolute second part is not
// special (the Windows code always appended).
std::string join_path(std::string_view base, std::string_view leaf);

// Turns every '\\' and '/' into this OS's separator, so paths written the
// Windows way ("Lang\\lang.ini") work everywhere.
std::string native_separators(std::string_view path);

// The full path of the running executable; empty when it cannot be had.
std::string executable_path();

// The directory of the running executable, ending in the separator.
std::string executable_dir();

// The directory of the file that holds the library's code: the shared
// library, or the program it is linked into. Ends in the separator.
std::string library_dir();

// The installed default files ("share/kerfline/" of the prefix the library
// lies in), ending in the separator; empty when there is no such directory.
// Found relative to library_dir(), so a moved prefix keeps working.
std::string data_dir();

// The installed plug-ins ("lib/kerfline/plugins/" of the same prefix), ending
// in the separator; empty when there is no such directory.
std::string plugin_dir();

namespace testing {
// Replaces (non-empty) or restores (empty) what data_dir() finds.
void set_data_dir(std::string_view dir);
}  // namespace testing

// True when a file or directory exists at the path (no open, no read).
bool path_exists(const std::string& path);
bool is_directory(const std::string& path);

// Finds an existing file or directory whose path equals `path` without regard
// to case, component by component: an exact component is taken as it is, an
// absent one is looked up in its parent directory ignoring 1252 case. Returns
// the path as it exists on disk, or nothing when no such path exists.
std::optional<std::string> resolve_case_insensitive(std::string_view path);

}  // namespace kerfline::platform
