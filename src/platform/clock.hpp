// Time: a millisecond tick for time-outs, sleeping, and Windows file times
// (the unit the suite stores in INI files).
#pragma once

#include <cstdint>

namespace kerfline::platform {

// Milliseconds from an arbitrary start, never going back. Wraps at 2^32 as
// GetTickCount does; compute durations with unsigned subtraction.
std::uint32_t tick_ms();

// A 64-bit millisecond count for code that must not see the wrap.
std::uint64_t tick_ms64();

void sleep_ms(std::uint32_t ms);

// The current time as a Windows file time: 100-ns units since 1601-01-01 UTC.
std::uint64_t file_time_now();

// Converts between file times and Unix time (seconds since 1970, UTC).
std::uint64_t file_time_from_unix(std::int64_t seconds, std::uint32_t nanoseconds = 0);
std::int64_t unix_from_file_time(std::uint64_t file_time);

// Calendar fields of a moment in local time, as SYSTEMTIME has them.
struct CalendarTime {
  int year = 0;
  int month = 0;        // 1-12
  int day = 0;          // 1-31
  int day_of_week = 0;  // 0 = Sunday
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

// The local calendar time of a file time; false when the OS cannot represent
// it (out of range).
bool local_time_from_file_time(std::uint64_t file_time, CalendarTime& out);

}  // namespace kerfline::platform
