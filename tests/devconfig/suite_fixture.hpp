// A temporary suite directory made the library's home for one test, with
// helpers to read back the lines of an INI section.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fixtures/temp_dir.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace kerfline::test {

class SuiteDir : public ::testing::Test {
 protected:
  SuiteDir() { platform::set_home_dir(dir_.str()); }
  ~SuiteDir() override { platform::set_home_dir(""); }

  [[nodiscard]] std::string home() const { return dir_.str(); }
  [[nodiscard]] std::string file(const std::string& leaf) const { return dir_.str(leaf); }
  // The section's lines ("key=value") in file order.
  [[nodiscard]] std::vector<std::string> lines(const std::string& section, const std::string& leaf) const {
    return platform::ini::read_section(section, file(leaf));
  }
  // Replaces "{HOME}" in a text by the suite directory.
  [[nodiscard]] std::string expand(std::string text) const {
    for (auto at = text.find("{HOME}"); at != std::string::npos; at = text.find("{HOME}")) {
      text = platform::native_separators(text.replace(at, 6, home()));
    }
    return text;
  }

  TempDir dir_;
};

}  // namespace kerfline::test
