// Topic logs beside plotman.ini, in a temporary suite directory, with a
// fixed clock.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <utility>

#include "device/topic_log.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "platform/paths.hpp"

namespace kerfline::device {
namespace {

namespace fs = std::filesystem;

platform::CalendarTime new_years_eve() { return {2009, 12, 31, 4, 23, 59, 59, 0}; }

const std::pair<platform::CalendarTime, const char*> kStamps[] = {
    {new_years_eve(), "31.12.09 - 23:59:59 "},
    {{2000, 1, 2, 0, 3, 4, 5, 0}, "02.01.00 - 03:04:05 "},
    {{2023, 7, 9, 0, 0, 0, 0, 999}, "09.07.23 - 00:00:00 "}};

class LogStamp : public ::testing::TestWithParam<std::pair<platform::CalendarTime, const char*>> {};

TEST_P(LogStamp, HasTheSuiteFormat) { EXPECT_EQ(format_log_stamp(GetParam().first), GetParam().second); }

INSTANTIATE_TEST_SUITE_P(Table, LogStamp, ::testing::ValuesIn(kStamps), test::RowIndex{});

std::set<std::string> entries(const fs::path& root) {
  std::set<std::string> all;
  for (const auto& e : fs::recursive_directory_iterator(root)) all.insert(e.path().string());
  return all;
}

// The suite is a subdirectory, so that its parent is ours to inspect. With
// "lf_.." and "lf_sub" present, topics with a path separator would name files
// outside the suite and below it.
class TopicLog : public ::testing::Test {
 protected:
  void SetUp() override {
    platform::set_home_dir(suite_.string() + "/");
    set_log_clock(&new_years_eve);
    dir_.write("suite/plotman.ini", "[Log]\nDev=1\nOff=0\nText=abc\nTwo=2\n../../lf=1\nsub/x=1\n..\\lf=1\n");
    fs::create_directory(suite_ / "lf_..");
    fs::create_directory(suite_ / "lf_sub");
  }
  void TearDown() override {
    set_log_clock(nullptr);
    platform::set_home_dir("");
  }
  test::TempDir dir_;
  fs::path suite_ = dir_.path() / "suite";
};

struct LogRow {
  const char* topic;
  int action;
  const char* before;  // the log file's contents before the call (null: none)
  const char* text;
  const char* after;  // and after it (null: none)
};

class TopicLogCall : public TopicLog, public ::testing::WithParamInterface<LogRow> {};

// Whatever the call, nothing but the topic's log file changes.
TEST_P(TopicLogCall, LeavesTheLogAsTheTableSays) {
  const LogRow& row = GetParam();
  const std::string name = std::string("lf_") + row.topic + ".log";
  if (row.before != nullptr) dir_.write("suite/" + name, row.before);
  std::set<std::string> expected = entries(dir_.path());
  EXPECT_EQ(LogFileMan(row.topic, row.action, row.text), 1);
  if (row.after != nullptr) {
    expected.insert((suite_ / name).string());
    EXPECT_EQ(dir_.read("suite/" + name), row.after);
  } else {
    expected.erase((suite_ / name).string());
  }
  EXPECT_EQ(entries(dir_.path()), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, TopicLogCall,
    ::testing::Values(LogRow{"Dev", 3, nullptr, "x", "31.12.09 - 23:59:59 x"},
                      LogRow{"Dev", 3, "a\n", "y\n", "a\n31.12.09 - 23:59:59 y\n"},
                      LogRow{"Dev", 3, nullptr, nullptr, "31.12.09 - 23:59:59 "},
                      LogRow{"Two", 2, "old;", "new\r\n", "old;new\r\n"},
                      LogRow{"Dev", 1, "old", "x", nullptr}, LogRow{"Dev", 1, nullptr, "x", nullptr},
                      // Logging off: key 0, missing, not a number.
                      LogRow{"Off", 3, nullptr, "x", nullptr}, LogRow{"Missing", 2, nullptr, "x", nullptr},
                      LogRow{"Text", 2, nullptr, "x", nullptr}, LogRow{"", 3, nullptr, "x", nullptr},
                      LogRow{"Off", 1, "kept", "x", "kept"},
                      // Unknown actions.
                      LogRow{"Dev", 0, "kept", "x", "kept"}, LogRow{"Dev", 4, nullptr, "x", nullptr},
                      LogRow{"Dev", -1, nullptr, "x", nullptr},
                      // Switched on, but naming a file elsewhere.
                      LogRow{"../../lf", 3, nullptr, "x", nullptr}, LogRow{"sub/x", 3, nullptr, "x", nullptr},
                      LogRow{"..\\lf", 3, nullptr, "x", nullptr}),
    test::RowIndex{});

TEST_F(TopicLog, AFileThatCannotBeOpenedIsSkipped) {
  fs::create_directory(suite_ / "lf_Dev.log");  // a directory in its place
  EXPECT_EQ(LogFileMan("Dev", 3, "x"), 1);
  EXPECT_EQ(LogFileMan("Dev", 2, "x"), 1);
  EXPECT_EQ(LogFileMan(nullptr, 3, "x"), 1);
  EXPECT_TRUE(fs::is_directory(suite_ / "lf_Dev.log"));
}

}  // namespace
}  // namespace kerfline::device
