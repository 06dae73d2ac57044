// `kerfline driver dialog --json` on the example driver and on a driver whose
// dialog variables are broken.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <tuple>

#include "cli_runner.hpp"
#include "fixtures/temp_dir.hpp"

using kerfline::test::run_cli;
using json = nlohmann::ordered_json;

namespace {

TEST(DriverDialog, ExampleAsJson) {
  const std::string example = KERFLINE_BUILT_EXAMPLES_DIR "/dialog-cutter.vmd";
  const auto out = run_cli("driver dialog --json " + example);
  ASSERT_EQ(out.exit_code, 0) << out.out;
  const json all = json::parse(out.out);
  // name, caption, shown value, range maximum (0: no range)
  const std::tuple<const char*, const char*, const char*, double> rows[] = {
      {"%Pressure%", "Pressure (g)", "80", 400},
      {"%Speed%", "Speed (cm/s)", "40", 80},
      {"%Optimize%", "Optimize cut order", "1", 0},
      {"%Offset%", "Knife offset (mm)", "0.25", 1.5}};
  ASSERT_EQ(all.size(), std::size(rows));
  for (std::size_t i = 0; i < all.size(); ++i) {
    const auto& [name, caption, shown, max] = rows[i];
    EXPECT_EQ(all[i]["name"], name);
    EXPECT_EQ(all[i]["caption"], caption);
    EXPECT_EQ(all[i]["shown"], shown);
    EXPECT_EQ(all[i]["range"].is_null() ? 0.0 : all[i]["range"]["max"].get<double>(), max);
    EXPECT_TRUE(all[i]["problems"].empty()) << name;
  }
}

TEST(DriverDialog, BrokenVariablesAreReportedNotFatal) {
  const kerfline::test::TempDir dir;
  dir.write("broken.json", R"({"format": "VM6DRV", "root": {"name": "Broken", "items": [
    {"class": "CDrvItemDlgVar", "name": "%Upside%", "type": "Integer", "value": "3", "dlgText": "Upside",
     "dlgFormat": "%d", "ext": {"flags": 1, "min": 10, "max": 1, "increments": 1}},
    {"class": "CDrvItemDlgVar", "name": "%Stray%", "type": "Double", "value": "2.5", "dlgFormat": "50% of %.1f"},
    {"class": "CDrvItemDlgVar", "name": "%Init%", "id": 0, "value": "IN;", "description": "Init text",
     "dlgFormat": "[%s]"}]}})");
  ASSERT_EQ(run_cli("driver build " + dir.str("broken.json") + " -o " + dir.str("broken.vmd")).exit_code, 0);
  const auto out = run_cli("driver dialog --json " + dir.str("broken.vmd"));
  ASSERT_EQ(out.exit_code, 0) << out.out;
  const json all = json::parse(out.out);
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0]["problems"].size(), 1u);
  EXPECT_NE(all[0]["problems"][0].get<std::string>().find("range"), std::string::npos);
  EXPECT_NE(all[1]["problems"][0].get<std::string>().find("stray"), std::string::npos);
  EXPECT_EQ(all[1]["shown"], "2.5");  // a broken format is not applied
  EXPECT_EQ(all[2]["caption"], "Init text");
  EXPECT_EQ(all[2]["shown"], "[IN;]");
}

}  // namespace
