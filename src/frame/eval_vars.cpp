// LoadEvalVars: a driver's named variables become shared variables of the
// evaluator, so templates read them by name (&T(%Speed%)).
#include <string>
#include <unordered_set>

#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"
#include "frame/driver_handle.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/codepage.hpp"

namespace {

using kerfline::driver::CDrvItem;
using kerfline::driver::CDrvItemList;

// Tree order, first occurrence of a name wins: the same item FindItem finds.
// A group reached a second time is not walked again, so the cost stays
// linear even in a tree that holds a group twice.
void load_list(const CDrvItemList& list, std::uint32_t mask, std::unordered_set<std::string>& seen,
               std::unordered_set<const CDrvItemList*>& walked, std::int32_t& count) {
  for (const auto& child : list.GetChildren()) {
    if (const auto* group = dynamic_cast<const CDrvItemList*>(child.get())) {
      if (walked.insert(group).second) load_list(*group, mask, seen, walked, count);
      continue;
    }
    if (child->Name.empty()) continue;
    if (!seen.insert(kerfline::platform::cp1252::to_upper(child->Name)).second) continue;
    if (SetEvalVar(child->Name.c_str(), child->GetValue().c_str(), mask) == 1) ++count;
  }
}

}  // namespace

extern "C" KERFLINE_API int32_t LoadEvalVars(VMV6DRV* drv, uint32_t mask) noexcept {
  return kerfline::platform::guarded(KERFLINE_OUT_OF_MEMORY, [drv, mask] {
    kerfline::driver::CVm6Drv* doc = kerfline::frame::document_of(drv);
    if (doc == nullptr) return KERFLINE_BAD_ARGUMENT;
    std::unordered_set<std::string> seen;
    std::unordered_set<const CDrvItemList*> walked;
    std::int32_t count = 0;
    load_list(doc->Root(), mask, seen, walked, count);
    return count;
  });
}
