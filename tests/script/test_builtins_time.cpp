// Time functions with an injected clock, and calendar formatting.
#include "builtin_rows.hpp"
#include "script/builtins.hpp"

namespace kerfline::test {
namespace {

// 2026-11-22 01:02:03.456 UTC; local time is UTC + 1 hour.
std::uint64_t fixed_now() { return platform::file_time_from_unix(1795309323, 456000000); }
std::uint32_t fixed_tick() { return 4000000000U; }
std::uint64_t fixed_counter() { return 1; }

class BuiltinTime : public ::testing::Test {
 protected:
  void SetUp() override { script::set_time_source(&source_); }
  void TearDown() override { script::set_time_source(nullptr); }
  script::TimeSource source_{fixed_now, fixed_tick, fixed_counter, local_plus_one_hour};
};

TEST_F(BuiltinTime, CallsGiveExactOutput) {
  expect_rows({
      // Clock functions.
      {"&SysDate()", "Nov 22 2026"},
      {"&SysTime()", "2:2:3"},
      {"&Tick()", "4000000000"},
      {"&Rand(1, 100)", "26"},  // counter 1: seed 1
      // Durations.
      {R"(&FrmtTime(3723004, "!h:!m:!s.!Ms"))", "01:02:03.004"},
      {R"(&FrmtTime(90000000, "!h h"))", "25 h"},
      {R"(&FrmtTime(-5, "!s"))", "00"},
      {R"(&FrmtTime(61000, "!M !m !S !"))", "!M 01 !S !"},
      {R"(&FrmtTime("x", "!h!m!s!Ms"))", "000000000"},
      // Calendar codes.
      {R"(&FrmtTime2(3723000, "%H:%M:%S"))", "01:02:03"},
      {R"(&FrmtTime2(0, "%a %A %b %B %d %j %m %y %Y %p %I %w %U %W %%"))",
       "Thu Thursday Jan January 01 001 01 70 1970 AM 12 4 00 00 %"},
      {R"(&FrmtTime2(1700000000000, "%c|%x|%X|%p %I"))", "11/14/23 22:13:20|11/14/23|22:13:20|PM 10"},
      {R"(&FrmtTime2(1709208000000, "%d %b %j %U %W %#d/%#m"))", "29 Feb 060 08 09 29/2"},
      {R"(&FrmtTime2(-1000, "%Y-%m-%d %H:%M:%S"))", "1969-12-31 23:59:59"},
      {R"(&FrmtTime2(1709208000000, "%#x"))", "Thursday, February 29, 2024"},
      {R"(&FrmtTime2(0, "%q %Z%z 100%"))", "%q  100%"},
      {R"(&FrmtTime3(3723000, "%H:%M %b"))", "02:02 Jan"},
      // Beyond the year 3000 local time is not asked for: UTC.
      {R"(&FrmtTime3(32503680000000, "%Y %H"))", "3000 00"},
  });
}

}  // namespace
}  // namespace kerfline::test
