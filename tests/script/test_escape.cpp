// Escaping from a second thread while an evaluation waits in a device
// function; also run under ThreadSanitizer (preset tsan).
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

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

TEST_F(Escape, FromAnotherThreadEndsAWaitAtOnce) {
  bool saw_busy = false;
  const auto start = Clock::now();
  // The second call's queue is not even started once escaped.
  const auto result = run_and(
      "&Wait(600000)&Wait(600000)", [] { EscapeEval(); }, saw_busy);
  const auto elapsed = Clock::now() - start;
  EXPECT_TRUE(saw_busy);
  EXPECT_EQ(result, "escaped");
  // Far below the ten-minute wait: the wait did not run out.
  EXPECT_LT(elapsed, std::chrono::seconds(60));
  EXPECT_EQ(DoEval(nullptr), nullptr);
  EXPECT_FALSE(process_eval().evaluator()->escaped());
}

TEST_F(Escape, OneEscapeEndsEveryLaterWaitOfTheEvaluation) {
  bool saw_busy = false;
  const auto start = Clock::now();
  // Both operands of the block wait, then a call of the template pass does.
  // The escaped wait gives "escaped"; the later calls take no symbol.
  const auto result = run_and(
      "{[&Wait(30000) == &Wait(30000)][same][differ]}|&Wait(30000)", [] { EscapeEval(); }, saw_busy);
  const auto elapsed = Clock::now() - start;
  EXPECT_TRUE(saw_busy);
  EXPECT_EQ(result, "differ|");
  EXPECT_LT(elapsed, std::chrono::seconds(20));
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

}  // namespace
}  // namespace kerfline::script
