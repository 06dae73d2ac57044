// Tool statistics through a real INI file in a fresh directory.
#include <gtest/gtest.h>
#include <time.h>

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <string>
#include <tuple>
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

  [[nodiscard]] std::optional<std::string> key(const char* name) const {
    return ini::find_string("Cutter 1", name, ini_);
  }

  kerfline::test::TempDir dir_;
  std::string ini_ = (dir_.path() / "plotman.ini").string();
  CJobStatistics stats_;
};

TEST_F(JobStatistics, SaveWritesIndexedKeysAndCountInPrintfF) {
  ini::write_value("Cutter 1", "DevOut", "/dev/ttyUSB0", ini_);
  ini::write_value("Cutter 1", "szTool1", "stale", ini_);
  ini::write_value("Cutter 1", "dDist1", "9.000000", ini_);
  const std::pair<double, const char*> rows[] = {
      {1234.56789, "1234.567890"}, {0.0, nullptr},  // distance 0: keys deleted
      {-2.5, "-2.500000"},         {0.1, "0.100000"},       {1e10, "10000000000.000000"},
      {2.0 / 3.0, "0.666667"},     {0.0000004, "0.000000"},  // nonzero: still written
      {-1e-7, "-0.000000"}};
  for (const auto& [dist, text] : rows) stats_.AddToolDist(std::to_string(stats_.GetSize()).c_str(), dist);
  stats_.SaveToolStat();
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(key(("szTool" + std::to_string(i)).c_str()).has_value(), rows[i].second != nullptr) << i;
    EXPECT_EQ(key(("dDist" + std::to_string(i)).c_str()),
              rows[i].second ? std::optional<std::string>(rows[i].second) : std::nullopt);
  }
  EXPECT_EQ(key("nStatCount"), "7");
  EXPECT_EQ(key("DevOut"), "/dev/ttyUSB0");  // the device's other keys stay
}

TEST_F(JobStatistics, DistancesSurviveARestart) {
  stats_.AddToolDist("Blade", 5.0);
  stats_.AddToolDist("Pen", 0.125);
  stats_.AddToolDist("Drag knife", 1.0 / 3.0);
  stats_.AddToolDist(std::string(300, 'n').c_str(), 1.0);  // names are cut on load
  stats_.SaveToolStat();
  CJobStatistics later;  // as after a restart
  later.SetDevice("Cutter 1");
  later.SetIni(ini_.c_str());
  later.LoadToolStat();
  EXPECT_EQ(list_of(later),
            (Tools{{"Blade", 5.0}, {"Pen", 0.125}, {"Drag knife", 0.333333}, {std::string(259, 'n'), 1.0}}));
}

TEST_F(JobStatistics, AddLoadAndClearTouchTheFirstEntryOfTheExactName) {
  stats_.AddToolDist("A", 1.0);
  stats_.AddToolDist("B", 2.0);
  stats_.AddToolDist("A", 0.5);
  stats_.AddToolDist("a", 4.0);  // case matters
  stats_.AddToolDist(nullptr, 1.0);
  EXPECT_EQ(stats_.GetAt(3), nullptr);
  EXPECT_EQ(stats_.GetAt(-1), nullptr);
  stats_.SaveToolStat();
  stats_.LoadToolStat();
  EXPECT_EQ(list_of(stats_), (Tools{{"A", 1.5}, {"B", 2.0}, {"a", 4.0}, {"A", 1.5}, {"B", 2.0}, {"a", 4.0}}));
  stats_.ClearToolStat("A");
  stats_.ClearToolStat("missing");
  stats_.AddToolDist("B", 1.0);
  EXPECT_EQ(list_of(stats_), (Tools{{"A", 0.0}, {"B", 3.0}, {"a", 4.0}, {"A", 1.5}, {"B", 2.0}, {"a", 4.0}}));
  stats_.FreeToolInfoArray();
  EXPECT_EQ(stats_.GetSize(), 0);
}

struct FileRow {
  const char* section;  // lines of [Cutter 1]
  Tools expected;
};

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

TEST_F(JobStatistics, FirstQueryAfterResetStampsTheTime) {
  stats_.ResetToolStat();
  ini::write_value("Cutter 1", "lastResetH", "31092419", ini_);  // the high half alone is no stamp
  // The stamp is the time of the query; its text is the stored stamp's (see the next test).
  const auto before = std::chrono::system_clock::now();
  const std::string first = stats_.FormatTimeString();
  const auto after = std::chrono::system_clock::now();

  const auto half = [&](const char* name) {  // a signed decimal
    const std::string text = key(name).value_or("none");
    std::int32_t v = 0;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), v);
    EXPECT_TRUE(r.ec == std::errc{} && r.ptr == text.data() + text.size()) << name << ": " << text;
    return static_cast<std::uint32_t>(v);
  };
  const std::uint64_t stamp = (std::uint64_t{half("lastResetH")} << 32) | half("lastResetL");
  const auto file_time = [](std::chrono::system_clock::time_point tp) {  // 100 ns units since 1601
    return static_cast<std::uint64_t>(
               std::chrono::duration_cast<std::chrono::nanoseconds>(tp.time_since_epoch()).count() / 100) +
           116444736000000000ULL;
  };
  EXPECT_GE(stamp, file_time(before) - 1);
  EXPECT_LE(stamp, file_time(after) + 1);

  const std::string file_before = dir_.read("plotman.ini");
  EXPECT_EQ(std::string(stats_.FormatTimeString()), first);
  EXPECT_EQ(dir_.read("plotman.ini"), file_before) << "the second query stamped again";
}

TEST_F(JobStatistics, StoredStampIsShownInLocalTime) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      // high, low, text
      {"31092419", "1521470976", "5.3.2024 6:7:8"},
      {"31092419", "-2073496320", "5.3.2024 6:8:18"},
      {"0", "1", "1.1.1601 0:0:0"},
      {"-1", "5", ""}};  // not a time
  for (const auto& [high, low, text] : rows) {
    ini::write_value("Cutter 1", "lastResetH", high, ini_);
    ini::write_value("Cutter 1", "lastResetL", low, ini_);
    EXPECT_STREQ(stats_.FormatTimeString(), text);
    EXPECT_EQ(key("lastResetL"), low) << "a stored time was stamped over";
  }
}

}  // namespace
