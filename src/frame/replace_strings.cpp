// ReplaceStringsFromDriver: a host text with the driver's names and values
// swapped in, as the driver's groups say.
#include <cstdlib>
#include <cstring>
#include <string>

#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"
#include "frame/driver_handle.hpp"
#include "frame/library_start.hpp"
#include "frame/var_names.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/library_memory.hpp"

namespace kerfline::frame {

namespace {

// Bit of a group's ListParam0: its items turn values back into names.
constexpr std::uint32_t kValueToName = 0x1;

// Applies the group's items to text; a first child that is itself a group is
// applied before them (and counted first). Only that first child is
// descended into.
std::size_t apply_group(const driver::CDrvItemList& group, std::string& text, int depth) {
  const auto& children = group.GetChildren();
  std::size_t count = 0;
  if (!children.empty() && depth < 200) {
    if (const auto* first = dynamic_cast<const driver::CDrvItemList*>(children.front().get())) {
      count = apply_group(*first, text, depth + 1);
    }
  }
  const bool value_to_name = (group.ListParam0 & kValueToName) != 0;
  for (const auto& child : children) {
    const std::string name = child->GetName();
    const std::string value = child->GetValue();
    count += value_to_name ? replace_all(text, value, name) : replace_all(text, name, value);
  }
  return count;
}

}  // namespace

}  // namespace kerfline::frame

extern "C" {

KERFLINE_API char* ReplaceStringsFromDriver(VMV6DRV* drv, const char* text, int32_t* count) noexcept {
  if (count != nullptr) *count = 0;
  kerfline::driver::CVm6Drv* doc = kerfline::frame::document_of(drv);
  if (doc == nullptr || text == nullptr) return nullptr;
  return kerfline::platform::guarded_pointer([doc, text, count]() -> char* {
    kerfline::frame::ensure_resources_loaded();
    std::string result = text;
    const std::size_t replaced = kerfline::frame::apply_group(doc->Root(), result, 0);
    auto* block = static_cast<char*>(kerfline::platform::c_runtime_alloc(result.size() + 1));
    if (block == nullptr) return nullptr;
    std::memcpy(block, result.c_str(), result.size() + 1);
    if (count != nullptr) *count = static_cast<int32_t>(replaced);
    return block;
  });
}

}  // extern "C"
