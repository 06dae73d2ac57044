#include "driver/vm6drv.hpp"

#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_tool_parm_var.hpp"

namespace kerfline::driver {

namespace {

struct LiveDocuments {
  std::mutex lock;
  std::unordered_set<const CVm6Drv*> live;
};

LiveDocuments& live_documents() {
  static auto* table = new LiveDocuments;  // never destroyed: documents may outlive static destruction
  return *table;
}

}  // namespace

CVm6Drv::CVm6Drv(TextLookup lookup)
    : lookup_(std::move(lookup)), texts_(lookup_), root_(std::make_shared<CDrvItemList>()) {
  LiveDocuments& table = live_documents();
  const std::lock_guard<std::mutex> guard(table.lock);
  table.live.insert(this);
}

CVm6Drv::~CVm6Drv() {
  LiveDocuments& table = live_documents();
  const std::lock_guard<std::mutex> guard(table.lock);
  table.live.erase(this);
}

CVm6Drv* CVm6Drv::Live(const void* address) {
  if (address == nullptr) return nullptr;
  LiveDocuments& table = live_documents();
  const std::lock_guard<std::mutex> guard(table.lock);
  const auto found = table.live.find(static_cast<const CVm6Drv*>(address));
  return found != table.live.end() ? const_cast<CVm6Drv*>(*found) : nullptr;
}

void CVm6Drv::RefreshGroupList() {
  // Tree order, parents before children; a group that two parents share
  // (a back-reference in the file) is listed once. Built aside, so that
  // running out of memory leaves the old list.
  std::vector<std::weak_ptr<CDrvItemList>> groups;
  std::unordered_set<const CDrvItem*> seen{root_.get()};
  std::vector<std::shared_ptr<CDrvItemList>> stack{root_};
  while (!stack.empty()) {
    const auto group = stack.back();
    stack.pop_back();
    if (group != root_) groups.push_back(group);
    const auto& children = group->GetChildren();
    for (auto it = children.rbegin(); it != children.rend(); ++it) {
      auto sub = std::dynamic_pointer_cast<CDrvItemList>(*it);
      if (sub && seen.insert(sub.get()).second) stack.push_back(std::move(sub));
    }
  }
  groups_.swap(groups);
}

std::vector<std::shared_ptr<CDrvItemList>> CVm6Drv::Groups() const {
  std::vector<std::shared_ptr<CDrvItemList>> out;
  out.reserve(groups_.size());
  for (const auto& g : groups_) {
    if (auto locked = g.lock()) out.push_back(std::move(locked));
  }
  return out;
}

CDrvItem* CVm6Drv::FindLocal(const std::string& name) {
  if (CDrvItem* found = root_->FindChild(name)) return found;
  for (const auto& g : groups_) {
    const auto group = g.lock();
    if (!group) continue;
    if (CDrvItem* found = group->FindChild(name)) return found;
  }
  return nullptr;
}

CDrvItem* CVm6Drv::FindItem(const std::string& name) {
  CDrvItem* found = FindLocal(name);
  if (found != nullptr && found->Linked != 0 && base_driver_) {
    if (CDrvItem* target = base_driver_->FindItem(name))
      found->SetLinkTarget(target->weak_from_this().lock());
  }
  return found;
}

void CVm6Drv::MergeBaseDriver() {
  if (!base_driver_) return;
  std::vector<std::shared_ptr<CDrvItem>> groups, dialog_vars, tool_vars, plain;
  std::unordered_set<const CDrvItem*> seen;
  const auto sort = [&](const CDrvItemList& group) {
    for (const auto& child : group.GetChildren()) {
      if (!seen.insert(child.get()).second) continue;
      const ArchiveClass& cls = child->GetClass();
      if (&cls == &CDrvItemList::kClass) {
        groups.push_back(child);
      } else if (&cls == &CDrvItemDlgVar::kClass) {
        dialog_vars.push_back(child);
      } else if (&cls == &CDrvItemToolParmVar::kClass) {
        tool_vars.push_back(child);
      } else if (&cls == &CDrvItem::kClass) {
        plain.push_back(child);
      }
    }
  };
  sort(base_driver_->Root());
  for (const auto& g : base_driver_->Groups()) sort(*g);

  // FindLocal for every base item would scan every group each time: one
  // index with FindLocal's answers (root first, then the groups in order)
  // keeps the merge linear.
  std::unordered_map<std::string, CDrvItem*> local;
  const auto index = [&local](CDrvItemList& group) {
    for (const auto& child : group.GetChildren()) {
      if (local.contains(child->Name)) continue;
      if (CDrvItem* found = group.FindChild(child->Name)) local.emplace(child->Name, found);
    }
  };
  index(*root_);
  for (const auto& g : groups_) {
    if (const auto group = g.lock()) index(*group);
  }
  for (const auto* list : {&groups, &dialog_vars, &tool_vars, &plain}) {
    for (const auto& base_item : *list) {
      const auto it = local.find(base_item->Name);
      CDrvItem* mine = it == local.end() ? FindLocal(base_item->Name) : it->second;
      if (mine != nullptr && mine->Linked != 0) mine->SetLinkTarget(base_item);
    }
  }
}

}  // namespace kerfline::driver
