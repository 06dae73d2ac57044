#include "frame/driver_tree.hpp"

#include <cstring>

namespace kerfline::frame {

namespace {

using driver::CDrvItem;
using driver::CDrvItemList;

bool is_tools_group(const CDrvItem& item) {
  return item.Name == kToolsGroup || item.Description == kToolsGroup || item.DictId == kToolsGroupId;
}

// The root's own children first, then every group of the tree in order.
template <typename Match>
CDrvItemList* find_group(driver::CVm6Drv& doc, Match match) {
  for (const auto& child : doc.Root().GetChildren()) {
    auto* list = dynamic_cast<CDrvItemList*>(child.get());
    if (list != nullptr && match(*list)) return list;
  }
  for (const auto& group : doc.Groups()) {
    if (group && match(*group)) return group.get();
  }
  return nullptr;
}

// Guards against records that never came from the list functions.
constexpr std::uint64_t kOwnerMagic = 0x4B46'4F57'4E45'5231ULL;

struct OwnerRef {
  std::uint64_t magic = kOwnerMagic;
  const driver::CVm6Drv* doc = nullptr;
  std::weak_ptr<CDrvItemList> group;
};

}  // namespace

CDrvItemList* tools_group(driver::CVm6Drv& doc) { return find_group(doc, is_tools_group); }

CDrvItemList* materials_group(driver::CVm6Drv& doc) { return group_named(doc, kMaterialsGroup); }

CDrvItemList* group_named(driver::CVm6Drv& doc, const std::string& name) {
  return find_group(doc, [&name](const CDrvItemList& list) { return list.Name == name; });
}

std::vector<std::shared_ptr<CDrvItemList>> member_groups(const CDrvItemList* container) {
  std::vector<std::shared_ptr<CDrvItemList>> out;
  if (container == nullptr) return out;
  for (const auto& child : container->GetChildren()) {
    if (auto list = std::dynamic_pointer_cast<CDrvItemList>(child)) out.push_back(std::move(list));
  }
  return out;
}

CDrvItemList* sub_list(const CDrvItemList& tool, const char* name, std::uint32_t type) {
  for (const auto& child : tool.GetChildren()) {
    auto* list = dynamic_cast<CDrvItemList*>(child.get());
    if (list != nullptr && (list->Type == type || list->Name == name)) return list;
  }
  return nullptr;
}

CDrvItem* own_variable(CDrvItemList& group, const std::string& name) {
  CDrvItem* found = group.FindChild(name);
  if (found != nullptr && dynamic_cast<CDrvItemList*>(found) == nullptr) return found;
  // A sub-list may share the name: look on among the plain items.
  for (const auto& child : group.GetChildren()) {
    if (child->Name == name && dynamic_cast<CDrvItemList*>(child.get()) == nullptr) return child.get();
  }
  return nullptr;
}

std::int32_t own_variable_count(const CDrvItemList& group) {
  std::int32_t n = 0;
  for (const auto& child : group.GetChildren()) {
    if (dynamic_cast<const CDrvItemList*>(child.get()) == nullptr) ++n;
  }
  return n;
}

CDrvItemList* owner_group(const void* record, const driver::CVm6Drv& doc) {
  if (record == nullptr) return nullptr;
  void* item = nullptr;
  std::memcpy(&item, record, sizeof item);  // both records begin with pItem
  const auto* ref = static_cast<const OwnerRef*>(item);
  if (ref == nullptr || ref->magic != kOwnerMagic || ref->doc != &doc) return nullptr;
  // The document keeps its groups alive; a removed one has expired.
  return ref->group.lock().get();
}

void* make_owner_ref(const driver::CVm6Drv& doc, const std::shared_ptr<CDrvItemList>& group) {
  auto* ref = new OwnerRef;
  ref->doc = &doc;
  ref->group = group;
  return ref;
}

void release_owner_ref(void* ref) {
  auto* owner = static_cast<OwnerRef*>(ref);
  if (owner == nullptr || owner->magic != kOwnerMagic) return;
  owner->magic = 0;
  delete owner;
}

}  // namespace kerfline::frame
