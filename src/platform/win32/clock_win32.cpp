#include "platform/clock.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

std::uint64_t tick_ms64() { return GetTickCount64(); }

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
