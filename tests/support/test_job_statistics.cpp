// Tool statistics through a real INI file in a fresh directory.
#include <gtest/gtest.h>
#include <time.h>

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/job_statistics.hpp"
#include "platform/environment.hpp"
#include "platform/ini.hpp"

namespace {

namespace ini = kerfline::platform::ini;
using Tools = std::vector<std::pair<std::string, double>>;

Tools list_of(const CJobStatistics& s) {
  Tools out;
  for (int32_t i = 0; i < s.GetSize(); ++i) out.emplace_back(s.GetAt(i)->szTool, s.GetAt(i)->dDist);
  return out;
}

class JobStatistics : public ::testing::Test {
 protected:
  void SetUp() override {
    // Local time is UTC here, so expected times can be written down.
    kerfline::platform::set_environment("TZ", "UTC0");
    tzset();
    stats_.SetDevice("Cutter 1");
    stats_.SetIni(ini_.c_str());
  }

  // Saves, then loads into a second object on the same file, as after a restart.
  Tools saved_and_reloaded() {
    stats_.SaveToolStat();
    CJobStatistics later;
    later.SetDevice("Cutter 1");
    later.SetIni(ini_.c_str());
    later.LoadToolStat();
    return list_of(later);
  }

  [[nodiscard]] std::optional<std::string> key(const char* name) const {
    return ini::find_string("Cutter 1", name, ini_);
  }

  kerfline::test::TempDir dir_;
  std::string ini_ = (dir_.path() / "plotman.ini").string();
  CJobStatistics stats_;
};

TEST_F(JobStatistics, AddsToTheFirstEntryOfTheExactName) {
  stats_.AddToolDist("Blade", 2.5);
  stats_.AddToolDist("Pen", 1.0);
  stats_.AddToolDist("Blade", 2.5);
  stats_.AddToolDist("blade", 4.0);  // case matters
  EXPECT_EQ(list_of(stats_), (Tools{{"Blade", 5.0}, {"Pen", 1.0}, {"blade", 4.0}}));
  EXPECT_EQ(stats_.GetAt(3), nullptr);
  EXPECT_EQ(stats_.GetAt(-1), nullptr);
  stats_.AddToolDist(nullptr, 1.0);
  EXPECT_EQ(stats_.GetSize(), 3);
}

TEST_F(JobStatistics, SaveWritesIndexedKeysAndCount) {
  ini::write_value("Cutter 1", "DevOut", "/dev/ttyUSB0", ini_);
  ini::write_value("Cutter 1", "szTool1", "stale", ini_);
  ini::write_value("Cutter 1", "dDist1", "9.000000", ini_);
  stats_.AddToolDist("Blade", 1234.56789);
  stats_.AddToolDist("Pen", 0.0);
  stats_.AddToolDist("Router bit", -2.5);
  stats_.SaveToolStat();
  EXPECT_EQ(key("szTool0"), "Blade");
  EXPECT_EQ(key("dDist0"), "1234.567890");
  EXPECT_EQ(key("szTool1"), std::nullopt);  // distance 0: deleted
  EXPECT_EQ(key("dDist1"), std::nullopt);
  EXPECT_EQ(key("szTool2"), "Router bit");
  EXPECT_EQ(key("dDist2"), "-2.500000");
  EXPECT_EQ(key("nStatCount"), "2");
  EXPECT_EQ(key("DevOut"), "/dev/ttyUSB0");  // the device's other keys stay
}

struct DistanceRow {
  double value;
  const char* text;
};

void PrintTo(const DistanceRow& r, std::ostream* os) { *os << r.text; }

class DistanceFormat : public JobStatistics, public ::testing::WithParamInterface<DistanceRow> {};

TEST_P(DistanceFormat, IsPrintfF) {
  stats_.AddToolDist("T", GetParam().value);
  stats_.SaveToolStat();
  EXPECT_EQ(key("dDist0"), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Values, DistanceFormat,
                         ::testing::Values(DistanceRow{5.0, "5.000000"}, DistanceRow{0.1, "0.100000"},
                                           DistanceRow{1e10, "10000000000.000000"},
                                           DistanceRow{0.0000004, "0.000000"},  // nonzero: still written
                                           DistanceRow{2.0 / 3.0, "0.666667"},
                                           DistanceRow{-1e-7, "-0.000000"}),
                         kerfline::test::RowIndex());

TEST_F(JobStatistics, DistancesSurviveARestart) {
  stats_.AddToolDist("Blade", 5.0);
  stats_.AddToolDist("Pen", 0.125);
  stats_.AddToolDist("Drag knife", 1.0 / 3.0);
  EXPECT_EQ(saved_and_reloaded(), (Tools{{"Blade", 5.0}, {"Pen", 0.125}, {"Drag knife", 0.333333}}));
}

TEST_F(JobStatistics, ZeroBeforeNonzeroLosesTheNonzeroOnLoad) {
  stats_.AddToolDist("A", 0.0);
  stats_.AddToolDist("B", 3.0);
  EXPECT_EQ(saved_and_reloaded(), Tools{});
  EXPECT_EQ(key("nStatCount"), "1");
  EXPECT_EQ(key("szTool1"), "B");
}

TEST_F(JobStatistics, LoadAppendsAndClearTouchesTheFirstMatchOnly) {
  stats_.AddToolDist("A", 1.5);
  stats_.AddToolDist("B", 2.0);
  stats_.SaveToolStat();
  stats_.LoadToolStat();
  EXPECT_EQ(list_of(stats_), (Tools{{"A", 1.5}, {"B", 2.0}, {"A", 1.5}, {"B", 2.0}}));
  stats_.ClearToolStat("A");
  stats_.ClearToolStat("missing");
  EXPECT_EQ(list_of(stats_), (Tools{{"A", 0.0}, {"B", 2.0}, {"A", 1.5}, {"B", 2.0}}));
  stats_.AddToolDist("A", 1.0);  // the first one again
  EXPECT_EQ(stats_.GetAt(0)->dDist, 1.0);
  stats_.FreeToolInfoArray();
  EXPECT_EQ(stats_.GetSize(), 0);
}

struct FileRow {
  const char* section;  // lines of [Cutter 1]
  Tools expected;
};

void PrintTo(const FileRow& r, std::ostream* os) { *os << std::string(r.section).substr(0, 40); }

class LoadFromFile : public JobStatistics, public ::testing::WithParamInterface<FileRow> {};

TEST_P(LoadFromFile, ReadsTheSlotsBelowTheCount) {
  dir_.write("plotman.ini", std::string("[Cutter 1]\r\n") + GetParam().section);
  stats_.LoadToolStat();
  EXPECT_EQ(list_of(stats_), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Files, LoadFromFile,
    ::testing::Values(
        // an empty name skips its slot
        FileRow{
            "nStatCount=3\r\nszTool0=A\r\ndDist0=1\r\nszTool1=\r\ndDist1=4\r\nszTool2=C\r\ndDist2=2.5\r\n",
            {{"A", 1.0}, {"C", 2.5}}},
        // slots at or past the count are not read; key names match in any case
        FileRow{"nStatCount=2\r\nSZTOOL1=B\r\nDDIST1=7\r\nszTool2=C\r\ndDist2=1\r\n", {{"B", 7.0}}},
        // a huge count reads only what is there, in slot order
        FileRow{"nStatCount=2147483647\r\nszTool900000=Z\r\ndDist900000=3\r\nszTool4=D\r\ndDist4=1\r\n",
                {{"D", 1.0}, {"Z", 3.0}}},
        // "szTool01" is not the key of slot 1
        FileRow{"nStatCount=5\r\nszTool01=X\r\ndDist01=1\r\n", {}},
        FileRow{"nStatCount=-4\r\nszTool0=A\r\ndDist0=1\r\n", {}}, FileRow{"szTool0=A\r\ndDist0=1\r\n", {}},
        // distances are read as atof reads them, with the point
        FileRow{"nStatCount=7\r\nszTool0=a\r\ndDist0=abc\r\nszTool1=b\r\ndDist1=1,5\r\nszTool2=c\r\n"
                "dDist2=+2.5\r\nszTool3=d\r\ndDist3=\"4.5\"\r\nszTool4=e\r\nszTool5=f\r\ndDist5=1e3\r\n"
                "szTool6=g\r\ndDist6=-.25mm\r\n",
                {{"a", 0.0}, {"b", 1.0}, {"c", 2.5}, {"d", 4.5}, {"e", 0.0}, {"f", 1000.0}, {"g", -0.25}}}),
    kerfline::test::RowIndex());

TEST_F(JobStatistics, LongToolNamesAreCutOnLoad) {
  const std::string name(300, 'n');
  stats_.AddToolDist(name.c_str(), 1.0);
  EXPECT_EQ(saved_and_reloaded(), (Tools{{name.substr(0, 259), 1.0}}));
}

TEST_F(JobStatistics, ResetZeroesDeletesAndUnstamps) {
  ini::write_value("Cutter 1", "lastResetH", "31092419", ini_);
  ini::write_value("Cutter 1", "lastResetL", "1521470976", ini_);
  stats_.AddToolDist("A", 1.0);
  stats_.AddToolDist("B", 2.0);
  stats_.SaveToolStat();
  stats_.ResetToolStat();
  EXPECT_EQ(list_of(stats_), (Tools{{"A", 0.0}, {"B", 0.0}}));
  for (const char* gone : {"szTool0", "dDist0", "szTool1", "dDist1"})
    EXPECT_EQ(key(gone), std::nullopt) << gone;
  EXPECT_EQ(key("nStatCount"), "0");
  EXPECT_EQ(key("lastResetH"), "0");
  EXPECT_EQ(key("lastResetL"), "0");
}

std::string utc_text(std::chrono::system_clock::time_point tp) {
  const time_t t = std::chrono::system_clock::to_time_t(tp);
  tm f{};
  f = *std::gmtime(&t);  // one thread: the static result is safe here
  return std::to_string(f.tm_mday) + "." + std::to_string(f.tm_mon + 1) + "." +
         std::to_string(f.tm_year + 1900) + " " + std::to_string(f.tm_hour) + ":" + std::to_string(f.tm_min) +
         ":" + std::to_string(f.tm_sec);
}

std::int64_t signed_half(const std::optional<std::string>& text) {
  std::int32_t v = 0;
  if (!text) return INT64_MIN;
  const auto r = std::from_chars(text->data(), text->data() + text->size(), v);
  return r.ec == std::errc{} && r.ptr == text->data() + text->size() ? v : INT64_MIN;
}

TEST_F(JobStatistics, FirstQueryAfterResetStampsTheTime) {
  stats_.ResetToolStat();
  const auto before = std::chrono::system_clock::now();
  const std::string first = stats_.FormatTimeString();
  const auto after = std::chrono::system_clock::now();
  EXPECT_TRUE(first == utc_text(before) || first == utc_text(after)) << first;

  const std::int64_t high = signed_half(key("lastResetH"));
  const std::int64_t low = signed_half(key("lastResetL"));
  ASSERT_NE(high, INT64_MIN) << "lastResetH is not a signed decimal";
  ASSERT_NE(low, INT64_MIN) << "lastResetL is not a signed decimal";
  const std::uint64_t stamp =
      (static_cast<std::uint64_t>(static_cast<std::uint32_t>(high)) << 32) | static_cast<std::uint32_t>(low);
  const auto file_time = [](std::chrono::system_clock::time_point tp) {
    const auto units =
        std::chrono::duration_cast<std::chrono::duration<std::int64_t, std::ratio<1, 10000000>>>(
            tp.time_since_epoch());
    return static_cast<std::uint64_t>(units.count()) + 116444736000000000ULL;
  };
  EXPECT_GE(stamp, file_time(before) - 1);
  EXPECT_LE(stamp, file_time(after) + 1);

  const std::string file_before = dir_.read("plotman.ini");
  EXPECT_EQ(std::string(stats_.FormatTimeString()), first);
  EXPECT_EQ(dir_.read("plotman.ini"), file_before) << "the second query stamped again";
}

struct StampRow {
  const char* high;
  const char* low;
  const char* text;
};

void PrintTo(const StampRow& r, std::ostream* os) { *os << r.high << " " << r.low; }

class StoredStamp : public JobStatistics, public ::testing::WithParamInterface<StampRow> {};

TEST_P(StoredStamp, IsShownInLocalTime) {
  ini::write_value("Cutter 1", "lastResetH", GetParam().high, ini_);
  ini::write_value("Cutter 1", "lastResetL", GetParam().low, ini_);
  EXPECT_STREQ(stats_.FormatTimeString(), GetParam().text);
  EXPECT_EQ(key("lastResetL"), GetParam().low) << "a stored time was stamped over";
}

INSTANTIATE_TEST_SUITE_P(Halves, StoredStamp,
                         ::testing::Values(StampRow{"31092419", "1521470976", "5.3.2024 6:7:8"},
                                           StampRow{"31092419", "-2073496320", "5.3.2024 6:8:18"},
                                           StampRow{"0", "1", "1.1.1601 0:0:0"},
                                           StampRow{"-1", "5", ""}),  // not a time
                         kerfline::test::RowIndex());

TEST_F(JobStatistics, HighHalfAloneDoesNotCountAsStamped) {
  ini::write_value("Cutter 1", "lastResetH", "31092419", ini_);
  ini::write_value("Cutter 1", "lastResetL", "0", ini_);
  EXPECT_STRNE(stats_.FormatTimeString(), "5.3.2024 6:7:8");
  EXPECT_NE(key("lastResetL"), "0");
}

}  // namespace
