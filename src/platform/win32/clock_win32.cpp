#include "platform/clock.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

// GetTickCount64 moves in steps of 10-16 ms; time-outs and the tests of
// short waits need the millisecond, which the performance counter gives.
std::uint64_t tick_ms64() {
  static const LONGLONG frequency = [] {
    LARGE_INTEGER f{};
    QueryPerformanceFrequency(&f);
    return f.QuadPart > 0 ? f.QuadPart : 1;
  }();
  LARGE_INTEGER now{};
  QueryPerformanceCounter(&now);
  const auto ticks = static_cast<unsigned long long>(now.QuadPart);
  const auto per_second = static_cast<unsigned long long>(frequency);
  return ticks / per_second * 1000ULL + ticks % per_second * 1000ULL / per_second;
}

void sleep_ms(std::uint32_t ms) { Sleep(ms); }

std::uint64_t file_time_now() {
  FILETIME ft{};
  GetSystemTimeAsFileTime(&ft);
  return win32::make_u64(ft.dwHighDateTime, ft.dwLowDateTime);
}

bool local_time_from_file_time(std::uint64_t file_time, CalendarTime& out) {
  const FILETIME utc{win32::low_dword(file_time), win32::high_dword(file_time)};
  FILETIME local{};
  SYSTEMTIME st{};
  if (!FileTimeToLocalFileTime(&utc, &local) || !FileTimeToSystemTime(&local, &st)) return false;
  out.year = st.wYear;
  out.month = st.wMonth;
  out.day = st.wDay;
  out.day_of_week = st.wDayOfWeek;
  out.hour = st.wHour;
  out.minute = st.wMinute;
  out.second = st.wSecond;
  out.millisecond = st.wMilliseconds;
  return true;
}

}  // namespace kerfline::platform
