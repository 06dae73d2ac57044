#include "frame/driver_flags.hpp"

#include <array>
#include <charconv>
#include <cstring>
#include <memory>

#include "driver/vm6drv.hpp"
#include "frame/driver_handle.hpp"
#include "frame/tool_flags.hpp"
#include "platform/binary_file.hpp"
#include "platform/c_boundary.hpp"
#include "platform/codepage.hpp"

namespace kerfline::frame {

namespace {

constexpr std::uint32_t kTransferBit = 0x4;
constexpr std::uint32_t kContourBit = 0x8;

// Fixed layout: the driver's flag bytes and the tool slots.
constexpr std::size_t kDriverFlagsLow = 350;
constexpr std::size_t kDriverFlagsHigh = 352;
constexpr std::size_t kFirstSlot = 358;
constexpr std::size_t kSlotSize = 1532;
constexpr std::size_t kSlotCount = 6;
constexpr std::size_t kSlotFlags = 672;
constexpr std::size_t kSlotType = 674;

// The flag variables of a driver document and their bits, in bit order.
constexpr std::array<const char*, 14> kFlagVariables = {
    "%Flags_1%", "%Flags_2%",   "%Flags_3%",   "%Flags_4%",   "%Flags_5%",   "%Flags_6%",   "%Flags_7%",
    "%Flags_8%", "%OutFlag_1%", "%OutFlag_2%", "%OutFlag_3%", "%OutFlag_4%", "%OutFlag_5%", "%LayerVarFlag%"};

unsigned char byte_at(std::string_view head, std::size_t offset) {
  return offset < head.size() ? static_cast<unsigned char>(head[offset]) : 0;
}

// The zero-terminated text at offset, never reaching past limit.
std::string_view text_at(std::string_view head, std::size_t offset, std::size_t limit) {
  if (offset >= head.size()) return {};
  const std::string_view rest = head.substr(offset, std::min(limit, head.size()) - offset);
  return rest.substr(0, rest.find('\0'));
}

}  // namespace

bool is_fixed_layout_path(std::string_view path) {
  return path.find(".vdv") != std::string_view::npos || path.find(".VDV") != std::string_view::npos;
}

std::uint32_t fixed_layout_flags(std::string_view head, const std::string* tool_name) {
  if (tool_name == nullptr) {
    return byte_at(head, kDriverFlagsLow) |
           (static_cast<std::uint32_t>(byte_at(head, kDriverFlagsHigh) & 0x1F) << 8);
  }
  for (std::size_t slot = 0; slot < kSlotCount; ++slot) {
    const std::size_t start = kFirstSlot + slot * kSlotSize;
    const std::size_t end = start + kSlotSize;
    if (text_at(head, start, end) != *tool_name) continue;
    std::uint32_t mask = byte_at(head, start + kSlotFlags) | (byte_at(head, start + kSlotFlags + 1) << 8);
    const std::string_view type = text_at(head, start + kSlotType, end);
    if (platform::cp1252::equals_no_case(type, "Transfer")) mask |= kTransferBit;
    if (platform::cp1252::equals_no_case(type, "Contour")) mask |= kContourBit;
    return mask;
  }
  return 0;
}

bool find_tool_flags(driver::CVm6Drv& doc, const std::string& name, ToolFlags& tool) {
  return find_tool_bits(doc, name.c_str(), tool.bits, tool.type);
}

std::uint32_t tool_mask(const ToolFlags& tool) {
  std::uint32_t mask = tool.bits;
  if (!platform::cp1252::equals_no_case(tool.type, "Transfer")) mask |= kTransferBit;
  if (!platform::cp1252::equals_no_case(tool.type, "Contour")) mask |= kContourBit;
  return mask;
}

std::uint32_t document_flags(driver::CVm6Drv& doc, const std::string* tool_name) {
  if (tool_name != nullptr) {
    ToolFlags tool;
    return find_tool_flags(doc, *tool_name, tool) ? tool_mask(tool) : 0;
  }
  std::uint32_t mask = 0;
  for (std::size_t i = 0; i < kFlagVariables.size(); ++i) {
    const driver::CDrvItem* item = doc.FindItem(kFlagVariables[i]);
    if (item != nullptr && value_is_set(item->GetValue())) mask |= 1u << i;
  }
  return mask;
}

bool value_is_set(std::string_view value) {
  const std::size_t first = value.find_first_not_of(" \t");
  if (first == std::string_view::npos) return false;
  value.remove_prefix(first);
  double number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error == std::errc() && end != value.data()) return number != 0;
  if (error == std::errc::result_out_of_range) return true;  // too large to hold, so not zero
  const std::string_view word = value.substr(0, value.find_last_not_of(" \t") + 1);
  return platform::cp1252::equals_no_case(word, "true") || platform::cp1252::equals_no_case(word, "yes");
}

}  // namespace kerfline::frame

namespace {

// The tool name of a query, or null for a driver query (no name or "").
const std::string* tool_of(const char* name, std::string& storage) {
  if (name == nullptr || *name == '\0') return nullptr;
  storage = name;
  return &storage;
}

}  // namespace

extern "C" {

KERFLINE_API int32_t GetFlags(const char* path, const char* toolName, uint32_t* flags) noexcept {
  if (path == nullptr || *path == '\0' || flags == nullptr) return KERFLINE_BAD_ARGUMENT;
  *flags = 0;
  return kerfline::platform::guarded_as(0, [path, toolName, flags] {
    std::string storage;
    const std::string* tool = tool_of(toolName, storage);
    if (kerfline::frame::is_fixed_layout_path(path)) {
      auto head = kerfline::platform::read_binary_file_head(path, kerfline::frame::kFixedLayoutBytes);
      if (!head) return 0;
      *flags = kerfline::frame::fixed_layout_flags(*head, tool);
      return 1;
    }
    const auto doc = kerfline::frame::open_document(path, false);
    if (doc == nullptr) return 0;
    *flags = kerfline::frame::document_flags(*doc, tool);
    return 1;
  });
}

KERFLINE_API int32_t GetDrvFlags(VMV6DRV* drv, const char* toolName, uint32_t* flags) noexcept {
  if (drv == nullptr || flags == nullptr) return KERFLINE_BAD_ARGUMENT;
  kerfline::driver::CVm6Drv* doc = kerfline::frame::document_of(drv);
  if (doc == nullptr) return 0;
  return kerfline::platform::guarded_as(0, [doc, toolName, flags] {
    std::string storage;
    *flags |= kerfline::frame::document_flags(*doc, tool_of(toolName, storage));
    return 1;
  });
}

}  // extern "C"
