// Per-topic log files beside plotman.ini, switched on in its section "Log".
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/clock.hpp"

namespace kerfline::device {

// The log file of a topic: suite directory + "lf_" + topic + ".log";
// nothing for a topic that would name a file elsewhere (a path separator in
// it).
std::optional<std::string> topic_log_path(std::string_view topic);

// The stamp written before a text by action 3: "dd.mm.yy - HH:MM:SS ".
std::string format_log_stamp(const platform::CalendarTime& t);

// The clock the stamps read; tests set a fixed one (null: the local time).
using LogClock = platform::CalendarTime (*)();
void set_log_clock(LogClock clock);

// LogFileMan without the C boundary.
void write_topic_log(std::string_view topic, int action, std::string_view text);

}  // namespace kerfline::device
