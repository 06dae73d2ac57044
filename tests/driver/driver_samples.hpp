// Texts and documents the driver tests share: a small dictionary in the
// layout of the standard texts, and a document that holds every item class
// with every optional field.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>

#include "driver/archive_writer.hpp"
#include "driver/drv_item_cut_instr.hpp"
#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/drv_item_mat_db.hpp"
#include "driver/drv_item_tool_parm_var.hpp"
#include "driver/text_definitions.hpp"
#include "driver/vm6drv.hpp"
#include "fixtures/driver_items.hpp"

namespace kerfline::test {

namespace drv = kerfline::driver;

// Raw bytes from a list of byte values.
inline std::string bytes(std::initializer_list<int> values) {
  std::string out;
  for (const int v : values) out.push_back(static_cast<char>(v));
  return out;
}

// The tag that describes a class the first time an archive meets it.
inline std::string new_class(int schema, const std::string& name) {
  return bytes({0xFF, 0xFF, schema, 0x00, static_cast<int>(name.size()), 0x00}) + name;
}

// The head of an unnamed group record: no value or description, item type
// `type`, no list parameters, and `count` children to follow.
inline void write_group_head(drv::ArchiveWriter& ar, std::uint32_t count, std::uint32_t type = 0) {
  for (int i = 0; i < 3; ++i) ar.write_string("");
  for (const std::uint32_t field : {0u, type, 0u, 0u})
    ar.write_dword(field);  // attributes, type, link, number
  ar.write_long(-1);
  for (int i = 0; i < 5; ++i) ar.write_dword(0);
  ar.write_count(count);
}

inline const std::map<std::uint32_t, std::string>& sample_texts() {
  // directory: cut instructions (base, step, count), standard variables (base, count, step)
  // clang-format off
  static const std::map<std::uint32_t, std::string> texts = {
      {107, "1000"}, {108, "6"}, {109, "2"}, {122, "9000"}, {123, "57"}, {124, "8"},
      {1000, "%CI_ArcLimit%"}, {1001, "Arc limit"}, {1004, "(AL:10e6)"}, {1005, "String"},
      {1006, "%CI_AltHPGL%"}, {1007, "Alternative HPGL"}, {1010, "(AT:PA)"}, {1011, "String"},
      {9016, "%DriverName%"}, {9017, "Name of the driver"}, {9020, "String"},
      {9120, "%BaseDrv%"}, {9121, "Base driver"}, {9124, "String"},
      {9288, "%Digits%"}, {9289, "Digits after the point"}, {9291, "0"}, {9292, "Integer"}};
  // clang-format on
  return texts;
}

inline drv::TextLookup sample_lookup() {
  return [](std::uint32_t id) {
    const auto it = sample_texts().find(id);
    return it == sample_texts().end() ? std::string() : it->second;
  };
}

// Every class, every optional field, every string-prefix form (the DWORD
// form only with `huge`).
inline void fill_sample_document(drv::CVm6Drv& doc, bool huge = true) {
  auto& root = doc.Root();
  root.Name = "%Root%";
  root.ListParam1 = 1;  // fills itself with the special cut instructions

  auto full = named<drv::CDrvItem>("%Full%", "12");
  full->Description = "an item defined by the file";
  full->AuxText = "aux";
  full->Attributes = 0xDEADBEEF;
  full->Type = drv::type_code::kInteger;
  full->ValueIndex = 1;
  root.AddChild(full);

  auto driver_name = named<drv::CDrvItem>("%DriverName%", "Sample Cutter 1000");
  driver_name->DictId = 9016;
  root.AddChild(driver_name);

  auto linked = named<drv::CDrvItem>("%Digits%", "3");
  linked->DictId = 9288;
  linked->Linked = 1;
  root.AddChild(linked);

  root.AddChild(named<drv::CDrvItem>("%Long%", std::string(300, 'x')));
  if (huge) root.AddChild(named<drv::CDrvItem>("%Huge%", std::string(70000, 'y')));

  auto cut = named<drv::CDrvItemCutInstr>("%CI_ArcLimit%", "(AL:5)");
  cut->DictId = 1000;
  cut->CutInstrText = "cut text";
  cut->AuxText = "cut aux";
  root.AddChild(cut);

  auto group = named<drv::CDrvItemList>("%OutputFrmt%");
  group->Description = "Output";
  group->ListParam0 = 7;
  group->ListParam2 = 1;
  group->ListParam3 = 9;
  group->ListParam4 = 0x12345678;
  group->ListAtEnd = 1;

  auto dlg = named<drv::CDrvItemDlgVar>("%Speed%", "50");
  dlg->DlgText = "Speed";
  dlg->DlgFormat = "%d cm/s";
  dlg->AuxText = "dlg aux";
  dlg->Ext =
      std::make_unique<drv::CDrvItemDlgVar::ExtParms>(drv::CDrvItemDlgVar::ExtParms{3, 100.5, -2.25, 0.5});
  dlg->Conditions = {"%A%>1", "", "%B%"};
  group->AddChild(dlg);

  group->AddChild(named<drv::CDrvItemDlgVar>("%Plain%", "1"));

  auto tool = named<drv::CDrvItemToolParmVar>("%IToolDepth%", "2");
  tool->ToolParmText = "depth;1.0";
  tool->Linked = 1;
  tool->DictId = 5000;
  group->AddChild(tool);

  auto mat = named<drv::CDrvItemMatDB>("%MatDB%", "materials.mdb");
  mat->AuxText = "mat aux";
  mat->Description = "Materials";
  group->AddChild(mat);

  auto mat_numbered = named<drv::CDrvItemMatDB>("%MatDB2%", "other.mdb");
  mat_numbered->DictId = 6000;
  group->AddChild(mat_numbered);

  root.AddChild(group);
  root.AddChild(named<drv::CDrvItemList>("%Empty%"));

  auto reserved = named<drv::CDrvItemList>("Dialogvariablen");
  reserved->AddChild(named<drv::CDrvItemList>("Page 1"));
  root.AddChild(reserved);
  doc.RefreshGroupList();
}

}  // namespace kerfline::test
