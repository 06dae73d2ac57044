#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>

#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "kerfline/kerfline.h"
#include "sample_driver.hpp"

using kerfline::test::SampleDriver;
using kerfline::test::ToolRecord;
namespace drv = kerfline::driver;

namespace {

enum class Owner { None, Cut, Move };

// kind, name, variant, owner, result, the value found
TEST(GetVarLookup, FindsTheItemTheRulesName) {
  struct {
    std::int32_t kind;
    const char* name;
    const char* variant;
    Owner owner;
    std::int32_t result;
    const char* text;
  } const rows[] = {// clang-format off
      {1, "%Speed%", "0", Owner::None, 1, "speed"}, {1, "%Speed%", "3", Owner::None, 1, "speed3"},  // variant name first
      {1, "%Speed%", "4", Owner::None, 1, "speed"},  // no variant item: as given
      {1, "%A.1%", "2", Owner::None, 1, "a1"},  // a "." stops the variant
      {1, "%Speed.3%", "0", Owner::None, 1, "speed3"}, {1, "%Nope%", "3", Owner::None, -5, nullptr},
      {1, "%Speed%", "0", Owner::Cut, 1, "speed"},  // an owner does not matter
      {1, "%Depth%", "0", Owner::None, 1, "tooldepth"},  // the tree holds every group
      {2, "%Depth%", "0", Owner::Cut, 1, "tooldepth"}, {2, "%Depth%", "3", Owner::Cut, 1, "tooldepth3"},
      {2, "%Depth%", "0", Owner::None, -5, nullptr}, {2, "%Depth%", "0", Owner::Move, -5, nullptr},
      {2, "%Speed%", "0", Owner::Cut, -5, nullptr},  // the owner's list only
      {3, "%Speed%", "0", Owner::Cut, 1, "toolispeed"}, {3, "%Speed%", "9", Owner::Cut, 1, "toolispeed"},
      {3, "%ISpeed%", "0", Owner::Cut, -5, nullptr},  // %IISpeed%
      {3, "%Depth%", "0", Owner::Cut, -5, nullptr},  // %IDepth% lives in a sub-list
      {7, "%Step%", "0", Owner::None, 1, "step"}, {7, "%Cam%", "0", Owner::None, -5, nullptr},
      {8, "%Cam%", "0", Owner::None, 1, "cam"},
      {5, "%Layer%", "0", Owner::Cut, -5, nullptr}, {6, "%TP%", "0", Owner::Cut, -5, nullptr},  // dialog kinds
      {0, "%Speed%", "0", Owner::None, -5, nullptr}, {4, "%Speed%", "0", Owner::None, -5, nullptr},
      {9, "%Speed%", "0", Owner::None, -5, nullptr}};
  // clang-format on
  for (const auto& row : rows) {
    SampleDriver d;
    d.doc.Variant = row.variant;
    ToolRecord tool(d, row.owner == Owner::Move);
    VMV6VAR var =
        d.request(row.name, row.kind, KERFLINE_VT_TEXT, row.owner == Owner::None ? nullptr : &tool.record);
    const std::string what = std::to_string(row.kind) + row.name + row.variant;
    EXPECT_EQ(GetVar(&var), row.result) << what;
    EXPECT_STREQ(var.uValue.pszText, row.text) << what;
    EXPECT_STREQ(var.szName, row.name);  // the host's name stays
    EXPECT_EQ(FreeVar(&var), row.result == 1 ? 1 : -2) << what;
    EXPECT_EQ(var.uValue.pszText, nullptr);
  }
}

// kind, name, owner, result, value, dialog text (null: no dialog variable)
TEST(GetDlgVarLookup, FindsTheItemAndItsDialogTexts) {
  struct {
    std::int32_t kind;
    const char* name;
    Owner owner;
    std::int32_t result;
    const char* text;
    const char* dialog_text;
  } const rows[] = {// clang-format off
      {2, "%Dlg%", Owner::Cut, 1, "3.25", "Cut depth"},  // blanks trimmed with an owner
      {2, "%Depth%", Owner::Cut, 1, "tooldepth", nullptr}, {3, "%DlgInt%", Owner::Cut, 1, "4", "Passes"},
      {5, "%Layer%", Owner::Cut, 1, "layer", nullptr},
      {5, "%Depth%", Owner::Cut, 1, "layerdepth", nullptr},  // retried as %IDepth%
      {5, "%Nope%", Owner::Cut, -5, nullptr, nullptr},
      {5, "%Layer%", Owner::Move, -5, nullptr, nullptr},  // a tool without sub-lists
      {6, "%TP%", Owner::Cut, 1, "tp", nullptr}, {6, "%Layer%", Owner::Cut, -5, nullptr, nullptr},
      {6, "%TP%", Owner::Move, -5, nullptr, nullptr}, {5, "%Layer%", Owner::None, -2, nullptr, nullptr},
      {6, "%TP%", Owner::None, -2, nullptr, nullptr}, {2, "%Dlg%", Owner::None, -5, nullptr, nullptr},
      {1, "%Speed%", Owner::None, -5, nullptr, nullptr},  // kind 1 refused
      {8, "%Cam%", Owner::None, -5, nullptr, nullptr}};
  // clang-format on
  for (const auto& row : rows) {
    SampleDriver d;
    d.doc.Variant = "3";  // dialog variables take no variant name
    ToolRecord tool(d, row.owner == Owner::Move);
    VMV6DLGVAR var = d.dialog_request(row.name, row.kind, KERFLINE_VT_TEXT,
                                      row.owner == Owner::None ? nullptr : &tool.record);
    EXPECT_EQ(GetDlgVar(&var), row.result) << row.kind << row.name;
    EXPECT_STREQ(var.uValue.pszText, row.text) << row.kind << row.name;
    EXPECT_STREQ(var.pszDlgText, row.dialog_text);
    EXPECT_STREQ(var.pszDlgFormat, row.dialog_text ? "%.2f" : nullptr);
    EXPECT_EQ(FreeDlgVar(&var), 1);
    EXPECT_EQ(var.pszDlgText, nullptr);
    EXPECT_EQ(var.pszDlgFormat, nullptr);
  }
}

TEST(GetVar, DialogVariableByOwnerListSetsTheNumber) {
  SampleDriver d;
  ToolRecord tool(d);
  VMV6VAR var = d.request("%Dlg%", KERFLINE_VARKIND_OWNER, KERFLINE_VT_INTEGER, &tool.record);
  var.dNumber = -1;
  EXPECT_EQ(GetVar(&var), 1);
  EXPECT_EQ(var.uValue.nInt, 3);
  EXPECT_DOUBLE_EQ(var.dNumber, 3.25);
  // Kind 3 finds the same item under its "I" name without reading the number.
  VMV6VAR by_int = d.request("%DlgInt%", KERFLINE_VARKIND_OWNER_INT, KERFLINE_VT_INTEGER, &tool.record);
  by_int.dNumber = -1;
  EXPECT_EQ(GetVar(&by_int), 1);
  EXPECT_EQ(by_int.uValue.nInt, 4);
  EXPECT_EQ(by_int.dNumber, -1);
}

// Every value type on every item type (float as double), and the type AUTO picks.
TEST(ValueTypes, ConvertTheItemText) {
  struct {
    std::uint32_t item_type;
    const char* text;
    std::int32_t as_int;
    double as_double;
    const char* date;  // day.month.year
    std::int32_t auto_type;
  } const rows[] = {
      // clang-format off
      {drv::type_code::kDouble, "2.75", 2, 2.75, "2.75.0", KERFLINE_VT_DOUBLE},
      {drv::type_code::kDouble, "-1e3", -1000, -1000.0, "255.0.0", KERFLINE_VT_DOUBLE},
      {drv::type_code::kInteger, "42", 42, 42.0, "42.0.0", KERFLINE_VT_INTEGER},
      {drv::type_code::kInteger, " +7xyz", 7, 7.0, "7.0.0", KERFLINE_VT_INTEGER},
      {drv::type_code::kInteger, "1e99", 2147483647, 1e99, "1.0.0", KERFLINE_VT_INTEGER},
      {drv::type_code::kBool, "1", 1, 1.0, "1.0.0", KERFLINE_VT_FLOAT},
      {drv::type_code::kDate, "31.12.2009", 0x07D90C1F, 131664927.0, "31.12.2009", KERFLINE_VT_DATE},
      {drv::type_code::kString, "hello", 0, 0.0, "0.0.0", KERFLINE_VT_TEXT},
      {drv::type_code::kString, "", 0, 0.0, "0.0.0", KERFLINE_VT_TEXT},
      {drv::type_code::kCutInstr, "(AL:10e6)", 0, 0.0, "0.0.0", KERFLINE_VT_TEXT}};
  // clang-format on
  for (const auto& row : rows) {
    SampleDriver d;
    d.doc.Root().AddChild(kerfline::test::item("%V%", row.text, row.item_type));
    VMV6VAR var = d.request("%V%", KERFLINE_VARKIND_DRIVER);
    const auto get = [&](std::int32_t type) {
      var.nValueType = type;
      EXPECT_EQ(GetVar(&var), 1) << row.text;
      return var.uValue;
    };
    EXPECT_EQ(get(KERFLINE_VT_INTEGER).nInt, row.as_int) << row.text;
    EXPECT_FLOAT_EQ(get(KERFLINE_VT_FLOAT).fFloat, static_cast<float>(row.as_double)) << row.text;
    EXPECT_DOUBLE_EQ(get(KERFLINE_VT_DOUBLE).dDouble, row.as_double) << row.text;
    const VMV6VALUE date = get(KERFLINE_VT_DATE);
    EXPECT_EQ(std::to_string(date.anDate[0]) + "." + std::to_string(date.anDate[1]) + "." +
                  std::to_string(date.anDate[2]),
              row.date);
    EXPECT_STREQ(get(KERFLINE_VT_TEXT).pszText, row.text);
    EXPECT_EQ(FreeVar(&var), 1);
    get(KERFLINE_VT_AUTO);
    EXPECT_EQ(var.nValueType, row.auto_type) << row.text;  // the choice is written back
    FreeVar(&var);
  }
}

TEST(GetVar, CodesOutsideTheTableFillNothing) {
  struct {
    std::int32_t code;
    std::int32_t result;
  } const rows[] = {{0, 1}, {6, 0}, {7, 0}, {9, 0}, {11, 0}, {-1, 0}};
  // With a variant, a variant item that yields nothing sends the lookup on to
  // the name as given; either way the record keeps what the host put in.
  SampleDriver d;
  d.doc.Variant = "3";
  for (const auto& row : rows) {
    VMV6VAR var = d.request("%Speed%", KERFLINE_VARKIND_DRIVER, row.code);
    var.uValue.nInt = 0x5A5A;
    EXPECT_EQ(GetVar(&var), row.result) << row.code;
    EXPECT_EQ(var.uValue.nInt, 0x5A5A) << row.code;
    EXPECT_EQ(var.nValueType, row.code);
    EXPECT_STREQ(var.szName, "%Speed%");
  }
}

TEST(GetVar, BadRecords) {
  SampleDriver d;
  VMV6VAR no_driver = d.request("%Speed%", KERFLINE_VARKIND_DRIVER);
  no_driver.pDrv = nullptr;
  EXPECT_EQ(GetVar(&no_driver), -2);
  VMV6DRV closed{};
  no_driver.pDrv = &closed;
  EXPECT_EQ(GetVar(&no_driver), -2);
  EXPECT_EQ(SetVar(&no_driver), -2);

  VMV6VAR unterminated = d.request("", KERFLINE_VARKIND_DRIVER);
  std::memset(unterminated.szName, 'A', sizeof unterminated.szName);
  EXPECT_EQ(GetVar(&unterminated), -2);
  EXPECT_EQ(SetVar(&unterminated), -2);

  // FreeVar releases texts only: another type is left alone (a null text is
  // refused in FindsTheItemTheRulesName).
  VMV6VAR var = d.request("%Speed%", KERFLINE_VARKIND_DRIVER, KERFLINE_VT_INTEGER);
  var.uValue.nInt = 5;
  EXPECT_EQ(FreeVar(&var), 1);
  EXPECT_EQ(var.uValue.nInt, 5);
}

TEST(GetVar, LongestNamesGrowPastTheRecordSafely) {
  SampleDriver d;
  const std::string name = "%" + std::string(61, 'L') + "%";  // 63 characters, one byte to spare
  const std::string int_name = "%I" + std::string(61, 'L') + "%";
  d.doc.Root().AddChild(kerfline::test::item(name, "long"));
  d.doc.Variant = "12";
  ToolRecord tool(d);
  d.cut_tool->AddChild(kerfline::test::item(int_name, "long int"));

  VMV6VAR var = d.request(name.c_str(), KERFLINE_VARKIND_DRIVER);
  ASSERT_EQ(GetVar(&var), 1);
  EXPECT_STREQ(var.uValue.pszText, "long");
  FreeVar(&var);

  VMV6VAR by_int = d.request(name.c_str(), KERFLINE_VARKIND_OWNER_INT, KERFLINE_VT_TEXT, &tool.record);
  ASSERT_EQ(GetVar(&by_int), 1);  // looked up under a 64-character name
  EXPECT_STREQ(by_int.uValue.pszText, "long int");
  EXPECT_EQ(by_int.szName, name);
  FreeVar(&by_int);
}

TEST(GetVarAndDesc, GivesTheDescriptionForQuickFree) {
  SampleDriver d;
  VMV6VAR var = d.request("%Speed%", KERFLINE_VARKIND_DRIVER, KERFLINE_VT_TEXT);
  char* description = nullptr;
  ASSERT_EQ(GetVarAndDesc(&var, &description), 1);
  EXPECT_STREQ(var.uValue.pszText, "speed");
  EXPECT_STREQ(description, "about %Speed%");
  EXPECT_EQ(QuickFree(description), 1);
  FreeVar(&var);

  VMV6VAR missing = d.request("%Nope%", KERFLINE_VARKIND_DRIVER);
  description = nullptr;
  EXPECT_EQ(GetVarAndDesc(&missing, &description), -5);
  EXPECT_EQ(description, nullptr);
}

struct SetRow {
  std::uint32_t item_type;
  std::int32_t value_type;
  VMV6VALUE value;
  std::int32_t result;
  const char* stored;
  std::int32_t type_after;
};

class SetVarTypes : public ::testing::TestWithParam<SetRow> {};

TEST_P(SetVarTypes, WritesTheValueAsText) {
  const SetRow& row = GetParam();
  SampleDriver d;
  d.doc.Root().AddChild(kerfline::test::item("%V%", "old", row.item_type));
  VMV6VAR var = d.request("%V%", KERFLINE_VARKIND_DRIVER, row.value_type);
  var.uValue = row.value;
  EXPECT_EQ(SetVar(&var), row.result);
  EXPECT_EQ(d.doc.FindItem("%V%")->GetValue(), row.stored);
  EXPECT_EQ(var.nValueType, row.type_after);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SetVarTypes,
    ::testing::Values(SetRow{drv::type_code::kInteger, 1, VMV6VALUE{.nInt = -7}, 1, "-7", 1},
                      SetRow{drv::type_code::kDouble, 2, VMV6VALUE{.fFloat = 1.5f}, 1, "1.5", 2},
                      SetRow{drv::type_code::kDouble, 3, VMV6VALUE{.dDouble = 0.1}, 1, "0.1", 3},
                      SetRow{drv::type_code::kDate, 5, VMV6VALUE{.anDate = {1, 2, 2024}}, 1, "1.2.2024", 5},
                      SetRow{drv::type_code::kDouble, 10, VMV6VALUE{.dDouble = 2.5}, 1, "2.5", 3},
                      SetRow{drv::type_code::kInteger, 10, VMV6VALUE{.nInt = 12}, 1, "12", 1},
                      SetRow{drv::type_code::kDate, 10, VMV6VALUE{.anDate = {9, 8, 2007}}, 1, "9.8.2007", 5},
                      SetRow{drv::type_code::kString, 6, VMV6VALUE{.nInt = 1}, 0, "old", 6},
                      SetRow{drv::type_code::kString, 0, VMV6VALUE{.nInt = 1}, 0, "old", 0},
                      SetRow{drv::type_code::kString, 4, VMV6VALUE{}, -2, "old", 4}),
    kerfline::test::RowIndex());

TEST(SetVar, TextsGoToTheVariantItem) {
  SampleDriver d;
  d.doc.Variant = "3";
  char text[] = "new speed";
  VMV6VAR var = d.request("%Speed%", KERFLINE_VARKIND_DRIVER, KERFLINE_VT_TEXT);
  var.uValue.pszText = text;
  EXPECT_EQ(SetVar(&var), 1);
  EXPECT_EQ(d.doc.FindItem("%Speed.3%")->GetValue(), "new speed");  // the variant item
  EXPECT_EQ(d.doc.FindItem("%Speed%")->GetValue(), "speed");
}

TEST(SetVar, ToolSubListsAndTheirBadOwners) {
  SampleDriver d;
  ToolRecord cut_tool(d);
  ToolRecord move_tool(d, true);
  DRVTOOL* cut = &cut_tool.record;
  DRVTOOL* move = &move_tool.record;
  char text[] = "set";
  const std::tuple<std::int32_t, const char*, DRVTOOL*, std::int32_t> rows[] = {
      // kind, name, owner, result
      {KERFLINE_VARKIND_TOOLPARM, "%TP%", cut, 1},      {KERFLINE_VARKIND_LAYER, "%Depth%", cut, 1},
      {KERFLINE_VARKIND_LAYER, "%Layer%", move, -5},    {KERFLINE_VARKIND_LAYER, "%Layer%", nullptr, -2},
      {KERFLINE_VARKIND_TOOLPARM, "%TP%", nullptr, -2}, {KERFLINE_VARKIND_OWNER, "%Depth%", nullptr, -5}};
  for (const auto& [kind, name, owner, result] : rows) {
    VMV6VAR var = d.request(name, kind, KERFLINE_VT_TEXT, owner);
    var.uValue.pszText = text;
    EXPECT_EQ(SetVar(&var), result) << kind << name;
  }
  VMV6DLGVAR read = d.dialog_request("%Depth%", KERFLINE_VARKIND_LAYER, KERFLINE_VT_TEXT, cut);
  ASSERT_EQ(GetDlgVar(&read), 1);
  EXPECT_STREQ(read.uValue.pszText, "set");  // %IDepth% took the text
  FreeDlgVar(&read);
}

// (Which texts an Integer dialog variable refuses is the item's own check.)
TEST(SetVar, IntegerDialogVariablesCheckTheirInput) {
  kerfline::test::HostRecorder host;
  SampleDriver d;
  ToolRecord tool(d);
  char bad[] = "1.5", good[] = "-8";
  VMV6VAR var = d.request("%DlgInt%", KERFLINE_VARKIND_OWNER_INT, KERFLINE_VT_TEXT, &tool.record);
  var.uValue.pszText = bad;
  EXPECT_EQ(SetVar(&var), 0);
  EXPECT_EQ(d.cut_tool->FindChild("%IDlgInt%")->GetValue(), "4");
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes.back().text, "1.5 (Integer Error)");
  var.uValue.pszText = good;
  EXPECT_EQ(SetVar(&var), 1);
  EXPECT_EQ(d.cut_tool->FindChild("%IDlgInt%")->GetValue(), "-8");
  var =
      d.request("%Dlg%", KERFLINE_VARKIND_OWNER, KERFLINE_VT_TEXT, &tool.record);  // a Double takes any text
  var.uValue.pszText = bad;
  EXPECT_EQ(SetVar(&var), 1);
  EXPECT_EQ(host.boxes.size(), 1u);
}

}  // namespace
