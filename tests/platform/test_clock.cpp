#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"
#include "platform/environment.hpp"

#include <cstdlib>
#include <ctime>
#include <tuple>

#include "platform/clock.hpp"

namespace kp = kerfline::platform;

struct FileTimeCase {
  std::int64_t unix_seconds;
  std::uint64_t file_time;
};

class FileTimeConversion : public ::testing::TestWithParam<FileTimeCase> {};

TEST_P(FileTimeConversion, RoundTrips) {
  EXPECT_EQ(kp::file_time_from_unix(GetParam().unix_seconds), GetParam().file_time);
  EXPECT_EQ(kp::unix_from_file_time(GetParam().file_time), GetParam().unix_seconds);
}

INSTANTIATE_TEST_SUITE_P(Table, FileTimeConversion,
                         ::testing::Values(FileTimeCase{0, 116444736000000000ULL},
                                           FileTimeCase{1, 116444736010000000ULL},
                                           FileTimeCase{-11644473600LL, 0ULL},  // 1601-01-01
                                           FileTimeCase{1700000000LL, 133444736000000000ULL},
                                           FileTimeCase{-86400, 116443872000000000ULL}),
                         kerfline::test::RowIndex());

TEST(FileTime, SubSecondUnitsAndFloorBefore1970) {
  EXPECT_EQ(kp::file_time_from_unix(0, 123456789), 116444736000000000ULL + 1234567ULL);
  EXPECT_EQ(kp::unix_from_file_time(116444736000000000ULL - 1), -1);
}

TEST(FileTime, NowIsCloseToTheSystemClock) {
  const std::int64_t now = std::time(nullptr);
  const std::int64_t ours = kp::unix_from_file_time(kp::file_time_now());
  EXPECT_LE(std::llabs(ours - now), 2);
}

TEST(FileTime, LocalCalendarFieldsInUtc) {
  kerfline::platform::set_environment("TZ", "UTC");
  ::tzset();
  kp::CalendarTime t;
  // 2024-02-29 13:45:07.250 UTC, a Thursday.
  const std::uint64_t ft = kp::file_time_from_unix(1709214307, 250000000);
  ASSERT_TRUE(kp::local_time_from_file_time(ft, t));
  EXPECT_EQ(std::tie(t.year, t.month, t.day, t.day_of_week, t.hour, t.minute, t.second, t.millisecond),
            std::tuple(2024, 2, 29, 4, 13, 45, 7, 250));
  kerfline::platform::unset_environment("TZ");
  ::tzset();
}

TEST(Tick, AdvancesWithSleep) {
  const std::uint64_t start = kp::tick_ms64();
  kp::sleep_ms(30);
  const std::uint64_t elapsed = kp::tick_ms64() - start;
  EXPECT_GE(elapsed, 30U);
  EXPECT_EQ(static_cast<std::uint32_t>(kp::tick_ms() - static_cast<std::uint32_t>(start)) >= 30U, true);
}
