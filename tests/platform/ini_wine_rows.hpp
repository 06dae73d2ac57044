// Rows of the INI tables where Wine's profile functions, which serve the
// Windows build under test, answer otherwise than Windows as our engine
// implements it. docs/windows.md describes each group and the decision.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "platform/ini.hpp"

namespace kerfline::test {

inline bool system_engine_differs() {
  if (!platform::ini::uses_system_engine()) return false;
  static const std::set<std::string> rows = {
      "Table/GetString.GivesValueOrDefaultWithWin32Count/row17",
      "Table/GetString.GivesValueOrDefaultWithWin32Count/row22",
      "Table/GetString.GivesValueOrDefaultWithWin32Count/row26",
      "Table/GetString.GivesValueOrDefaultWithWin32Count/row29",
      "Table/ListForms.FillTheBufferAsWindowsDoes/row1",
      "Table/ListForms.FillTheBufferAsWindowsDoes/row2",
      "Table/ListForms.FillTheBufferAsWindowsDoes/row3",
      "Table/ListForms.FillTheBufferAsWindowsDoes/row5",
      "Table/ListForms.FillTheBufferAsWindowsDoes/row8",
      "Table/ListForms.FillTheBufferAsWindowsDoes/row16",
      "Table/ListForms.FillTheBufferAsWindowsDoes/row17",
      "Table/ListForms.FillTheBufferAsWindowsDoes/row18",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row2",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row5",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row6",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row7",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row11",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row12",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row13",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row15",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row17",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row22",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row25",
      "Table/IniWrite.ChangesOnlyWhatItIsAbout/row26",
  };
  const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
  return info != nullptr && rows.count(std::string(info->test_suite_name()) + "." + info->name()) > 0;
}

}  // namespace kerfline::test
