// The number formats of the tool statistics in the INI file, independent of
// the process locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kerfline::support {

// printf "%f": fixed notation, six decimals ("5.000000", "-0.500000", "inf").
std::string format_distance(double value);

// printf "%d".
std::string format_int(std::int32_t value);

// A distance as atof reads it: leading blanks and one sign allowed, the
// longest decimal number at the start, 0 when there is none.
double parse_distance(std::string_view text);

// The slot number of a key "szTool<n>" in the form "szTool%d" writes it
// (prefix in any case, n without sign or leading zeros), or nothing.
std::optional<std::int64_t> tool_key_slot(std::string_view key);

}  // namespace kerfline::support
