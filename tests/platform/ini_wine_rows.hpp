// Rows of the INI tables where Wine's profile functions, which serve the
// Windows build under test, answer otherwise than Windows as our engine
// implements it. docs/windows.md describes each group and the decision.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "platform/ini.hpp"

namespace kerfline::test {

inline bool system_engine_differs() {
  if (!platform::ini::uses_system_engine()) return false;
  static const std::map<std::string, std::set<std::string>> rows = {
      {"Table/GetString.GivesValueOrDefaultWithWin32Count", {"17", "22", "26", "29"}},
      {"Table/ListForms.FillTheBufferAsWindowsDoes", {"1", "2", "3", "5", "8", "16", "17", "18"}},
      {"Table/IniWrite.ChangesOnlyWhatItIsAbout",
       {"2", "5", "6", "7", "11", "12", "13", "15", "17", "19", "20", "21", "22", "25", "26", "27", "30",
        "31", "32"}},
  };
  const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
  if (info == nullptr) return false;
  const std::string name = std::string(info->test_suite_name()) + "." + info->name();
  const std::size_t row = name.rfind("/row");
  const auto test = row == std::string::npos ? rows.end() : rows.find(name.substr(0, row));
  return test != rows.end() && test->second.count(name.substr(row + 4)) > 0;
}

}  // namespace kerfline::test
