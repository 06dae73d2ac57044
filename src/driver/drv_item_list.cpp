#include "driver/drv_item_list.hpp"

#include <algorithm>

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"
#include "driver/drv_item_cut_instr.hpp"
#include "driver/item_classes.hpp"
#include "driver/text_definitions.hpp"
#include "platform/host_hooks.hpp"

namespace kerfline::driver {

const ArchiveClass CDrvItemList::kClass{"CDrvItemList", 1, false};

void CDrvItemList::Serialize(ArchiveReader& ar) {
  ReadGroupStyleHead(ar);
  ListParam0 = ar.read_dword();
  ListParam1 = ar.read_dword();
  ListParam2 = ar.read_dword();
  ListParam3 = ar.read_dword();
  ListAtEnd = ar.read_dword();
  AtEnd = ListAtEnd != 0;
  ListParam4 = ListParam2 != 0 ? ar.read_dword() : 0;

  children_.clear();
  maps_built_ = false;
  // Every reference takes at least its two-byte tag.
  const std::uint32_t count = ar.read_count(2);
  for (std::uint32_t i = 0; i < count; ++i) children_.push_back(ReadItem(ar));
  if (ListParam1 != 0 && ar.definitions != nullptr) Populate(*ar.definitions);
  BuildMaps();
}

void CDrvItemList::Serialize(ArchiveWriter& ar) {
  WriteGroupStyleHead(ar);
  ar.write_dword(ListParam0);
  ar.write_dword(ListParam1);
  ar.write_dword(ListParam2);
  ar.write_dword(ListParam3);
  ar.write_dword(ListAtEnd);
  if (ListParam2 != 0) ar.write_dword(ListParam4);

  if (IsReservedGroup()) RemoveUnexpectedChildren();
  ar.write_count(static_cast<std::uint32_t>(children_.size()));
  for (const auto& child : children_) WriteItem(ar, *child);
  if (ListParam1 != 0 && ar.definitions != nullptr) Populate(*ar.definitions);
}

void CDrvItemList::MapChild(CDrvItem* child) {
  by_name_[child->Name] = child;
  by_id_[child->DictId] = child;
}

void CDrvItemList::AddChild(std::shared_ptr<CDrvItem> child) {
  children_.push_back(std::move(child));
  if (!maps_built_) return;
  try {
    MapChild(children_.back().get());
  } catch (...) {
    // Out of memory half way through the maps: the child goes again and the
    // maps are rebuilt from the children, so none names a child the list
    // does not hold. Should that fail too, the maps are dropped.
    children_.pop_back();
    try {
      BuildMaps();
    } catch (...) {
      by_name_.clear();
      by_id_.clear();
      maps_built_ = false;
    }
    throw;
  }
}

bool CDrvItemList::RemoveChild(const CDrvItem* child) {
  const auto removed = std::erase_if(children_, [child](const auto& c) { return c.get() == child; });
  if (removed == 0) return false;
  if (maps_built_) BuildMaps();
  return true;
}

CDrvItem* CDrvItemList::FindChild(const std::string& name) {
  if (maps_built_) {
    const auto it = by_name_.find(name);
    return it == by_name_.end() ? nullptr : it->second;
  }
  for (const auto& child : children_) {
    trim_right(child->Name);
    if (child->Name == name) return child.get();
  }
  return nullptr;
}

CDrvItem* CDrvItemList::FindChildByDictId(std::uint32_t id) const {
  const auto it = by_id_.find(id);
  return it == by_id_.end() ? nullptr : it->second;
}

void CDrvItemList::BuildMaps() {
  by_name_.clear();
  by_id_.clear();
  by_name_.reserve(std::max<std::size_t>(10, children_.size()));
  by_id_.reserve(std::max<std::size_t>(10, children_.size()));
  for (const auto& child : children_) MapChild(child.get());
  maps_built_ = true;
}

void CDrvItemList::Populate(const TextDefinitions& texts) {
  const std::uint32_t count = texts.cut_instruction_count();
  for (std::uint32_t k = 0; k < count; ++k) {
    const std::uint32_t id = TextDefinitions::cut_instruction_id(k);
    auto instr = std::make_shared<CDrvItemCutInstr>();
    instr->DictId = id;
    ItemDefinition def = texts.definition(id);
    instr->Name = std::move(def.name);
    instr->Description = std::move(def.description);
    instr->Value = std::move(def.default_value);
    instr->Refresh();
    if (instr->Name.empty() || FindChild(instr->Name) != nullptr) continue;
    AddChild(std::move(instr));
  }
}

bool CDrvItemList::IsReservedGroup() const {
  const auto reserved = [](const std::string& s) {
    return s == "Dialogvariablen" || s == "Werkzeugvariablen";
  };
  return reserved(Name) || reserved(Description) || DictId == 33025 || DictId == 33058;
}

void CDrvItemList::RemoveUnexpectedChildren() {
  const auto removed = std::erase_if(
      children_, [](const auto& c) { return dynamic_cast<const CDrvItemList*>(c.get()) == nullptr; });
  if (removed == 0) return;
  if (maps_built_) BuildMaps();
  for (std::size_t i = 0; i < removed; ++i) {
    platform::host::message_box("(1) - Removed unexpected link",
                                "Driver check:", KERFLINE_MB_OK | KERFLINE_MB_ICONWARNING);
  }
}

}  // namespace kerfline::driver
