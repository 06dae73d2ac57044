// The driver text form: what it refuses, and binary -> text -> binary kept
// byte for byte.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "cli_runner.hpp"
#include "driver_text_form.hpp"
#include "fixtures/temp_dir.hpp"

using kerfline::test::run_cli;
using json = nlohmann::ordered_json;

namespace {

// A driver holding every item class and the optional fields, as a dump writes it.
const char* kEveryClass = R"JSON({
  "format": "VM6DRV$", "header": {"text": "00ff41", "note": "Notiz \u00e4", "dword": false},
  "title": "Every Class", "baseDriverFlag": 1, "root": {"name": "Root", "items": [
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
      {"class": "CDrvItemMatDB", "name": "Materials", "value": "vinyl.db", "aux": "m"}]}]}
})JSON";

}  // namespace

TEST(DriverTextForm, RefusesWhatIsWrongOrWouldBeLostNamingThePlace) {
  std::string deep = R"({"root": {"items": [)";
  for (int i = 0; i < 300; ++i) deep += R"({"class": "CDrvItemList", "items": [)";
  for (int i = 0; i < 300; ++i) deep += "]}";
  const std::pair<std::string, const char*> cases[] = {
      // form, message ("": accepted)
      {R"([])", "$: expected a driver object"},
      {R"({"format": "XYZ", "root": {}})", "$.format"},
      {R"({"root": 5})", "$.root: missing the root group"},
      {R"({"root": {}, "titel": "x"})", "$.titel: unknown key"},
      {R"({"format": "VM6DRV", "header": {"text": "00"}, "root": {}})", "$.header"},
      {R"({"format": "VM6DRV$", "header": {"text": "0g"}, "root": {}})", "$.header.text: not a hex digit"},
      {R"({"root": {"items": [{"class": "CNope"}]}})", "$.root.items[0].class: unknown item class"},
      {R"({"root": {"items": [{"type": "Colour"}]}})", "$.root.items[0].type: unknown type name"},
      {R"({"root": {"items": [{"attributes": -1}]}})", "$.root.items[0].attributes"},
      {R"({"root": {"items": [{"name": "\u4e2d"}]}})", "Windows-1252"},
      {R"({"root": {"items": [{"name": ")" + std::string(64, 'n') + R"("}]}})", "a name holds at most 63"},
      {R"({"root": {"items": [{"name": "%a%", "vaule": "1"}]}})", "$.root.items[0].vaule: unknown key"},
      {R"({"root": {"items": [{"class": "CDrvItemCutInstr", "value": "x"}]}})", "needs the text number"},
      {R"({"root": {"items": [{"class": "CDrvItemList", "params": [1, 2]}]}})", "expected four numbers"},
      {R"({"root": {"items": [{"class": "CDrvItemDlgVar", "ext": {"mx": 1}}]}})", "$.root.items[0].ext.mx"},
      {R"({"root": {"items": [{"id": 9128, "type": "Integer", "value": "40"}]}})",
       "$.root.items[0].type: the file keeps no type for text number 9128; it reads back as \"String\""},
      {R"({"root": {"items": [{"id": 9128, "name": "%Tempo%"}]}})",
       "$.root.items[0].name: the file keeps only"},
      {R"({"root": {"items": [{"id": 9128, "description": "x"}]}})", "$.root.items[0].description"},
      {R"({"root": {"items": [{"id": 9184, "linked": 1, "name": "%PlotInit%", "type": "Bool"}]}})", ".type"},
      {deep + "]}}", "nested too deep"},
      {R"({"root": {"items": [{"id": 9128, "type": "String", "name": "%Speed%"}]}})", ""},  // what it keeps
  };
  for (const auto& [form, message] : cases) {
    std::string error;
    EXPECT_EQ(kerfline::cli::driver_from_json(json::parse(form), error) == nullptr, *message != '\0')
        << form << " gave: " << error;
    EXPECT_NE(error.find(message), std::string::npos) << form << " gave: " << error;
  }
}

TEST(DriverTextForm, EveryClassAndEveryExampleRoundTripByteForByte) {
  const kerfline::test::TempDir dir;
  dir.write("every.json", kEveryClass);
  ASSERT_EQ(run_cli("driver build " + dir.str("every.json") + " -o " + dir.str("every.vmd")).exit_code, 0);
  std::vector<std::string> drivers{dir.str("every.vmd")};
  for (const auto& entry : std::filesystem::directory_iterator(KERFLINE_EXAMPLES_DIR)) {
    const std::string stem = entry.path().stem().string();
    if (entry.path().extension() == ".json")
      drivers.push_back(KERFLINE_BUILT_EXAMPLES_DIR "/" + stem + ".vmd");
  }
  ASSERT_EQ(drivers.size(), 4U);
  for (const std::string& vmd : drivers) {
    const auto dumped = run_cli("driver dump --json " + vmd);
    ASSERT_EQ(dumped.exit_code, 0) << vmd << ": " << dumped.out;
    dir.write("again.json", dumped.out);
    ASSERT_EQ(run_cli("driver build " + dir.str("again.json") + " -o " + dir.str("again.vmd")).exit_code, 0);
    std::ifstream original(vmd, std::ios::binary);
    EXPECT_EQ(dir.read("again.vmd"), std::string(std::istreambuf_iterator<char>(original), {})) << vmd;
    // Nothing the author wrote is lost on the way in either.
    if (vmd == drivers[0]) {
      EXPECT_EQ(nlohmann::json::parse(dumped.out), nlohmann::json::parse(kEveryClass));
    }
  }
}
