#include "platform/clock.hpp"

namespace kerfline::platform {
namespace {
// File-time units between 1601-01-01 and 1970-01-01.
constexpr std::uint64_t kUnixEpochAsFileTime = 116444736000000000ULL;
constexpr std::uint64_t kUnitsPerSecond = 10000000ULL;
}  // namespace

std::uint32_t tick_ms() { return static_cast<std::uint32_t>(tick_ms64()); }

std::uint64_t file_time_from_unix(std::int64_t seconds, std::uint32_t nanoseconds) {
  const std::int64_t units =
      seconds * static_cast<std::int64_t>(kUnitsPerSecond) + static_cast<std::int64_t>(nanoseconds / 100);
  return kUnixEpochAsFileTime + static_cast<std::uint64_t>(units);
}

std::int64_t unix_from_file_time(std::uint64_t file_time) {
  const auto signed_units =
      static_cast<std::int64_t>(file_time) - static_cast<std::int64_t>(kUnixEpochAsFileTime);
  // Floor division, so moments before 1970 round towards the past.
  std::int64_t seconds = signed_units / static_cast<std::int64_t>(kUnitsPerSecond);
  if (signed_units % static_cast<std::int64_t>(kUnitsPerSecond) < 0) --seconds;
  return seconds;
}

}  // namespace kerfline::platform
