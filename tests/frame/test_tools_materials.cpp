#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "fixtures/table_names.hpp"
#include "frame/tool_flags.hpp"
#include "kerfline/kerfline.h"
#include "sample_driver.hpp"

using kerfline::test::SampleDriver;
namespace drv = kerfline::driver;

namespace {

bool all_zero(const void* record, std::size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(record);
  for (std::size_t i = 0; i < size; ++i) {
    if (bytes[i] != 0) return false;
  }
  return true;
}

TEST(Tools, WalkListsEveryToolOnce) {
  SampleDriver d;
  EXPECT_EQ(CountTools(&d.handle), 2);
  struct Seen {
    std::string name, type;
    std::int32_t index, vars;
  };
  std::vector<Seen> seen;
  DRVTOOL tool{};
  for (std::int32_t r = GetFirstTool(&d.handle, &tool); r == 1; r = GetNextTool(&d.handle, &tool)) {
    seen.push_back({tool.pszName, tool.pszType, tool.nIndex, tool.nVarCount});
  }
  EXPECT_TRUE(all_zero(&tool, sizeof tool));  // the end releases the record
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0].name, "Cut");
  EXPECT_EQ(seen[0].type, "Contour");
  EXPECT_EQ(seen[0].index, 0);
  EXPECT_EQ(seen[0].vars, 10);  // the sub-lists are not variables
  EXPECT_EQ(seen[1].name, "Move");
  EXPECT_EQ(seen[1].type, "Transfer");
  EXPECT_EQ(seen[1].index, 1);
  EXPECT_EQ(seen[1].vars, 1);
  EXPECT_EQ(FreeTool(&tool), 1);                // harmless on a released record
  EXPECT_EQ(GetNextTool(&d.handle, &tool), 1);  // an empty record starts over
  EXPECT_STREQ(tool.pszName, "Cut");
  EXPECT_EQ(FreeTool(&tool), 1);
}

TEST(Tools, ToolsGroupFoundByTextNumberOrDescription) {
  struct {
    const char* name;
    const char* description;
    std::uint32_t dict_id;
    std::int32_t count;
  } const rows[] = {{"Tools", "", 33058, 1}, {"Tools", "Werkzeugvariablen", 0, 1}, {"Tools", "", 0, 0}};
  for (const auto& row : rows) {
    drv::CVm6Drv doc;
    VMV6DRV handle{};
    handle.pDrv = &doc;
    auto tools = kerfline::test::group(row.name);
    tools->Description = row.description;
    tools->DictId = row.dict_id;
    tools->AddChild(kerfline::test::group("Knife"));
    tools->AddChild(kerfline::test::item("%NotATool%", "x"));
    doc.Root().AddChild(tools);
    doc.RefreshGroupList();
    EXPECT_EQ(CountTools(&handle), row.count) << row.description << row.dict_id;
    DRVTOOL tool{};
    EXPECT_EQ(GetFirstTool(&handle, &tool), row.count);
    if (row.count == 1) {
      EXPECT_STREQ(tool.pszName, "Knife");
      EXPECT_STREQ(tool.pszType, "");
    }
    FreeTool(&tool);
  }
}

TEST(Tools, BadArguments) {
  SampleDriver d;
  VMV6DRV closed{};
  DRVTOOL tool{};
  DRVMATERIAL material{};
  EXPECT_EQ(GetFirstTool(&closed, &tool), -2);
  EXPECT_EQ(GetFirstTool(&d.handle, nullptr), -2);
  EXPECT_EQ(GetFirstMaterial(&closed, &material), -2);
  EXPECT_EQ(GetNextMaterial(&d.handle, nullptr), -2);
  EXPECT_EQ(AddMaterial(&closed, "Foil", nullptr), -2);
  EXPECT_EQ(AddMaterial(&d.handle, nullptr, nullptr), -2);
  EXPECT_EQ(AddMaterial(&d.handle, "", nullptr), -2);
  EXPECT_EQ(DeleteMaterial(&d.handle, nullptr), -2);

  drv::CVm6Drv empty;
  VMV6DRV handle{};
  handle.pDrv = &empty;
  EXPECT_EQ(CountTools(&handle), 0);
  EXPECT_EQ(GetFirstTool(&handle, &tool), 0);
  EXPECT_EQ(CountMaterial(&handle), 0);
  EXPECT_EQ(GetFirstMaterial(&handle, &material), 0);
  EXPECT_EQ(DeleteMaterial(&handle, "Vinyl"), 0);
}

TEST(Materials, AddWalkReadAndDelete) {
  SampleDriver d;
  EXPECT_EQ(CountMaterial(&d.handle), 1);
  d.doc.PendingState = 7;
  DRVMATERIAL foil{};
  ASSERT_EQ(AddMaterial(&d.handle, "Foil", &foil), 1);
  EXPECT_EQ(d.doc.PendingState, 0u);
  EXPECT_STREQ(foil.pszName, "Foil");
  EXPECT_EQ(foil.nIndex, 1);
  EXPECT_EQ(foil.nVarCount, 18);  // every standard material variable
  EXPECT_EQ(AddMaterial(&d.handle, "Foil", nullptr), 0);
  EXPECT_EQ(CountMaterial(&d.handle), 2);

  // The new material's variables at their defaults, through the "I" form.
  VMV6VAR speed = d.request("%MatSpeed%", KERFLINE_VARKIND_OWNER_INT, KERFLINE_VT_AUTO, &foil);
  ASSERT_EQ(GetVar(&speed), 1);
  EXPECT_EQ(speed.nValueType, KERFLINE_VT_DOUBLE);
  EXPECT_DOUBLE_EQ(speed.uValue.dDouble, 50.0);
  VMV6VAR v1 = d.request("%IV1%", KERFLINE_VARKIND_OWNER, KERFLINE_VT_AUTO, &foil);
  ASSERT_EQ(GetVar(&v1), 1);
  EXPECT_STREQ(v1.uValue.pszText, "3.0");
  FreeVar(&v1);

  std::vector<std::string> names;
  DRVMATERIAL m{};
  for (std::int32_t r = GetFirstMaterial(&d.handle, &m); r == 1; r = GetNextMaterial(&d.handle, &m)) {
    names.emplace_back(m.pszName);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"Vinyl", "Foil"}));
  EXPECT_TRUE(all_zero(&m, sizeof m));

  d.doc.PendingState = 3;
  EXPECT_EQ(DeleteMaterial(&d.handle, "Foil"), 1);
  EXPECT_EQ(d.doc.PendingState, 0u);
  EXPECT_EQ(DeleteMaterial(&d.handle, "Foil"), 0);
  EXPECT_EQ(CountMaterial(&d.handle), 1);
  EXPECT_EQ(GetVar(&speed), -5);  // the record outlived its material
  EXPECT_EQ(FreeMaterial(&foil), 1);
  EXPECT_TRUE(all_zero(&foil, sizeof foil));
}

TEST(Materials, FirstMaterialCreatesTheGroup) {
  drv::CVm6Drv doc;
  VMV6DRV handle{};
  handle.pDrv = &doc;
  EXPECT_EQ(AddMaterial(&handle, "Paper", nullptr), 1);
  EXPECT_EQ(CountMaterial(&handle), 1);
  // The group is stored with the driver and read back.
  drv::CVm6Drv copy;
  ASSERT_TRUE(copy.ReadFromBytes(doc.WriteToBytes()));
  VMV6DRV copy_handle{};
  copy_handle.pDrv = &copy;
  DRVMATERIAL m{};
  ASSERT_EQ(GetFirstMaterial(&copy_handle, &m), 1);
  EXPECT_STREQ(m.pszName, "Paper");
  EXPECT_EQ(m.nVarCount, 18);
  FreeMaterial(&m);
}

struct FlagRow {
  const char* tool;
  bool found;
  std::uint32_t flags;
  const char* type;
};

class ToolFlags : public ::testing::TestWithParam<FlagRow> {};

TEST_P(ToolFlags, BitsFromVariablesAndType) {
  const FlagRow& row = GetParam();
  SampleDriver d;
  std::uint32_t flags = 0xDEAD;
  EXPECT_EQ(kerfline::frame::find_tool_flags(d.doc, row.tool, flags), row.found);
  EXPECT_EQ(flags, row.flags);
  // The parts before the type's bits: no tool here sets %Flags_3% or %Flags_4%.
  std::uint32_t bits = 0xDEAD;
  std::string type = "unset";
  EXPECT_EQ(kerfline::frame::find_tool_bits(d.doc, row.tool, bits, type), row.found);
  EXPECT_EQ(bits, row.found ? row.flags & ~0xCu : 0xDEAD);
  EXPECT_EQ(type, row.type);
}

// Cut: %Flags_1%, %OutFlag_2% and %LayerVarFlag% (" Yes ") set, %Flags_2% and
// %OutFlag_3% ("no") not. Move: %Flags_8%. How each type maps to its bits is
// DocumentToolMask's table.
INSTANTIATE_TEST_SUITE_P(
    Table, ToolFlags,
    ::testing::Values(FlagRow{"Cut", true, 0x1 | 0x200 | 0x2000 | 0x4, "Contour"},  // Contour: 0x4 only
                      FlagRow{"Move", true, 0x80 | 0x8, "Transfer"},                // Transfer: 0x8 only
                      FlagRow{"cut", false, 0xDEAD, "unset"}, FlagRow{"None", false, 0xDEAD, "unset"},
                      FlagRow{nullptr, false, 0xDEAD, "unset"}),
    kerfline::test::RowIndex());

TEST(Walk, GroupsOfTheDriverAndOfATool) {
  SampleDriver d;
  DRVTOOL tool{};
  ASSERT_EQ(GetFirstTool(&d.handle, &tool), 1);
  struct {
    const char* group;
    bool with_owner;
    std::int32_t first_result;
    std::vector<std::string> names;
    std::vector<std::string> values;
  } const rows[] = {
      {"Sonderbefehle:", false, 1, {"%CI_A%", "%CI_B%"}, {"(A)", "(B)"}},
      // the nested group and the repeated name are skipped
      {"Layervariablen", true, 1, {"%Layer%", "%IDepth%"}, {"layer", "layerdepth"}},
      {"Werkzeugparameter", true, 1, {"%TP%"}, {"tp"}},
      {"Layervariablen", false, -5, {}, {}},
      {"%Modi%", false, -5, {}, {}},
      {"%VideoSettings%", true, 1, {"%Cam%"}, {"cam"}},
  };
  for (const auto& row : rows) {
    VMV6VAR var = d.request("", 0, KERFLINE_VT_TEXT, row.with_owner ? &tool : nullptr);
    std::vector<std::string> names, values;
    std::int32_t r = GetFirstVar(&var, row.group);
    EXPECT_EQ(r, row.first_result) << row.group;
    for (; r == 1; r = GetNextVar(&var, row.group)) {
      names.emplace_back(var.szName);
      values.emplace_back(var.uValue.pszText);
    }
    EXPECT_EQ(var.uValue.pszText, nullptr) << row.group;  // the last step released the text
    EXPECT_EQ(names, row.names) << row.group;
    EXPECT_EQ(values, row.values) << row.group;
  }
  VMV6VAR var = d.request("", 0);
  EXPECT_EQ(GetFirstVar(&var, nullptr), -2);
  FreeTool(&tool);
}

TEST(DeviceSettings, HasAndSet) {
  SampleDriver d;
  EXPECT_EQ(HasVideoVar(&d.handle, "%Cam%"), 1);
  EXPECT_EQ(HasVideoVar(&d.handle, "%Step%"), 0);
  EXPECT_EQ(HasJoystickVar(&d.handle, "%Step%"), 1);
  EXPECT_EQ(HasJoystickVar(&d.handle, "%Cam%"), 0);
  EXPECT_EQ(HasVideoVar(&d.handle, nullptr), -2);

  EXPECT_EQ(SetVideoVar(&d.handle, "%Cam%", "off"), 1);
  EXPECT_EQ(SetVideoVar(&d.handle, "%Zoom%", "3"), 1);
  EXPECT_EQ(HasVideoVar(&d.handle, "%Zoom%"), 1);
  VMV6VAR zoom = d.request("%Zoom%", KERFLINE_VARKIND_VIDEO, KERFLINE_VT_INTEGER);
  ASSERT_EQ(GetVar(&zoom), 1);
  EXPECT_EQ(zoom.uValue.nInt, 3);
  VMV6VAR cam = d.request("%Cam%", KERFLINE_VARKIND_VIDEO);
  ASSERT_EQ(GetVar(&cam), 1);
  EXPECT_STREQ(cam.uValue.pszText, "off");
  FreeVar(&cam);
  EXPECT_EQ(SetVideoVar(&d.handle, "", "1"), -2);
  EXPECT_EQ(SetJoyStickVar(&d.handle, "%Step%", nullptr), -2);

  drv::CVm6Drv bare;
  VMV6DRV handle{};
  handle.pDrv = &bare;
  EXPECT_EQ(HasJoystickVar(&handle, "%Step%"), 0);
  EXPECT_EQ(SetJoyStickVar(&handle, "%Step%", "2"), 1);  // list made on the way
  EXPECT_EQ(HasJoystickVar(&handle, "%Step%"), 1);
  EXPECT_EQ(HasVideoVar(&handle, "%Step%"), 0);
}

}  // namespace
