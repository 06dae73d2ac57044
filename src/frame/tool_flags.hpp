// Flag bits of one tool of a driver document, for GetFlags/GetDrvFlags.
#pragma once

#include <cstdint>
#include <string>

#include "driver/vm6drv.hpp"

namespace kerfline::frame {

// Finds the tool by its stored (or shown) name and sets `flags` to the bits
// of its flag variables ("%Flags_1%".."%Flags_8%" 0x1..0x80,
// "%OutFlag_1%".."%OutFlag_5%" 0x100..0x1000, "%LayerVarFlag%" 0x2000, each
// when present and set: a nonzero number, "true" or "yes"), plus 0x4 when its type is NOT "Transfer" and
// 0x8 when it is NOT "Contour" (types compared without regard to case).
// False, with `flags` untouched, when the driver has no such tool.
bool find_tool_flags(const driver::CVm6Drv& doc, const char* tool_name, std::uint32_t& flags);

// The two parts of that answer: the bits of the flag variables and the
// tool's type text, before the type adds 0x4/0x8. False, both untouched,
// when the driver has no such tool.
bool find_tool_bits(const driver::CVm6Drv& doc, const char* tool_name, std::uint32_t& bits,
                    std::string& type);

}  // namespace kerfline::frame
