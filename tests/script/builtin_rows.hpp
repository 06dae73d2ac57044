// Rows of "template -> exact output" for the built-in functions, evaluated by
// one template pass on an evaluator with the library's tables.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "script/builtins.hpp"
#include "script_fixture.hpp"

namespace kerfline::test {

struct CallRow {
  std::string call;
  std::string expected;
};

inline std::string evaluate_call(const std::string& call) {
  static ScriptBench bench;
  return bench.evaluator->evaluate(call, -1);
}

// Local time as UTC + 1 hour, whatever the machine's zone (for a TimeSource).
inline bool local_plus_one_hour(std::uint64_t file_time, platform::CalendarTime& out) {
  out = script::utc_calendar((platform::unix_from_file_time(file_time) + 3600) * 1000);
  return true;
}

// Checks every row, naming the failing ones by their template.
inline void expect_rows(const std::vector<CallRow>& rows) {
  for (const CallRow& row : rows) EXPECT_EQ(evaluate_call(row.call), row.expected) << row.call;
}

}  // namespace kerfline::test
