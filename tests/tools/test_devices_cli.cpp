// `kerfline devices` as a technician uses it on a suite directory.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli_runner.hpp"
#include "fixtures/temp_dir.hpp"

using kerfline::test::run_cli;
using kerfline::test::TempDir;

namespace {

struct CliRow {
  const char* args;  // after "--home <suite> devices"
  int exit_code;
  const char* expected;  // must appear in the output
};

// Run in order against one suite, each row seeing what the earlier ones did.
const CliRow kSession[] = {
    {"list", 0, "no devices in"},
    {R"(add "Vinyl 1" --port /dev/ttyUSB0 --driver {HOME}gx.vdv)", 0,
     "spool directory {HOME}SPOOLER{/}SL_VINYL 1{/}"},
    {"add Big:2 --port COM3 --driver /drv/big.vmd", 0, "added Big:2 on COM3"},
    {"list --json", 0,
     "\"name\": \"Vinyl 1\",\n    \"port\": \"/dev/ttyUSB0\",\n    \"driver\": \"{HOME}gx.vdv\""},
    {R"(show "Vinyl 1")", 0, "DevDrvInfo         Roland GX\n"},
    {"show Big:2 --json", 0, "\"class\": \"CCutterDeviceSettings\""},
    {"show nobody", 1, "no device \"nobody\""},
    {"add a=b --port x --driver y", 1, "cannot be a device name"},
    {"add x --port 0123456789012345678901234567890123 --driver y", 2, "at most 31 characters"},
    {R"(remove "Vinyl 1")", 0, "removed Vinyl 1"},
    {R"(remove "Vinyl 1")", 1, "no device"},
    {"list", 0, "Big:2"},
};

TEST(DevicesCli, SessionOnOneSuite) {
  TempDir suite;
  suite.write("gx.vdv", std::string("Roland GX  \0", 12));
  const std::string sep = std::filesystem::path("/").make_preferred().string();
  const auto expand = [&](std::string text) {
    for (const auto& [key, value] :
         {std::pair<std::string, std::string>{"{HOME}", suite.str()}, {"{/}", sep}}) {
      for (auto at = text.find(key); at != std::string::npos; at = text.find(key, at + value.size())) {
        text.replace(at, key.size(), value);
      }
    }
    return text;
  };
  for (const CliRow& row : kSession) {
    const auto r = run_cli("--home " + suite.str() + " devices " + expand(row.args));
    EXPECT_EQ(r.exit_code, row.exit_code) << row.args << "\n" << r.out;
    EXPECT_NE(r.out.find(expand(row.expected)), std::string::npos) << row.args << "\n" << r.out;
  }
  EXPECT_FALSE(std::filesystem::exists(suite.path() / "SPOOLER" / "SL_VINYL 1"));
  EXPECT_TRUE(std::filesystem::exists(suite.path() / "SPOOLER" / "SL_BIG_2" / "index.hot"));
}

}  // namespace
