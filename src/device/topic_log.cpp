#include "device/topic_log.hpp"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace kerfline::device {
namespace {

std::atomic<LogClock> g_clock{nullptr};

platform::CalendarTime local_now() {
  platform::CalendarTime t;
  platform::local_time_from_file_time(platform::file_time_now(), t);
  return t;
}

void two_digits(std::string& out, int value) {
  value = ((value % 100) + 100) % 100;
  out += static_cast<char>('0' + value / 10);
  out += static_cast<char>('0' + value % 10);
}

void append(const std::string& path, std::string_view stamp, std::string_view text) {
  std::ofstream file(std::filesystem::path(path), std::ios::binary | std::ios::app);
  if (!file) return;  // a log that cannot be opened is skipped
  file.write(stamp.data(), static_cast<std::streamsize>(stamp.size()));
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace

std::optional<std::string> topic_log_path(std::string_view topic) {
  if (topic.find_first_of("/\\") != std::string_view::npos) return std::nullopt;
  std::string name = "lf_";
  name += topic;
  name += ".log";
  return platform::home_dir() + name;
}

std::string format_log_stamp(const platform::CalendarTime& t) {
  std::string out;
  out.reserve(20);
  two_digits(out, t.day);
  out += '.';
  two_digits(out, t.month);
  out += '.';
  two_digits(out, t.year);
  out += " - ";
  two_digits(out, t.hour);
  out += ':';
  two_digits(out, t.minute);
  out += ':';
  two_digits(out, t.second);
  out += ' ';
  return out;
}

void set_log_clock(LogClock clock) { g_clock.store(clock); }

void write_topic_log(std::string_view topic, int action, std::string_view text) {
  const auto path = topic_log_path(topic);
  if (!path) return;
  if (platform::ini::read_int("Log", topic, 0, "plotman.ini") == 0) return;
  switch (action) {
    case 1: {
      std::error_code ignored;
      std::filesystem::remove(std::filesystem::path(*path), ignored);
      break;
    }
    case 2:
      append(*path, {}, text);
      break;
    case 3: {
      const LogClock clock = g_clock.load();
      append(*path, format_log_stamp(clock != nullptr ? clock() : local_now()), text);
      break;
    }
    default:
      break;
  }
}

}  // namespace kerfline::device

extern "C" {

KERFLINE_API int32_t LogFileMan(const char* topic, int32_t action, const char* text) noexcept {
  if (topic == nullptr) return 1;
  // Log writing is not checked.
  kerfline::platform::guarded_void([topic, action, text] {
    kerfline::device::write_topic_log(topic, action, text != nullptr ? text : "");
  });
  return 1;
}

}  // extern "C"
