// `kerfline driver dialog` on the example driver and on a driver whose dialog
// variables are broken.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "cli_runner.hpp"
#include "fixtures/temp_dir.hpp"

using kerfline::test::run_cli;
using json = nlohmann::ordered_json;

namespace {

std::string example() { return std::string(KERFLINE_BUILT_EXAMPLES_DIR) + "/dialog-cutter.vmd"; }

TEST(DriverDialog, ExampleAsTextAndJson) {
  const auto text = run_cli("driver dialog '" + example() + "'");
  ASSERT_EQ(text.exit_code, 0) << text.out;
  EXPECT_NE(text.out.find("%Offset%  Knife offset (mm)  [Double"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("range:      0 .. 1.5, step 0.05, enforced"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("conditions: %Optimize% == 1"), std::string::npos) << text.out;

  const auto out = run_cli("driver dialog --json '" + example() + "'");
  ASSERT_EQ(out.exit_code, 0) << out.out;
  const json all = json::parse(out.out);
  ASSERT_EQ(all.size(), 4u);
  const struct {
    const char* name;
    const char* caption;
    const char* shown;
    double max;  // 0: no range
  } rows[] = {{"%Pressure%", "Pressure (g)", "80", 400},
              {"%Speed%", "Speed (cm/s)", "40", 80},
              {"%Optimize%", "Optimize cut order", "1", 0},
              {"%Offset%", "Knife offset (mm)", "0.25", 1.5}};
  for (std::size_t i = 0; i < all.size(); ++i) {
    EXPECT_EQ(all[i]["name"], rows[i].name);
    EXPECT_EQ(all[i]["caption"], rows[i].caption);
    EXPECT_EQ(all[i]["shown"], rows[i].shown);
    if (rows[i].max == 0) {
      EXPECT_TRUE(all[i]["range"].is_null()) << rows[i].name;
    } else {
      EXPECT_EQ(all[i]["range"]["max"].get<double>(), rows[i].max) << rows[i].name;
    }
    EXPECT_TRUE(all[i]["problems"].empty()) << rows[i].name;
  }
}

TEST(DriverDialog, BrokenVariablesAreReportedNotFatal) {
  kerfline::test::TempDir dir;
  dir.write("broken.json", R"({"format": "VM6DRV", "root": {"name": "Broken", "items": [
    {"class": "CDrvItemDlgVar", "name": "%Upside%", "type": "Integer", "value": "3", "dlgText": "Upside",
     "dlgFormat": "%d", "ext": {"flags": 1, "min": 10, "max": 1, "increments": 1}},
    {"class": "CDrvItemDlgVar", "name": "%Stray%", "type": "Double", "value": "2.5", "dlgText": "Stray",
     "dlgFormat": "50% of %.1f"},
    {"class": "CDrvItemDlgVar", "name": "%Init%", "id": 0, "value": "IN;", "dlgText": "", "description": "Init text",
     "dlgFormat": "[%s]"}
  ]}})");
  const std::string vmd = dir.str() + "broken.vmd";
  ASSERT_EQ(run_cli("driver build '" + dir.str() + "broken.json' -o '" + vmd + "'").exit_code, 0);
  const auto out = run_cli("driver dialog --json '" + vmd + "'");
  ASSERT_EQ(out.exit_code, 0) << out.out;
  const json all = json::parse(out.out);
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0]["problems"].size(), 1u);
  EXPECT_NE(all[0]["problems"][0].get<std::string>().find("range"), std::string::npos);
  EXPECT_NE(all[1]["problems"][0].get<std::string>().find("stray"), std::string::npos);
  EXPECT_EQ(all[1]["shown"], "2.5");  // a broken format is not applied
  EXPECT_EQ(all[2]["caption"], "Init text");
  EXPECT_EQ(all[2]["shown"], "[IN;]");

  EXPECT_NE(run_cli("driver dialog '" + dir.str() + "missing.vmd'").exit_code, 0);
}

}  // namespace
