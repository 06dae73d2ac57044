// The flag masks of GetFlags/GetDrvFlags, from a driver document or from a
// file of the older fixed layout (".vdv").
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kerfline::driver {
class CVm6Drv;
}

namespace kerfline::frame {

// The older fixed-layout files are known by ".vdv" or ".VDV" in the path, and
// only their first kFixedLayoutBytes bytes are ever read.
inline constexpr std::size_t kFixedLayoutBytes = 10209;
bool is_fixed_layout_path(std::string_view path);

// Flags of a fixed-layout file's head (shorter heads read as zero-filled).
// Without a tool name the driver's flags; with one the tool's, 0 when no slot
// holds it.
std::uint32_t fixed_layout_flags(std::string_view head, const std::string* tool_name);

// What a tool of a driver document contributes to its flags.
struct ToolFlags {
  std::uint32_t bits = 0;
  std::string type;  // the tool's type text ("Transfer", "Contour", ...)
};

// Looks the tool up in the document's tool list; false when there is none of
// that name.
bool find_tool_flags(driver::CVm6Drv& doc, const std::string& name, ToolFlags& tool);

// The mask of a document's tool: its bits, plus 0x4 unless the type is
// "Transfer" and 0x8 unless it is "Contour".
std::uint32_t tool_mask(const ToolFlags& tool);

// Without a tool name the flag variables of the document; with one the
// tool's mask (0 when not found).
std::uint32_t document_flags(driver::CVm6Drv& doc, const std::string* tool_name);

// True for a variable value that counts as set: a nonzero number, "true" or
// "yes" (any case).
bool value_is_set(std::string_view value);

}  // namespace kerfline::frame
