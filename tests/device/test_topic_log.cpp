// Topic logs beside plotman.ini, in a temporary suite directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "device/topic_log.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "platform/paths.hpp"

namespace kerfline::device {
namespace {

using test::TempDir;

platform::CalendarTime new_years_eve() {
  platform::CalendarTime t;
  t.year = 2009;
  t.month = 12;
  t.day = 31;
  t.hour = 23;
  t.minute = 59;
  t.second = 59;
  return t;
}

class TopicLog : public ::testing::Test {
 protected:
  // The suite is a subdirectory, so that its parent is ours to inspect.
  void SetUp() override {
    suite_ = dir_.path() / "suite";
    platform::set_home_dir(suite_.string() + "/");
    set_log_clock(&new_years_eve);
    write("plotman.ini", "[Log]\nDev=1\nOff=0\nText=abc\nTwo=2\nlf=1\n");
  }
  void write(const std::string& name, const std::string& text) const { dir_.write("suite/" + name, text); }
  [[nodiscard]] std::string read(const std::string& name) const { return dir_.read("suite/" + name); }
  void TearDown() override {
    set_log_clock(nullptr);
    platform::set_home_dir("");
  }
  [[nodiscard]] bool exists(const char* name) const { return std::filesystem::exists(suite_ / name); }
  TempDir dir_;
  std::filesystem::path suite_;
};

struct StampRow {
  platform::CalendarTime time;
  const char* stamp;
};

class LogStamp : public ::testing::TestWithParam<StampRow> {};

TEST_P(LogStamp, HasTheSuiteFormat) { EXPECT_EQ(format_log_stamp(GetParam().time), GetParam().stamp); }

INSTANTIATE_TEST_SUITE_P(Table, LogStamp,
                         ::testing::Values(StampRow{new_years_eve(), "31.12.09 - 23:59:59 "},
                                           StampRow{{2000, 1, 2, 0, 3, 4, 5, 0}, "02.01.00 - 03:04:05 "},
                                           StampRow{{2023, 7, 9, 0, 0, 0, 0, 999}, "09.07.23 - 00:00:00 "},
                                           StampRow{{1999, 10, 10, 0, 10, 10, 10, 0},
                                                    "10.10.99 - 10:10:10 "}),
                         test::RowIndex{});

TEST_F(TopicLog, StampedEntryAppendsTimeAndText) {
  EXPECT_EQ(LogFileMan("Dev", 3, "x"), 1);
  EXPECT_EQ(read("lf_Dev.log"), "31.12.09 - 23:59:59 x");
  EXPECT_EQ(LogFileMan("Dev", 3, "y\n"), 1);
  EXPECT_EQ(read("lf_Dev.log"), "31.12.09 - 23:59:59 x31.12.09 - 23:59:59 y\n");
}

TEST_F(TopicLog, PlainEntryAppendsTheTextAsItIs) {
  write("lf_Two.log", "old;");
  EXPECT_EQ(LogFileMan("Two", 2, "new\r\n"), 1);
  EXPECT_EQ(read("lf_Two.log"), "old;new\r\n");
}

TEST_F(TopicLog, DeleteRemovesTheFile) {
  write("lf_Dev.log", "old");
  EXPECT_EQ(LogFileMan("Dev", 1, nullptr), 1);
  EXPECT_FALSE(exists("lf_Dev.log"));
  EXPECT_EQ(LogFileMan("Dev", 1, nullptr), 1);  // already gone
}

struct SilentRow {
  const char* topic;
  int action;
};

class TopicLogSilent : public TopicLog, public ::testing::WithParamInterface<SilentRow> {};

// Logging off (key 0, missing, not a number) and unknown actions: no file
// appears anywhere.
TEST_P(TopicLogSilent, WritesNothing) {
  const std::filesystem::path outside = dir_.path();
  const auto before = std::distance(std::filesystem::directory_iterator(outside), {});
  EXPECT_EQ(LogFileMan(GetParam().topic, GetParam().action, "x"), 1);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(outside), {}), before);
  for (const auto& e : std::filesystem::recursive_directory_iterator(suite_)) {
    EXPECT_EQ(e.path().filename(), "plotman.ini");
  }
}

INSTANTIATE_TEST_SUITE_P(Table, TopicLogSilent,
                         ::testing::Values(SilentRow{"Off", 3}, SilentRow{"Missing", 3},
                                           SilentRow{"Missing", 2}, SilentRow{"Text", 2}, SilentRow{"Dev", 0},
                                           SilentRow{"Dev", 4}, SilentRow{"Dev", -1}, SilentRow{"", 3}),
                         test::RowIndex{});

// With "lf_.." and "lf_sub" present, these topics would name files outside
// the suite and below it; none is written.
TEST_F(TopicLog, PathSeparatorTopicsAreRefusedEvenWhenSwitchedOn) {
  write("plotman.ini", "[Log]\n../../lf=1\nsub/x=1\n..\\lf=1\n");
  std::filesystem::create_directory(suite_ / "lf_..");
  std::filesystem::create_directory(suite_ / "lf_sub");
  for (const char* topic : {"../../lf", "sub/x", "..\\lf"}) EXPECT_EQ(LogFileMan(topic, 3, "x"), 1);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_.path()), {}), 1);
  EXPECT_EQ(std::distance(std::filesystem::recursive_directory_iterator(suite_), {}), 3);
}

TEST_F(TopicLog, AFileThatCannotBeOpenedIsSkipped) {
  std::filesystem::create_directory(suite_ / "lf_Dev.log");  // a directory in its place
  EXPECT_EQ(LogFileMan("Dev", 3, "x"), 1);
  EXPECT_EQ(LogFileMan("Dev", 2, "x"), 1);
  EXPECT_TRUE(std::filesystem::is_directory(suite_ / "lf_Dev.log"));
}

TEST_F(TopicLog, NullArgumentsAreHarmless) {
  EXPECT_EQ(LogFileMan(nullptr, 3, "x"), 1);
  EXPECT_EQ(LogFileMan("Dev", 3, nullptr), 1);
  EXPECT_EQ(read("lf_Dev.log"), "31.12.09 - 23:59:59 ");
}

}  // namespace
}  // namespace kerfline::device
