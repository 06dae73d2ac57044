#include "frame/driver_tree.hpp"

#include <cstring>
#include <mutex>
#include <unordered_map>

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

// The references handed out in DRVTOOL/DRVMATERIAL records. A record holds
// only a number, never an address: the table says what the number stands
// for, so a record that was released, copied before its release, or never
// made by the list functions is refused without reading anything through it.
// Numbers are not reused.
struct OwnerEntry {
  const driver::CVm6Drv* doc = nullptr;  // compared, never followed
  std::weak_ptr<CDrvItemList> group;
};

struct OwnerTable {
  std::mutex lock;
  std::unordered_map<std::uintptr_t, OwnerEntry> live;
  std::uintptr_t last = 0;
};

OwnerTable& owner_table() {
  static auto* table = new OwnerTable;  // never destroyed: records may be released during unload
  return *table;
}

std::uintptr_t owner_number(const void* ref) { return reinterpret_cast<std::uintptr_t>(ref); }

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

std::shared_ptr<CDrvItemList> owner_group(const void* record, const driver::CVm6Drv& doc) {
  if (record == nullptr) return nullptr;
  void* item = nullptr;
  std::memcpy(&item, record, sizeof item);  // both records begin with pItem
  if (item == nullptr) return nullptr;
  OwnerTable& table = owner_table();
  const std::lock_guard<std::mutex> guard(table.lock);
  const auto found = table.live.find(owner_number(item));
  if (found == table.live.end() || found->second.doc != &doc) return nullptr;
  // The document keeps its groups alive; a removed one has expired.
  return found->second.group.lock();
}

void* make_owner_ref(const driver::CVm6Drv& doc, const std::shared_ptr<CDrvItemList>& group) {
  OwnerTable& table = owner_table();
  const std::lock_guard<std::mutex> guard(table.lock);
  std::uintptr_t number = table.last + 1;
  if (number == 0) number = 1;  // after wrapping round (32-bit): null means no reference
  table.live.emplace(number, OwnerEntry{&doc, group});
  table.last = number;
  // An integer carried in the record's pointer field; it is only ever looked
  // up in the table.
  return reinterpret_cast<void*>(number);
}

void release_owner_ref(void* ref) {
  if (ref == nullptr) return;
  OwnerTable& table = owner_table();
  const std::lock_guard<std::mutex> guard(table.lock);
  table.live.erase(owner_number(ref));
}

}  // namespace kerfline::frame
