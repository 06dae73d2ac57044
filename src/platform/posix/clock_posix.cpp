#include <time.h>

#include <cerrno>

#include "platform/clock.hpp"

namespace kerfline::platform {

std::uint64_t tick_ms64() {
  timespec ts{};
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return static_cast<std::uint64_t>(ts.tv_sec) * 1000U + static_cast<std::uint64_t>(ts.tv_nsec) / 1000000U;
}

void sleep_ms(std::uint32_t ms) {
  timespec req{static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000) * 1000000L};
  while (nanosleep(&req, &req) != 0 && errno == EINTR) {
  }
}

std::uint64_t file_time_now() {
  timespec ts{};
  clock_gettime(CLOCK_REALTIME, &ts);
  return file_time_from_unix(ts.tv_sec, static_cast<std::uint32_t>(ts.tv_nsec));
}

bool local_time_from_file_time(std::uint64_t file_time, CalendarTime& out) {
  const std::int64_t seconds = unix_from_file_time(file_time);
  const auto t = static_cast<time_t>(seconds);
  if (static_cast<std::int64_t>(t) != seconds) return false;
  tm fields{};
  if (localtime_r(&t, &fields) == nullptr) return false;
  out.year = fields.tm_year + 1900;
  out.month = fields.tm_mon + 1;
  out.day = fields.tm_mday;
  out.day_of_week = fields.tm_wday;
  out.hour = fields.tm_hour;
  out.minute = fields.tm_min;
  out.second = fields.tm_sec;
  const std::uint64_t sub = file_time % 10000000ULL;
  out.millisecond = static_cast<int>(sub / 10000ULL);
  return true;
}

}  // namespace kerfline::platform
