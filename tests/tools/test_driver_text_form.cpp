#include <gtest/gtest.h>

#include "cli_runner.hpp"
#include "driver_text_form.hpp"
#include "fixtures/temp_dir.hpp"

using kerfline::test::run_cli;
using kerfline::test::TempDir;
using json = nlohmann::ordered_json;

namespace {

// A driver holding every item class and the optional fields.
const char* kEveryClass = R"JSON({
  "format": "VM6DRV$",
  "header": {"text": "00ff41", "note": "Notiz \u00e4", "dword": false},
  "baseDriverFlag": 1,
  "root": {
    "name": "Root",
    "items": [
      {"id": 9016, "value": "Every Class"},
      {"name": "%Speed%", "type": "Integer", "value": "40", "description": "Speed", "aux": "x", "attributes": 3,
       "valueIndex": 2},
      {"name": "%Date%", "type": "Date", "value": "1.2.2024"},
      {"class": "CDrvItemList", "name": "Group", "params": [1, 0, 5, 0], "param4": 9, "listAtEnd": 1, "items": [
        {"class": "CDrvItemCutInstr", "id": 1000, "value": "(PU:0,0)", "cutInstr": "PU;"},
        {"class": "CDrvItemToolParmVar", "name": "%Depth%", "value": "0.2", "toolParm": "mm"},
        {"class": "CDrvItemDlgVar", "name": "%Pressure%", "type": "Integer", "value": "80", "dlgText": "Druck",
         "dlgFormat": "%d g", "aux": "a", "ext": {"flags": 1, "min": 10, "max": 400, "increments": 0.5},
         "conditions": ["%Speed%>10", "1"]},
        {"class": "CDrvItemMatDB", "name": "Materials", "value": "vinyl.db", "aux": "m"}
      ]}
    ]
  }
})JSON";

}  // namespace

TEST(DriverTextForm, BinaryJsonBinaryIsByteExact) {
  TempDir dir;
  dir.write("every.json", kEveryClass);
  const std::string a = dir.str() + "a.vmd";
  const std::string b = dir.str() + "b.vmd";
  ASSERT_EQ(run_cli("driver build '" + dir.str() + "every.json' -o '" + a + "'").exit_code, 0);
  const auto dumped = run_cli("driver dump --json '" + a + "'");
  ASSERT_EQ(dumped.exit_code, 0) << dumped.out;
  dir.write("again.json", dumped.out);
  ASSERT_EQ(run_cli("driver build '" + dir.str() + "again.json' -o '" + b + "'").exit_code, 0);
  EXPECT_EQ(dir.read("a.vmd"), dir.read("b.vmd"));
  EXPECT_FALSE(dir.read("a.vmd").empty());

  // What the author wrote survives, in UTF-8.
  const json back = json::parse(dumped.out);
  EXPECT_EQ(back["header"]["note"], "Notiz \u00e4");
  EXPECT_EQ(back["title"], "Every Class");
  EXPECT_EQ(back["root"]["items"][3]["items"][2]["conditions"][0], "%Speed%>10");
  EXPECT_EQ(back["root"]["items"][3]["items"][2]["ext"]["increments"], 0.5);
}

TEST(DriverTextForm, BadFormsNameThePlaceThatIsWrong) {
  const struct {
    const char* form;
    const char* message;
  } cases[] = {
      {R"([])", "$: expected a driver object"},
      {R"({"format": "XYZ", "root": {}})", "$.format"},
      {R"({"root": 5})", "$.root: missing the root group"},
      {R"({"root": {"items": [{"class": "CNope"}]}})", "$.root.items[0].class: unknown item class"},
      {R"({"root": {"items": [{"type": "Colour"}]}})", "$.root.items[0].type: unknown type name"},
      {R"({"root": {"items": [{"attributes": -1}]}})", "$.root.items[0].attributes"},
      {R"({"root": {"items": [{"name": "\u4e2d"}]}})", "Windows-1252"},
      {R"({"root": {"items": [{"class": "CDrvItemCutInstr", "value": "x"}]}})", "needs the text number"},
      {R"({"format": "VM6DRV", "header": {"text": "00"}, "root": {}})", "$.header"},
      {R"({"format": "VM6DRV$", "header": {"text": "0g"}, "root": {}})", "$.header.text: not a hex digit"},
      {R"({"root": {"items": [{"class": "CDrvItemList", "params": [1, 2]}]}})", "expected four numbers"},
  };
  for (const auto& c : cases) {
    std::string error;
    EXPECT_EQ(kerfline::cli::driver_from_json(json::parse(c.form), error), nullptr) << c.form;
    EXPECT_NE(error.find(c.message), std::string::npos) << c.form << " gave: " << error;
  }
}

TEST(DriverTextForm, DeeplyNestedGroupsAreRefusedNotOverflowed) {
  std::string form = R"({"root": {"items": [)";
  for (int i = 0; i < 300; ++i) form += R"({"class": "CDrvItemList", "items": [)";
  for (int i = 0; i < 300; ++i) form += "]}";
  form += "]}}";
  std::string error;
  EXPECT_EQ(kerfline::cli::driver_from_json(json::parse(form), error), nullptr);
  EXPECT_NE(error.find("nested too deep"), std::string::npos);
}

TEST(DriverCommands, UsageAndInputErrors) {
  TempDir dir;
  dir.write("broken.json", "{ not json");
  dir.write("not-a-driver.vmd", "hello");
  const struct {
    std::string args;
    int exit_code;
    const char* message;
  } cases[] = {
      {"driver", 2, ""},
      {"driver build", 2, ""},
      {"driver frobnicate", 2, ""},
      {"driver dump '" + dir.str() + "missing.vmd'", 1, "missing.vmd: No such file"},
      {"driver build '" + dir.str() + "broken.json' -o '" + dir.str() + "x.vmd'", 1, "is not valid JSON"},
      {"driver dump '" + dir.str() + "not-a-driver.vmd'", 1, "is not a driver file we can read"},
  };
  for (const auto& c : cases) {
    const auto r = run_cli(c.args);
    EXPECT_EQ(r.exit_code, c.exit_code) << c.args << "\n" << r.out;
    EXPECT_NE(r.out.find(c.message), std::string::npos) << c.args << "\n" << r.out;
  }
}
