// The tool's exit codes, messages and encodings as a user meets them.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <filesystem>

#include "cli_runner.hpp"
#include "driver_text_form.hpp"
#include "fixtures/temp_dir.hpp"

using kerfline::test::run_cli;
using kerfline::test::TempDir;

namespace {

std::string built(const char* name) { return std::string(KERFLINE_BUILT_EXAMPLES_DIR) + "/" + name + ".vmd"; }

struct Case {
  std::string args;
  int exit_code;
  std::string out;  // the whole output, or with a leading '~' a part of it
};

void expect_cases(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    const auto r = run_cli(c.args);
    EXPECT_EQ(r.exit_code, c.exit_code) << c.args << "\n" << r.out;
    if (c.out.rfind('~', 0) == 0) {
      EXPECT_NE(r.out.find(c.out.substr(1)), std::string::npos) << c.args << "\n" << r.out;
    } else {
      EXPECT_EQ(r.out, c.out) << c.args;
    }
  }
}

}  // namespace

TEST(CliTruth, ExitCodesAndMessages) {
  TempDir dir;
  dir.write("bad.vmd", "hello");
  dir.write("t.txt", "a&T(%x%)");
  const std::string d = dir.str();
  const std::string cutter = built("hpgl-cutter");
  expect_cases({
      {"frobnicate", 2, "~kerfline: \"frobnicate\" is not a command of kerfline\ncommands of kerfline:\n"},
      {"help", 2, "~\"help\" is not a command of kerfline\n"},
      {"driver frob", 2, "~\"frob\" is not a command of kerfline driver\n"},
      {"driver info '" + d + "bad.vmd'", 1, "~bad.vmd: invalid driver file: unexpected end of file"},
      {"eval '" + d + "'", 1, "~cannot read template " + d + ": Is a directory\n"},
      {"eval '" + d + "none.txt'", 1, "~none.txt: No such file or directory\n"},
      {"eval --var '%x%=5' '" + d + "t.txt'", 0, "a5"},
      {"eval -e '&T(%x%)' --var %x%=1 --var %y%=2", 0, "1"},
      {"eval -e 'IN;' --newline -o -", 0, "IN;\n"},
      {"eval -e 'IN;' -o '" + d + "out.txt'", 0, ""},
      {"eval -e x > /dev/full", 1, "kerfline: cannot write to standard output: No space left on device\n"},
      {"functions > /dev/full", 1, "~No space left on device"},
      {"driver dump '" + cutter + "' > /dev/full", 1, "~No space left on device"},
      {"driver build '" KERFLINE_EXAMPLES_DIR "/hpgl-cutter.json' -o - | cmp - '" + cutter + "'", 0, ""},
      {"functions", 0, "~\n%[ ... ]% arithmetic: + - * / ^ and SIN(x) COS(x)"},
      {"driver get '" + cutter + "' %PenUp% --type int", 1, "~%PenUp% holds \"PU\", which is not a number"},
      {"driver get '" + cutter + "' %Speed% --tool Messer", 0, "30\n"},
      {"driver get '" + cutter + "' %MatSpeed% --material Flock --json", 0,
       R"({"name":"%MatSpeed%","value":"20"})"
       "\n"},
      {"driver get '" + cutter + "' %Speed% --tool Nope", 1, "kerfline: the driver has no tool named Nope\n"},
      {"eval -e '中'", 1, "~holds a character that Windows-1252 cannot hold"},
      {"eval -e 'Größe'", 0, "Größe"},
      {"eval --raw -e 'Größe' | od -An -tx1", 0, " 47 72 f6 df 65\n"},
  });
  EXPECT_EQ(dir.read("out.txt"), "IN;");
  EXPECT_FALSE(std::filesystem::exists("-"));
}

TEST(CliTruth, SetRefusesWhatAHostWouldAndReportsAFailedStore) {
  TempDir dir;
  const std::string copy = dir.str() + "c.vmd";
  std::filesystem::copy_file(built("dialog-cutter"), copy);
  const std::string unwritable = "sh -c \"trap '' XFSZ; ulimit -f 0; '" KERFLINE_CLI "' driver set '" + copy;
  expect_cases({
      {"driver set '" + copy + "' %Speed% 9999", 1,
       "~\"9999\" for %Speed% is outside the dialog variable's range"},
      {"driver set '" + copy + "' %Speed% abc", 1, "~is not a value of the variable's type"},
      {"driver check '" + copy + "'", 0, ""},
      {"driver set '" + copy + "' %Speed% 9999 --force", 0, ""},
      {"driver check '" + copy + "'", 1, "warning: %Speed%: 9999 is outside its range 1 to 80\n"},
      {"driver info '" + copy + "'", 0,
       "~materials: 0\nwarning: %Speed%: 9999 is outside its range 1 to 80\n"},
  });
  const auto failed = kerfline::test::run_shell(unwritable + "' %Speed% 20\"");
  EXPECT_EQ(failed.exit_code, 1);
  EXPECT_EQ(failed.out.rfind("Kerfline error: Can not write driver:\n", 0), 0U) << failed.out;
  EXPECT_NE(failed.out.find("kerfline: cannot store"), std::string::npos) << failed.out;
  EXPECT_EQ(run_cli("driver get '" + copy + "' %Speed%").out, "9999\n");
}

TEST(CliTruth, NonAsciiNamesMatchWhatDumpShows) {
  TempDir dir;
  dir.write("u.json", R"({"root": {"items": [{"name": "%Größe%", "value": "ä"}]}})");
  const std::string file = dir.str() + "u.vmd";
  ASSERT_EQ(run_cli("driver build '" + dir.str() + "u.json' -o '" + file + "'").exit_code, 0);
  EXPECT_NE(run_cli("driver dump '" + file + "'").out.find("%Größe% = ä"), std::string::npos);
  EXPECT_EQ(run_cli("driver get '" + file + "' '%Größe%'").out, "ä\n");
  EXPECT_EQ(run_cli("eval --driver '" + file + "' -e '&T(%Größe%)'").out, "ä");
}

TEST(CliTruth, MissingBaseDriverIsReported) {
  TempDir dir;
  std::filesystem::copy_file(built("hpgl-cutter-plus"), dir.path() / "plus.vmd");
  const auto r = run_cli("driver check '" + dir.str() + "plus.vmd'");
  EXPECT_EQ(r.exit_code, 1);
  EXPECT_NE(r.out.find("base driver hpgl-cutter.vmd cannot be read"), std::string::npos) << r.out;
}

TEST(CliTruth, TextFormRefusesWhatItWouldLose) {
  const std::string long_name(64, 'n');
  const struct {
    std::string form;
    const char* message;
  } cases[] = {
      {R"({"root": {"items": [{"id": 9128, "type": "Integer", "value": "40"}]}})",
       "$.root.items[0].type: the file keeps no type for text number 9128; it reads back as \"String\""},
      {R"({"root": {"items": [{"id": 9128, "name": "%Tempo%"}]}})",
       "$.root.items[0].name: the file keeps only"},
      {R"({"root": {"items": [{"id": 9128, "description": "x"}]}})", "$.root.items[0].description"},
      {R"({"root": {"items": [{"id": 9184, "linked": 1, "name": "%PlotInit%", "type": "Bool"}]}})", ".type"},
      {R"({"root": {"items": [{"name": "%a%", "vaule": "1"}]}})", "$.root.items[0].vaule: unknown key"},
      {R"({"root": {}, "titel": "x"})", "$.titel: unknown key"},
      {R"({"root": {"items": [{"class": "CDrvItemDlgVar", "ext": {"mx": 1}}]}})", "$.root.items[0].ext.mx"},
      {R"({"root": {"items": [{"name": ")" + long_name + R"("}]}})", "a name holds at most 63"},
  };
  for (const auto& c : cases) {
    std::string error;
    EXPECT_EQ(kerfline::cli::driver_from_json(nlohmann::ordered_json::parse(c.form), error), nullptr)
        << c.form;
    EXPECT_NE(error.find(c.message), std::string::npos) << c.form << " gave: " << error;
  }
  std::string error;
  EXPECT_NE(
      kerfline::cli::driver_from_json(
          nlohmann::ordered_json::parse(
              R"({"root": {"items": [{"id": 9128, "type": "String", "name": "%Speed%", "value": "1"}]}})"),
          error),
      nullptr)
      << error;
}

TEST(CliTruth, PortsSayWhatGivesAccessToAPortThatIsThere) {
  namespace fs = std::filesystem;
  TempDir dir;
  dir.write("sys/class/usbmisc/lp0/dev", "180:0\n");
  const fs::path node = dir.write("dev/usb/lp0", "");
  for (const auto& entry : fs::recursive_directory_iterator(dir.path())) {
    if (entry.is_directory()) fs::permissions(entry.path(), fs::perms(0755));
  }
  fs::permissions(dir.path(), fs::perms(0755));
  fs::permissions(node, fs::perms::none);
  // Root may open anything: ask as an ordinary user.
  const std::string user = getuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  const auto r = kerfline::test::run_shell("KERFLINE_SYSTEM_ROOT='" + dir.str() + "' " + user +
                                           "'" KERFLINE_CLI "' device ports");
  EXPECT_EQ(r.exit_code, 0) << r.out;
  EXPECT_EQ(r.out.rfind("lp0\tlp0\t" + node.string() + "\n  " + node.string() + ": Permission denied", 0), 0U)
      << r.out;
  EXPECT_NE(r.out.find("share/kerfline/udev/70-kerfline.rules"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("dialout"), std::string::npos) << r.out;
}
