// Escaping from a second thread while an evaluation waits, in a device
// function or for a file; also run under ThreadSanitizer (preset tsan).
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "script/process_state.hpp"
#include "script_fixture.hpp"

namespace kerfline::script {
namespace {

using Clock = std::chrono::steady_clock;

class Escape : public ::testing::Test {
 protected:
  void SetUp() override {
    kerfline::test::add_test_functions(process_eval().registry());
    InitEval(0, 0, nullptr);
  }

  // Runs DoEval(templ) here while a second thread waits for the device read
  // to start (seen through the busy query) and then calls act().
  template <typename Act>
  std::optional<std::string> run_and(const char* templ, Act act, bool& saw_busy) {
    std::atomic<bool> done{false};
    std::atomic<bool> busy_seen{false};
    std::thread other([&] {
      while (!done.load()) {
        if (DoEval(nullptr) != nullptr && process_eval().evaluator()->device_read_waiting()) {
          busy_seen.store(true);
          act();
          return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
    });
    char* block = DoEval(templ);
    done.store(true);
    other.join();
    saw_busy = busy_seen.load();
    if (block == nullptr) return std::nullopt;
    std::string result(block);
    FreeEval(block);
    return result;
  }
};

TEST_F(Escape, FromAnotherThreadEndsEveryWaitOfTheEvaluationAtOnce) {
  bool saw_busy = false;
  const auto start = Clock::now();
  // Both operands of the block wait, then a call of the template pass does.
  // The escaped wait gives "escaped"; the later calls take no symbol.
  const auto result = run_and(
      "{[&Wait(600000) == &Wait(600000)][same][differ]}|&Wait(600000)", [] { EscapeEval(); }, saw_busy);
  const auto elapsed = Clock::now() - start;
  EXPECT_TRUE(saw_busy);
  EXPECT_EQ(result, "differ|");
  // Far below the ten-minute wait: the wait did not run out.
  EXPECT_LT(elapsed, std::chrono::seconds(60));
  EXPECT_EQ(DoEval(nullptr), nullptr);
  EXPECT_FALSE(process_eval().evaluator()->escaped());
}

TEST_F(Escape, ASignalWakesTheWaiterWithoutEscaping) {
  bool saw_busy = false;
  const auto result = run_and(
      "&Wait(600000)|&Wait(1)", [] { process_eval().evaluator()->signal(0); }, saw_busy);
  EXPECT_TRUE(saw_busy);
  EXPECT_EQ(result, "signalled|timed out");
}

TEST_F(Escape, TheBusyQueryReportsARunningEvaluation) {
  std::atomic<bool> busy_while_holding{false};
  std::thread other([&] {
    while (!kerfline::test::holding().load()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    busy_while_holding.store(DoEval(nullptr) != nullptr &&
                             !process_eval().evaluator()->device_read_waiting());
    EscapeEval();
  });
  char* block = DoEval("&Hold(600000)");
  other.join();
  ASSERT_NE(block, nullptr);
  EXPECT_STREQ(block, "escaped");
  FreeEval(block);
  EXPECT_TRUE(busy_while_holding.load());
  EXPECT_EQ(DoEval(nullptr), nullptr);
}

TEST_F(Escape, AnEscapeBeforeTheEvaluationIsForgotten) {
  EscapeEval();
  char* block = DoEval("&Wait(1)");
  ASSERT_NE(block, nullptr);
  EXPECT_STREQ(block, "timed out");
  FreeEval(block);
}

// FWrite "WaitForRemoved" is no device read, yet an escape ends it too.
TEST_F(Escape, EndsAWaitForAFileToBeRemoved) {
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
