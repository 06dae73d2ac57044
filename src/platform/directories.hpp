// Directories the library makes and removes itself (spool directories), and
// directory listings. Nothing here follows a symbolic link where it creates
// or deletes: a directory the library owns that turns out to be a link is
// refused, so a planted link can never make the library write or delete
// outside the tree it named.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "platform/os_error.hpp"

namespace kerfline::platform {

// Creates the directory unless it exists. True when it was created, false
// when a real directory was already there; an error when the path is
// anything else, a symbolic link included (even one to a directory).
Result<bool> make_directory(const std::string& path);

// Creates an empty file unless something exists at the path. True when
// created, false when a regular file was there; a symbolic link at the path
// is an error and is not followed.
Result<bool> create_empty_file(const std::string& path);

// Removes the directory `path` with the files directly in it and, for each
// name in `subdirs`, that subdirectory with the files directly in it.
// Entries that are symbolic links are unlinked themselves (their targets are
// never touched); other subdirectories are left, and with them their parent.
// A link at `path` or at one of the subdirectories is not followed: the
// result is an error and nothing below it is removed. False when `path` did
// not exist.
Result<bool> remove_directory_files(const std::string& path, std::initializer_list<std::string_view> subdirs);

// The names in a directory (without "." and ".."), sorted; a link to a
// directory is listed like any entry. An error when it cannot be read.
Result<std::vector<std::string>> list_directory(const std::string& path);

// The first line of a small text file (at most max_bytes read), without its
// line end; nothing readable gives an error.
Result<std::string> read_first_line(const std::string& path, std::size_t max_bytes = 256);

}  // namespace kerfline::platform
