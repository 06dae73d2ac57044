// File functions on files in a temporary directory.
#include <chrono>
#include <filesystem>
#include <thread>

#include "builtin_rows.hpp"
#include "fixtures/temp_dir.hpp"
#include "platform/paths.hpp"
#include "script/builtins.hpp"

namespace kerfline::test {
namespace {

namespace fs = std::filesystem;

class BuiltinFiles : public ::testing::Test {
 protected:
  void SetUp() override { script::set_time_source(&source_); }
  void TearDown() override { script::set_time_source(nullptr); }

  std::string path(const std::string& leaf) const { return (dir_.path() / leaf).generic_string(); }
  std::string quoted(const std::string& leaf) const { return "\"" + path(leaf) + "\""; }

  TempDir dir_;
  script::TimeSource source_{platform::file_time_now, platform::tick_ms, [] { return std::uint64_t{1}; },
                             local_plus_one_hour};
};

TEST_F(BuiltinFiles, SizesDatesAndExistence) {
  dir_.write("data.bin", std::string(1500, 'x'));
  dir_.write("empty.txt", "");
  fs::create_directory(dir_.path() / "sub");
  // 2024-03-05 14:07:09 UTC.
  const auto when =
      std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(1709647629)));
  fs::last_write_time(dir_.path() / "data.bin", when);
  const std::string missing = path("missing.txt");
  dir_.write("Res/Head.txt", "abc");
  // Four backslashes in a literal are one backslash in the value.
  const std::string windows_path = dir_.path().generic_string() + "\\\\\\\\res\\\\\\\\head.TXT";
  expect_rows({
      {"&Size(" + quoted("data.bin") + ")", "1500"},
      {"&SizeK(" + quoted("data.bin") + ")", "1.5"},
      {"&SizeK(" + quoted("empty.txt") + ")", "0.0"},
      {"&Size(" + quoted("DATA.BIN") + ")", "1500"},  // names are found without regard to case
      {"&Size(\"" + windows_path + "\")", "3"},       // and with Windows separators
      {"&Date(" + quoted("data.bin") + ")", "Mar 05 2024"},
      {"&Time(" + quoted("data.bin") + ")", "15:07:09"},
      {"&Size(" + quoted("missing.txt") + ")", "<!-- Can't open file: " + missing + " -->"},
      {"&SizeK(" + quoted("sub") + ")", "<!-- Can't open file: " + path("sub") + " -->"},
      {"&Date(" + quoted("missing.txt") + ")", "<!-- Can't open file: " + missing + " -->"},
      {"&Time(\"\")", "<!-- Can't open file:  -->"},
      {"&FExist(" + quoted("data.bin") + ")", "1"},
      {"&FExist(" + quoted("sub") + ")", "1"},
      {"&FExist(" + quoted("missing.txt") + ")", "0"},
      {"&FExist(\"\")", "0"},
  });
}

TEST_F(BuiltinFiles, WriteReplaceAndAppend) {
  fs::create_directory(dir_.path() / "sub");
  expect_rows({
      {"&FWrite(" + quoted("out.txt") + ", \"one\", \"\")", ""},
      {"&FWrite(" + quoted("out.txt") + ", \"two\", \"\")", ""},
      {"&FWrite(" + quoted("OUT.txt") + ", \"+3\", \"append\")", ""},
      {"&FWrite(" + quoted("sub") + ", \"x\", \"\")", "<!-- Can't open file: " + path("sub") + " -->"},
  });
  EXPECT_EQ(dir_.read("out.txt"), "two+3");
  EXPECT_EQ(fs::exists(dir_.path() / "OUT.txt"), platform::path_separator() == '\\');  // Windows ignores case
}

TEST_F(BuiltinFiles, WaitForRemovedReturnsOnceTheFileIsTaken) {
  std::thread taker([&] {
    while (!fs::exists(dir_.path() / "job.cmd")) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    fs::remove(dir_.path() / "job.cmd");
  });
  EXPECT_EQ(evaluate_call("&FWrite(" + quoted("job.cmd") + ", \"go\", \"WaitForRemoved\")"), "");
  taker.join();
  EXPECT_FALSE(fs::exists(dir_.path() / "job.cmd"));
}

TEST_F(BuiltinFiles, ImportEvaluatesTheFile) {
  dir_.write("part.txt", "<&Upper(\"x\")>");
  expect_rows({
      {"&Import(" + quoted("part.txt") + ")", "<X>"},
      {"&Import(" + quoted("none.txt") + ")", "Unable to read the file: " + path("none.txt")},
      {"&Import(" + quoted("") + ")", "Unable to read the file: " + path("")},
  });
}

TEST_F(BuiltinFiles, AppDirIsTheSuiteDirectory) {
  platform::set_home_dir(dir_.str());
  EXPECT_EQ(evaluate_call("&AppDir()"), platform::native_separators(dir_.str()));
  platform::set_home_dir("");
}

TEST_F(BuiltinFiles, IsoLineNumbers) {
  const std::string program = "%\nG0 X0\n\nG1 X1\r\nM30\n";
  struct Row {
    std::string args;  // after the path
    std::string expected;
  };
  const Row rows[] = {
      {R"("N%d ", 2, 10, 10, "\\\\r\\\\n")", "%\r\nN10 G0 X0\r\n\r\nN20 G1 X1\r\nN30 M30\r\n"},
      {R"("N%03d ", 1, 1, 1, "")", "N001 %\r\nN002 G0 X0\r\n\r\nN003 G1 X1\r\nN004 M30\r\n"},
      {R"("N", 4, 5, -1, ";")", "%;G0 X0;;N5G1 X1;N4M30;"},
      {R"("%-4d|%d%%", 5, 7, 1, "")", "%\r\nG0 X0\r\n\r\nG1 X1\r\n7   |%d%M30\r\n"},
  };
  for (const Row& row : rows) {
    dir_.write("prog.nc", program);
    EXPECT_EQ(evaluate_call("&AddIsoLineNr(" + quoted("prog.nc") + ", " + row.args + ")"), "") << row.args;
    EXPECT_EQ(dir_.read("prog.nc"), row.expected) << row.args;
  }
  dir_.write("prog.nc", program);
  EXPECT_EQ(
      evaluate_call("&AddIsoLineNrExt(" + quoted("prog.nc") + R"(, "N", " ", "%04d", 2, 10, 5, "\\\\n"))"),
      "");
  EXPECT_EQ(dir_.read("prog.nc"), "%\nN0010 G0 X0\n\nN0015 G1 X1\nN0020 M30\n");
  EXPECT_EQ(evaluate_call("&AddIsoLineNr(" + quoted("none.nc") + R"(, "N%d", 1, 1, 1, ""))"),
            "<!-- Can't open file: " + path("none.nc") + " -->");
}

// A link planted at the old fixed temporary name must not be followed.
TEST_F(BuiltinFiles, IsoLineNumbersNeverWriteThroughAPlantedLink) {
  dir_.write("victim.txt", "untouched");
  dir_.write("prog.nc", "G0\n");
  std::error_code ec;
  fs::create_symlink(path("victim.txt"), path("prog.nc.kerfline~"), ec);
  if (ec) GTEST_SKIP() << "no symbolic links here: " << ec.message();
  EXPECT_EQ(evaluate_call("&AddIsoLineNr(" + quoted("prog.nc") + R"(, "N%d ", 1, 1, 1, ""))"), "");
  EXPECT_EQ(dir_.read("prog.nc"), "N1 G0\r\n");
  EXPECT_EQ(dir_.read("victim.txt"), "untouched");
  EXPECT_TRUE(fs::is_symlink(path("prog.nc.kerfline~")));
}

}  // namespace
}  // namespace kerfline::test
