// CDrvItemList: a group of items, in order, with lookup by name and by text
// number.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "driver/drv_item.hpp"

namespace kerfline::driver {

class TextDefinitions;

class CDrvItemList : public CDrvItem {
 public:
  static const ArchiveClass kClass;
  [[nodiscard]] const ArchiveClass& GetClass() const override { return kClass; }

  void Serialize(ArchiveReader& ar) override;
  void Serialize(ArchiveWriter& ar) override;

  using Children = std::vector<std::shared_ptr<CDrvItem>>;
  [[nodiscard]] const Children& GetChildren() const { return children_; }
  void AddChild(std::shared_ptr<CDrvItem> child);
  // Removes every occurrence of the child; false when it is not one.
  bool RemoveChild(const CDrvItem* child);

  // The built maps answer when present; before that the direct children are
  // scanned in order, each name right-trimmed on the way (and kept so).
  CDrvItem* FindChild(const std::string& name);
  CDrvItem* FindChildByDictId(std::uint32_t id) const;

  // Name and text-number maps over the direct children; a later child with
  // the same key wins.
  void BuildMaps();
  [[nodiscard]] bool MapsBuilt() const { return maps_built_; }

  // Adds the special cut instructions this group lacks (groups whose
  // ListParam1 is set do so after every read and write).
  void Populate(const TextDefinitions& texts);

  // A group that may only hold groups ("Dialogvariablen",
  // "Werkzeugvariablen", or their text numbers).
  [[nodiscard]] bool IsReservedGroup() const;
  // Drops every child that is not a group, one message box per drop.
  void RemoveUnexpectedChildren();

  std::uint32_t ListParam0 = 0;
  std::uint32_t ListParam1 = 0;
  std::uint32_t ListParam2 = 0;
  std::uint32_t ListParam3 = 0;
  std::uint32_t ListParam4 = 0;
  // The group's AtEnd flag as stored (kept whole, so it is written back as
  // read).
  std::uint32_t ListAtEnd = 0;

 private:
  void MapChild(CDrvItem* child);

  Children children_;
  std::unordered_map<std::string, CDrvItem*> by_name_;
  std::unordered_map<std::uint32_t, CDrvItem*> by_id_;
  bool maps_built_ = false;
};

}  // namespace kerfline::driver
