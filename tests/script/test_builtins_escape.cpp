// FWrite "WaitForRemoved" ends at once when another thread escapes the
// evaluation; also run under ThreadSanitizer (preset tsan).
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "script/process_state.hpp"

namespace kerfline::script {
namespace {

TEST(BuiltinEscape, EscapeEndsWaitForRemoved) {
  InitEval(0, 0, nullptr);
  test::TempDir dir;
  const std::filesystem::path file = dir.path() / "wait.cmd";
  std::atomic<bool> done{false};
  std::thread other([&] {
    // Nobody takes the file away: only the escape can end the wait.
    while (!done.load() && !std::filesystem::exists(file))
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EscapeEval();
  });
  const auto start = std::chrono::steady_clock::now();
  const std::string templ = "[&FWrite(\"" + file.generic_string() + "\", \"x\", \"WaitForRemoved\")]";
  char* block = DoEval(templ.c_str());
  const auto elapsed = std::chrono::steady_clock::now() - start;
  done.store(true);
  other.join();
  ASSERT_NE(block, nullptr);
  EXPECT_STREQ(block, "[]");
  FreeEval(block);
  EXPECT_TRUE(std::filesystem::exists(file));
  EXPECT_LT(elapsed, std::chrono::seconds(30));  // the wait has no limit of its own
  EXPECT_EQ(DoEval(nullptr), nullptr);
}

}  // namespace
}  // namespace kerfline::script
