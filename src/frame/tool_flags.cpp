#include "frame/tool_flags.hpp"

#include <string>

#include "frame/driver_flags.hpp"
#include "frame/driver_tree.hpp"
#include "frame/shown_text.hpp"
#include "platform/codepage.hpp"

namespace kerfline::frame {

namespace {

std::uint32_t variable_bits(driver::CDrvItemList& tool) {
  std::uint32_t bits = 0;
  auto take = [&](const std::string& name, std::uint32_t bit) {
    const driver::CDrvItem* item = own_variable(tool, name);
    if (item != nullptr && value_is_set(item->GetValue())) bits |= bit;
  };
  for (int i = 1; i <= 8; ++i) take("%Flags_" + std::to_string(i) + "%", 1u << (i - 1));
  for (int i = 1; i <= 5; ++i) take("%OutFlag_" + std::to_string(i) + "%", 0x100u << (i - 1));
  take("%LayerVarFlag%", 0x2000);
  return bits;
}

}  // namespace

bool find_tool_bits(const driver::CVm6Drv& doc, const char* tool_name, std::uint32_t& bits,
                    std::string& type) {
  if (tool_name == nullptr) return false;
  // Finding children trims their names; that is the only change made.
  auto& document = const_cast<driver::CVm6Drv&>(doc);
  for (const auto& tool : member_groups(tools_group(document))) {
    if (tool->Name != tool_name && shown_text(kShowToolName, tool->Name) != tool_name) continue;
    bits = variable_bits(*tool);
    type = tool->GetValue();
    return true;
  }
  return false;
}

bool find_tool_flags(const driver::CVm6Drv& doc, const char* tool_name, std::uint32_t& flags) {
  std::uint32_t bits = 0;
  std::string type;
  if (!find_tool_bits(doc, tool_name, bits, type)) return false;
  // The reverse of the fixed-layout files' reading, as hosts expect it.
  if (!platform::cp1252::equals_no_case(type, "Transfer")) bits |= 0x4;
  if (!platform::cp1252::equals_no_case(type, "Contour")) bits |= 0x8;
  flags = bits;
  return true;
}

}  // namespace kerfline::frame
