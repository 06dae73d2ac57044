// Tools, materials, their flags, group walks and the device-setting lists of
// the sample driver.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "fixtures/host_recorder.hpp"
#include "frame/tool_flags.hpp"
#include "kerfline/kerfline.h"
#include "sample_driver.hpp"

using kerfline::test::SampleDriver;
namespace drv = kerfline::driver;

namespace {

TEST(Tools, WalkListsEveryToolOnce) {
  SampleDriver d;
  EXPECT_EQ(CountTools(&d.handle), 2);
  std::vector<std::string> seen;
  DRVTOOL tool{};
  for (std::int32_t r = GetFirstTool(&d.handle, &tool); r == 1; r = GetNextTool(&d.handle, &tool)) {
    seen.push_back(std::string(tool.pszName) + "/" + tool.pszType + "/" + std::to_string(tool.nIndex) + "/" +
                   std::to_string(tool.nVarCount));  // the sub-lists are not variables
  }
  EXPECT_TRUE(kerfline::test::all_zero(&tool, sizeof tool));  // the end releases the record
  EXPECT_EQ(seen, (std::vector<std::string>{"Cut/Contour/0/10", "Move/Transfer/1/1"}));
  EXPECT_EQ(FreeTool(&tool), 1);                // harmless on a released record
  EXPECT_EQ(GetNextTool(&d.handle, &tool), 1);  // an empty record starts over
  EXPECT_STREQ(tool.pszName, "Cut");
  EXPECT_EQ(FreeTool(&tool), 1);
}

TEST(Tools, ToolsGroupFoundByTextNumberOrDescription) {
  struct {
    const char* description;
    std::uint32_t dict_id;
    std::int32_t count;
  } const rows[] = {{"", 33058, 1}, {"Werkzeugvariablen", 0, 1}, {"", 0, 0}};
  for (const auto& row : rows) {
    drv::CVm6Drv doc;
    VMV6DRV handle = kerfline::test::handle_of(doc);
    auto tools =
        kerfline::test::with(kerfline::test::group("Tools"),
                             {kerfline::test::group("Knife"), kerfline::test::item("%NotATool%", "x")});
    tools->Description = row.description;
    tools->DictId = row.dict_id;
    doc.Root().AddChild(tools);
    doc.RefreshGroupList();
    EXPECT_EQ(CountTools(&handle), row.count) << row.description << row.dict_id;
    DRVTOOL tool{};
    EXPECT_EQ(GetFirstTool(&handle, &tool), row.count);
    if (row.count == 1) {
      EXPECT_EQ(std::string(tool.pszName) + "/" + tool.pszType, "Knife/");
    }
    FreeTool(&tool);
  }
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
  EXPECT_TRUE(kerfline::test::all_zero(&m, sizeof m));

  d.doc.PendingState = 3;
  EXPECT_EQ(DeleteMaterial(&d.handle, "Foil"), 1);
  EXPECT_EQ(d.doc.PendingState, 0u);
  EXPECT_EQ(DeleteMaterial(&d.handle, "Foil"), 0);
  EXPECT_EQ(CountMaterial(&d.handle), 1);
  EXPECT_EQ(GetVar(&speed), -5);  // the record outlived its material
  EXPECT_EQ(FreeMaterial(&foil), 1);
  EXPECT_TRUE(kerfline::test::all_zero(&foil, sizeof foil));
}

TEST(Materials, FirstMaterialCreatesTheGroup) {
  drv::CVm6Drv doc;
  VMV6DRV handle = kerfline::test::handle_of(doc);
  EXPECT_EQ(AddMaterial(&handle, "Paper", nullptr), 1);
  EXPECT_EQ(CountMaterial(&handle), 1);
  // The group is stored with the driver and read back.
  drv::CVm6Drv copy;
  ASSERT_TRUE(copy.ReadFromBytes(doc.WriteToBytes()));
  VMV6DRV copy_handle = kerfline::test::handle_of(copy);
  DRVMATERIAL m{};
  ASSERT_EQ(GetFirstMaterial(&copy_handle, &m), 1);
  EXPECT_STREQ(m.pszName, "Paper");
  EXPECT_EQ(m.nVarCount, 18);
  FreeMaterial(&m);
}

// Cut: %Flags_1%, %OutFlag_2% and %LayerVarFlag% (" Yes ") set, %Flags_2% and
// %OutFlag_3% ("no") not; Move: %Flags_8%. The type adds 0x4 unless it is
// Transfer and 0x8 unless it is Contour; names are case-sensitive.
TEST(ToolFlags, BitsFromVariablesAndTypeInEveryCall) {
  kerfline::test::HostRecorder host;
  kerfline::test::TempDir dir;
  SampleDriver d;
  const std::string path = dir.write("tools.drv", d.doc.WriteToBytes()).string();
  VMV6DRV file = kerfline::test::record_for(path);
  ASSERT_EQ(InitDrv(&file), 1);
  const std::tuple<const char*, bool, std::uint32_t, const char*> rows[] = {
      // tool, found, flags, type
      {"Cut", true, 0x1 | 0x200 | 0x2000 | 0x4, "Contour"},
      {"Move", true, 0x80 | 0x8, "Transfer"},
      {"cut", false, 0, "unset"},
      {nullptr, false, 0, "unset"}};
  for (const auto& [tool, found, expected, tool_type] : rows) {
    std::uint32_t flags = 0xDEAD, bits = 0xDEAD;
    std::string type = "unset";
    EXPECT_EQ(kerfline::frame::find_tool_flags(d.doc, tool, flags), found);
    EXPECT_EQ(flags, found ? expected : 0xDEAD);
    EXPECT_EQ(kerfline::frame::find_tool_bits(d.doc, tool, bits, type), found);
    EXPECT_EQ(bits, found ? expected & ~0xCu : 0xDEAD);  // the parts before the type's bits
    EXPECT_EQ(type, tool_type);
    if (tool == nullptr) continue;  // the exports answer the driver's own flags
    flags = 0xFFFF0000;
    EXPECT_EQ(GetFlags(path.c_str(), tool, &flags), 1) << tool;
    EXPECT_EQ(flags, expected) << tool;
    flags = 0;
    EXPECT_EQ(GetDrvFlags(&file, tool, &flags), 1) << tool;
    EXPECT_EQ(flags, expected) << tool;
  }
  EXPECT_EQ(FreeDrv(&file), 1);
  EXPECT_TRUE(host.boxes.empty());
}

TEST(Walk, GroupsOfTheDriverAndOfATool) {
  SampleDriver d;
  kerfline::test::ToolRecord tool(d);
  // group, with the tool as owner, first result, name=value seen; the nested
  // group and the repeated name are skipped
  const std::tuple<const char*, bool, std::int32_t, std::string> rows[] = {
      {"Sonderbefehle:", false, 1, "%CI_A%=(A) %CI_B%=(B) "},
      {"Layervariablen", true, 1, "%Layer%=layer %IDepth%=layerdepth "},
      {"Werkzeugparameter", true, 1, "%TP%=tp "},
      {"Layervariablen", false, -5, ""},
      {"%Modi%", false, -5, ""},
      {"%VideoSettings%", true, 1, "%Cam%=cam "}};
  for (const auto& [group, with_owner, first_result, expected] : rows) {
    VMV6VAR var = d.request("", 0, KERFLINE_VT_TEXT, with_owner ? &tool.record : nullptr);
    std::string seen;
    std::int32_t r = GetFirstVar(&var, group);
    EXPECT_EQ(r, first_result) << group;
    for (; r == 1; r = GetNextVar(&var, group))
      seen += std::string(var.szName) + "=" + var.uValue.pszText + " ";
    EXPECT_EQ(var.uValue.pszText, nullptr) << group;  // the last step released the text
    EXPECT_EQ(seen, expected) << group;
  }
}

TEST(Walk, AChangedGroupIsFoundAgainByName) {
  SampleDriver d;
  VMV6VAR var = d.request("", 0);
  ASSERT_EQ(GetFirstVar(&var, "Sonderbefehle:"), 1);
  EXPECT_STREQ(var.szName, "%CI_A%");
  // An item put in front between two steps: the walk still continues after %CI_A%.
  dynamic_cast<drv::CDrvItemList&>(*d.doc.FindItem("Sonderbefehle:"))
      .AddChild(kerfline::test::item("%CI_C%", "(C)"));
  ASSERT_EQ(GetNextVar(&var, "Sonderbefehle:"), 1);
  EXPECT_STREQ(var.szName, "%CI_B%");
  // Two interleaved walks over the same group each keep their place.
  VMV6VAR other = d.request("", 0);
  ASSERT_EQ(GetFirstVar(&other, "Sonderbefehle:"), 1);
  ASSERT_EQ(GetNextVar(&var, "Sonderbefehle:"), 1);
  EXPECT_STREQ(var.szName, "%CI_C%");
  ASSERT_EQ(GetNextVar(&other, "Sonderbefehle:"), 1);
  EXPECT_STREQ(other.szName, "%CI_B%");
  EXPECT_EQ(GetNextVar(&var, "Sonderbefehle:"), 0);
  FreeVar(&other);
}

TEST(DeviceSettings, HasSetAndSetWithoutOverride) {
  SampleDriver d;
  EXPECT_EQ(HasVideoVar(&d.handle, "%Cam%"), 1);
  EXPECT_EQ(HasVideoVar(&d.handle, "%Step%"), 0);
  EXPECT_EQ(HasJoystickVar(&d.handle, "%Step%"), 1);
  EXPECT_EQ(HasJoystickVar(&d.handle, "%Cam%"), 0);
  const std::tuple<decltype(&SetVideoVar), const char*, const char*, std::int32_t> sets[] = {
      {SetVideoVar, "%Cam%", "off", 1},
      {SetVideoVar, "%Zoom%", "3", 1},
      {SetVideoVarNoOverride, "%Cam%", "on", 0},
      {SetVideoVarNoOverride, "%Lens%", "5", 1},
      {SetJoyStickVarNoOverride, "%Step%", "9", 0},
      {SetJoyStickVarNoOverride, "%Fast%", "9", 1}};
  for (const auto& [set, name, value, result] : sets) EXPECT_EQ(set(&d.handle, name, value), result) << name;
  const std::tuple<std::int32_t, const char*, const char*> reads[] = {
      {KERFLINE_VARKIND_VIDEO, "%Cam%", "off"},
      {KERFLINE_VARKIND_VIDEO, "%Zoom%", "3"},
      {KERFLINE_VARKIND_VIDEO, "%Lens%", "5"},
      {KERFLINE_VARKIND_JOYSTICK, "%Step%", "step"},
      {KERFLINE_VARKIND_JOYSTICK, "%Fast%", "9"}};
  for (const auto& [kind, name, value] : reads) {
    VMV6VAR var = d.request(name, kind);
    ASSERT_EQ(GetVar(&var), 1) << name;
    EXPECT_STREQ(var.uValue.pszText, value);
    FreeVar(&var);
  }

  drv::CVm6Drv bare;
  VMV6DRV handle = kerfline::test::handle_of(bare);
  EXPECT_EQ(HasJoystickVar(&handle, "%Step%"), 0);
  EXPECT_EQ(SetJoyStickVar(&handle, "%Step%", "2"), 1);  // list made on the way
  EXPECT_EQ(HasJoystickVar(&handle, "%Step%"), 1);
  EXPECT_EQ(HasVideoVar(&handle, "%Step%"), 0);
}

}  // namespace
