// The example drivers as a driver author and a technician use them.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cli_runner.hpp"
#include "fixtures/temp_dir.hpp"

using kerfline::test::run_cli;
using kerfline::test::TempDir;

namespace {

std::string built(const char* name) { return std::string(KERFLINE_BUILT_EXAMPLES_DIR) + "/" + name + ".vmd"; }

}  // namespace

TEST(ExampleDrivers, EveryOneRoundTripsByteForByte) {
  TempDir dir;
  int seen = 0;
  for (const auto& entry : std::filesystem::directory_iterator(KERFLINE_EXAMPLES_DIR)) {
    if (entry.path().extension() != ".json") continue;
    ++seen;
    const std::string stem = entry.path().stem().string();
    const auto dumped = run_cli("driver dump --json '" + built(stem.c_str()) + "'");
    ASSERT_EQ(dumped.exit_code, 0) << stem << ": " << dumped.out;
    dir.write(stem + ".json", dumped.out);
    const std::string rebuilt = dir.str() + stem + ".vmd";
    ASSERT_EQ(run_cli("driver build '" + dir.str() + stem + ".json' -o '" + rebuilt + "'").exit_code, 0)
        << stem;
    std::ifstream a(built(stem.c_str()), std::ios::binary);
    std::ifstream b(rebuilt, std::ios::binary);
    const std::string bytes_a((std::istreambuf_iterator<char>(a)), {});
    const std::string bytes_b((std::istreambuf_iterator<char>(b)), {});
    EXPECT_FALSE(bytes_a.empty()) << stem;
    EXPECT_EQ(bytes_a, bytes_b) << stem;
  }
  EXPECT_EQ(seen, 3);
}

TEST(ExampleDrivers, InfoShowsWhatAHostReads) {
  const auto r = run_cli("driver info '" + built("hpgl-cutter") + "'");
  ASSERT_EQ(r.exit_code, 0) << r.out;
  const std::string expected_tail =
      "name:      Demo HPGL Cutter\n"
      "title:     Demo HPGL Cutter\n"
      "class:     Cutter\n"
      "flags:     0x0001\n"
      "tools:     2\n"
      "materials: 2\n";
  ASSERT_GE(r.out.size(), expected_tail.size());
  EXPECT_EQ(r.out.substr(r.out.size() - expected_tail.size()), expected_tail);
}

TEST(ExampleDrivers, ToolsAndMaterialsListBothFlagSenses) {
  const auto tools = run_cli("driver tools '" + built("hpgl-cutter") + "'");
  EXPECT_EQ(tools.out,
            "Messer               Contour    flags 0x0005  3 variables\n"
            "Stift                Transfer   flags 0x0008  2 variables\n");
  const auto materials = run_cli("driver materials '" + built("hpgl-cutter") + "'");
  EXPECT_EQ(materials.out, "Vinyl                2 variables\nFlock                2 variables\n");
}

TEST(ExampleDrivers, DumpShowsTheTree) {
  const auto r = run_cli("driver dump '" + built("hpgl-cutter-plus") + "'");
  EXPECT_EQ(r.out,
            "VM6DRV  Demo HPGL Cutter Plus\n"
            "  %DriverName% = Demo HPGL Cutter Plus  (String)\n"
            "  %DriverClass% = Cutter  (String)\n"
            "  %BaseDrv% = hpgl-cutter.vmd  (String)\n"
            "  %Speed% = 60  (String)\n"
            "  %PlotInit% =   (String, linked)\n"
            "  %PlotEnd% =   (String, linked)\n"
            "  %ComSettings% =   (String, linked)\n");
}

TEST(ExampleDrivers, LinkedVariablesReadFromTheBaseDriver) {
  const auto init = run_cli("driver get '" + built("hpgl-cutter-plus") + "' %PlotInit%");
  EXPECT_EQ(init.out, "IN;VS&T(%Speed%);FS&T(%Pressure%);\n");
  EXPECT_EQ(run_cli("driver get '" + built("hpgl-cutter-plus") + "' %Speed% --type int").out, "60\n");
}

TEST(ExampleDrivers, SetStoresAndGetReadsBack) {
  TempDir dir;
  const std::string copy = dir.str() + "cutter.vmd";
  std::filesystem::copy_file(built("hpgl-cutter"), copy);
  EXPECT_EQ(run_cli("driver set '" + copy + "' %Overcut% 0.75").exit_code, 0);
  EXPECT_EQ(run_cli("driver get '" + copy + "' %Overcut% --type double").out, "0.75\n");
  const auto missing = run_cli("driver get '" + copy + "' %NoSuchThing%");
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_NE(missing.out.find("variable %NoSuchThing% not found (result -5)"), std::string::npos)
      << missing.out;
}

TEST(EvalCommand, TemplatesWithTheDriversVariables) {
  const std::string cutter = "--driver '" + built("hpgl-cutter") + "' ";
  const std::string dialog = "--driver '" + built("dialog-cutter") + "' ";
  const struct {
    std::string args;
    int exit_code;
    const char* out;
  } cases[] = {
      {cutter + "-e 'IN;VS&T(%Speed%);FS&T(%Pressure%);'", 0, "IN;VS40;FS80;"},
      {cutter + "--var %Tool%=2 -e '{[&T(%Tool%) == 1][VS&T(%Speed%);][VS60;]}'", 0, "VS60;"},
      {cutter + "-e 'OC%[&T(%Overcut%)*40]%;'", 0, "OC20;"},
      {dialog + "-e 'IN;{[&T(%Optimize%) == 1][OS1;][OS0;]}FS%[&T(%Pressure%)/10]%;'", 0, "IN;OS1;FS8;"},
      {"--var x=3 -e '%[2*3.4]% &T(x)'", 0, "7 3"},
      {"-e '&Mid(\"abc\")'", 1, "[incorrect number of parameters: Operator Mid expects 3 parameters]"},
      {"-e '&T(\"x\"'", 1, "[invalid expression (no end found): &(]"},
      {"--var novalue -e x", 2, "kerfline: --var expects NAME=VALUE, got \"novalue\"\n"},
  };
  for (const auto& c : cases) {
    const auto r = run_cli("eval " + c.args);
    EXPECT_EQ(r.exit_code, c.exit_code) << c.args;
    EXPECT_EQ(r.out, c.out) << c.args;
  }
}

TEST(FunctionsCommand, ListsTheRegistryAndOneFunctionsHelp) {
  const auto all = run_cli("functions");
  ASSERT_EQ(all.exit_code, 0);
  EXPECT_EQ(std::count(all.out.begin(), all.out.end(), '\n'), 103);
  EXPECT_EQ(all.out.rfind("&Upper(Text)\n&Lower(Text)\n", 0), 0U);
  EXPECT_NE(all.out.find("&OR(A, B)  [shadowed]\n"), std::string::npos);
  EXPECT_EQ(
      run_cli("functions mid").out,
      "&Mid(Text, i, n)\n  parameters: 3\n  First 'i' characters of \"Text\", starting at character 'n'\n");
  EXPECT_EQ(run_cli("functions NoSuch").exit_code, 1);
}
