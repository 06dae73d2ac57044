// Each test gets its own suite directory and a library that has not started
// yet; the suite directory override is cleared afterwards.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "fixtures/temp_dir.hpp"
#include "frame/library_state.hpp"
#include "platform/paths.hpp"

namespace kerfline::test {

class FrameTest : public ::testing::Test {
 protected:
  void SetUp() override {
    frame::testing::reset_library_state();
    platform::set_home_dir(suite.path().string());
  }
  void TearDown() override {
    frame::testing::reset_library_state();
    platform::set_home_dir("");
  }

  TempDir suite;
};

// One entry of a translation file.
inline std::string po_entry(const std::string& id, const std::string& str) {
  return "msgid \"" + id + "\"\nmsgstr \"" + str + "\"\n\n";
}

// The text as an optional; null: none.
inline std::optional<std::string> text_or_none(const char* text) {
  return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace kerfline::test
