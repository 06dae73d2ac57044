// Names and descriptions of the standard variables, by text number.
#pragma once

#include <cstdint>
#include <string>

namespace kerfline::frame {

// The dictionary's marker for a text no source holds.
inline constexpr const char* kDlxNotFound = "Dlx not found!";

// The name of standard text id; mode 1 writes every "%I" as "%".
std::string variable_name(std::uint32_t id, std::int32_t mode);

// Copies a looked-up name into the host's buffer as GetVarName does: the
// marker is refused (0, nothing copied; with Ctrl and Shift held the user is
// shown what the buffer held), anything else is copied (1).
std::int32_t copy_variable_name(const std::string& name, char* buffer);

// Replaces every occurrence of `find` (not empty) left to right without
// rescanning what was put in; returns the number replaced.
std::size_t replace_all(std::string& text, const std::string& find, const std::string& replacement);

}  // namespace kerfline::frame
