// Time functions: the clock and tick (through a replaceable source, so
// tests can fix "now"), calendar formatting with English names whatever the
// process locale, and duration formatting.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>

#include "script/builtins.hpp"

namespace kerfline::script {
namespace {

std::uint64_t system_counter() {
  return static_cast<std::uint64_t>(std::chrono::high_resolution_clock::now().time_since_epoch().count());
}

constexpr TimeSource kSystemTime{platform::file_time_now, platform::tick_ms, system_counter,
                                 platform::local_time_from_file_time};

std::atomic<const TimeSource*>& current_source() {
  static std::atomic<const TimeSource*> source{&kSystemTime};
  return source;
}

constexpr std::array<const char*, 7> kDays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                           "Thursday", "Friday", "Saturday"};
constexpr std::array<const char*, 12> kMonths{"January",   "February", "March",    "April",
                                              "May",       "June",     "July",     "August",
                                              "September", "October",  "November", "December"};

bool is_leap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int day_of_year(const platform::CalendarTime& t) {  // 0-based
  static constexpr std::array<int, 12> kBefore{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  const int month = std::clamp(t.month, 1, 12);
  return kBefore[static_cast<std::size_t>(month - 1)] + t.day - 1 + (month > 2 && is_leap(t.year) ? 1 : 0);
}

// value with at least `width` digits (zero-padded), or without padding.
void put_number(std::string& out, std::int64_t value, int width, bool pad) {
  std::string digits = std::to_string(value < 0 ? -value : value);
  if (pad && digits.size() < static_cast<std::size_t>(width))
    digits.insert(0, static_cast<std::size_t>(width) - digits.size(), '0');
  if (value < 0) out.push_back('-');
  out += digits;
}

platform::CalendarTime now_local() {
  const TimeSource& source = time_source();
  const std::uint64_t now = source.file_time_now();
  platform::CalendarTime t;
  if (source.local_time(now, t)) return t;
  return utc_calendar(platform::unix_from_file_time(now) * 1000);
}

}  // namespace

void set_time_source(const TimeSource* source) {
  current_source().store(source != nullptr ? source : &kSystemTime);
}

const TimeSource& time_source() { return *current_source().load(); }

platform::CalendarTime local_calendar(std::int64_t unix_ms) {
  std::int64_t seconds = unix_ms / 1000;
  std::int64_t ms = unix_ms % 1000;
  if (ms < 0) {
    ms += 1000;
    --seconds;
  }
  // Up to the year 3000, as the calendar-time object of the Windows build.
  constexpr std::int64_t kLastSecond = 32503680000;
  platform::CalendarTime t;
  if (seconds >= 0 && seconds < kLastSecond &&
      time_source().local_time(
          platform::file_time_from_unix(seconds, static_cast<std::uint32_t>(ms) * 1000000U), t))
    return t;
  return utc_calendar(unix_ms);
}

platform::CalendarTime utc_calendar(std::int64_t unix_ms) {
  // Floor division throughout, so moments before 1970 count backwards.
  std::int64_t days = unix_ms / 86400000;
  std::int64_t in_day = unix_ms % 86400000;
  if (in_day < 0) {
    in_day += 86400000;
    --days;
  }
  platform::CalendarTime t;
  t.day_of_week = static_cast<int>(((days + 4) % 7 + 7) % 7);  // 1970-01-01 was a Thursday
  t.hour = static_cast<int>(in_day / 3600000);
  t.minute = static_cast<int>(in_day / 60000 % 60);
  t.second = static_cast<int>(in_day / 1000 % 60);
  t.millisecond = static_cast<int>(in_day % 1000);
  // Days to civil date (proleptic Gregorian), eras of 400 years.
  days += 719468;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const std::int64_t doe = days - era * 146097;
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  t.day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  t.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  t.year = static_cast<int>(yoe + era * 400 + (t.month <= 2 ? 1 : 0));
  return t;
}

std::string format_calendar(std::string_view format, const platform::CalendarTime& t) {
  std::string out;
  const auto month_index = static_cast<std::size_t>(std::clamp(t.month, 1, 12) - 1);
  const auto day_index = static_cast<std::size_t>(std::clamp(t.day_of_week, 0, 6));
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 == format.size()) {
      out.push_back(format[i]);
      continue;
    }
    std::size_t j = i + 1;
    const bool alternate = format[j] == '#';  // "%#d": no leading zeros
    if (alternate && j + 1 < format.size()) ++j;
    const bool pad = !alternate;
    switch (format[j]) {
      case 'a':
        out.append(kDays[day_index], 3);
        break;
      case 'A':
        out += kDays[day_index];
        break;
      case 'b':
        out.append(kMonths[month_index], 3);
        break;
      case 'B':
        out += kMonths[month_index];
        break;
      case 'c':
        out += format_calendar(alternate ? "%A, %B %#d, %Y %H:%M:%S" : "%m/%d/%y %H:%M:%S", t);
        break;
      case 'd':
        put_number(out, t.day, 2, pad);
        break;
      case 'H':
        put_number(out, t.hour, 2, pad);
        break;
      case 'I':
        put_number(out, t.hour % 12 == 0 ? 12 : t.hour % 12, 2, pad);
        break;
      case 'j':
        put_number(out, day_of_year(t) + 1, 3, pad);
        break;
      case 'm':
        put_number(out, t.month, 2, pad);
        break;
      case 'M':
        put_number(out, t.minute, 2, pad);
        break;
      case 'p':
        out += t.hour < 12 ? "AM" : "PM";
        break;
      case 'S':
        put_number(out, t.second, 2, pad);
        break;
      case 'U':
        put_number(out, (day_of_year(t) + 7 - t.day_of_week) / 7, 2, pad);
        break;
      case 'w':
        put_number(out, t.day_of_week, 1, pad);
        break;
      case 'W':
        put_number(out, (day_of_year(t) + 7 - (t.day_of_week + 6) % 7) / 7, 2, pad);
        break;
      case 'x':
        out += format_calendar(alternate ? "%A, %B %#d, %Y" : "%m/%d/%y", t);
        break;
      case 'X':
        out += format_calendar("%H:%M:%S", t);
        break;
      case 'y':
        put_number(out, (t.year % 100 + 100) % 100, 2, pad);
        break;
      case 'Y':
        put_number(out, t.year, 1, false);
        break;
      case 'z':
      case 'Z':
        break;  // no zone names: they depend on the host's language
      case '%':
        out.push_back('%');
        break;
      default:  // not a code: kept as written
        out.append(format.substr(i, j - i + 1));
        break;
    }
    i = j;
  }
  return out;
}

std::string format_duration(std::int64_t ms, std::string_view format) {
  if (ms < 0) ms = 0;
  std::string out;
  for (std::size_t i = 0; i < format.size(); ++i) {
    const std::string_view rest = format.substr(i);
    if (rest.starts_with("!Ms")) {
      put_number(out, ms % 1000, 3, true);
      i += 2;
    } else if (rest.starts_with("!h")) {
      put_number(out, ms / 3600000, 2, true);
      ++i;
    } else if (rest.starts_with("!m")) {
      put_number(out, ms / 60000 % 60, 2, true);
      ++i;
    } else if (rest.starts_with("!s")) {
      put_number(out, ms / 1000 % 60, 2, true);
      ++i;
    } else {
      out.push_back(format[i]);
    }
  }
  return out;
}

namespace builtin {

std::string tick(ArgStack&, const FunctionRecord&, Evaluator&) {
  return std::to_string(time_source().tick_ms());
}

std::string sys_date(ArgStack&, const FunctionRecord&, Evaluator&) {
  return format_calendar("%b %d %Y", now_local());
}

std::string sys_time(ArgStack&, const FunctionRecord&, Evaluator&) {
  const platform::CalendarTime t = now_local();
  return std::to_string(t.hour) + ":" + std::to_string(t.minute) + ":" + std::to_string(t.second);
}

std::string frmt_time(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [ms, format] = pop_args<2>(args);
  return format_duration(text_to_int64(ms), format);
}

// The value is milliseconds since 1970-01-01 00:00 UTC, shown in UTC, so a
// duration below a day shows as its hours, minutes and seconds.
std::string frmt_time2(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [ms, format] = pop_args<2>(args);
  return format_calendar(format, utc_calendar(text_to_int64(ms)));
}

// The same moment in local time.
std::string frmt_time3(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [ms, format] = pop_args<2>(args);
  return format_calendar(format, local_calendar(text_to_int64(ms)));
}

}  // namespace builtin
}  // namespace kerfline::script
