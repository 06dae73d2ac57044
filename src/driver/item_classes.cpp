#include "driver/item_classes.hpp"

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"
#include "driver/drv_item_cut_instr.hpp"
#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/drv_item_mat_db.hpp"
#include "driver/drv_item_tool_parm_var.hpp"

namespace kerfline::driver {

namespace {

// Copies of each class's description, so that the table does not depend on
// the order in which static members are initialised.
constexpr ArchiveClass kItemClasses[] = {
    {"CDrvItem", 2, true},          {"CDrvItemList", 1, false},
    {"CDrvItemCutInstr", 1, false}, {"CDrvItemToolParmVar", 1, false},
    {"CDrvItemDlgVar", 3, true},    {"CDrvItemMatDB", 2, true},
};

}  // namespace

std::span<const ArchiveClass> item_classes() { return kItemClasses; }

std::shared_ptr<CDrvItem> make_item(std::string_view name) {
  if (name == "CDrvItem") return std::make_shared<CDrvItem>();
  if (name == "CDrvItemList") return std::make_shared<CDrvItemList>();
  if (name == "CDrvItemCutInstr") return std::make_shared<CDrvItemCutInstr>();
  if (name == "CDrvItemToolParmVar") return std::make_shared<CDrvItemToolParmVar>();
  if (name == "CDrvItemDlgVar") return std::make_shared<CDrvItemDlgVar>();
  if (name == "CDrvItemMatDB") return std::make_shared<CDrvItemMatDB>();
  return nullptr;
}

std::shared_ptr<CDrvItem> ReadItem(ArchiveReader& ar) {
  ArchiveReader::ObjectTag t = ar.read_object_tag(item_classes());
  switch (t.kind) {
    case ArchiveReader::ObjectTag::Kind::Null:
      throw ArchiveError("null item in a group");
    case ArchiveReader::ObjectTag::Kind::Reference: {
      // A second reference to an item is the earlier item. A group in two
      // places would make the tree a graph whose walks multiply with every
      // level, so it is refused (a group inside itself already is).
      auto item = std::static_pointer_cast<CDrvItem>(t.object);
      if (&item->GetClass() == &CDrvItemList::kClass) throw ArchiveError("a group is stored in two places");
      return item;
    }
    case ArchiveReader::ObjectTag::Kind::New:
      break;
  }
  std::shared_ptr<CDrvItem> item = make_item(t.cls->name);
  ar.begin_object(item, t.schema);
  item->Serialize(ar);
  ar.end_object();
  return item;
}

void WriteItem(ArchiveWriter& ar, CDrvItem& item) {
  if (ar.begin_object(&item, item.GetClass())) item.Serialize(ar);
}

}  // namespace kerfline::driver
