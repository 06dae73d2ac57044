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

bool device_read_started() {
  return DoEval(nullptr) != nullptr && process_eval().evaluator()->device_read_waiting();
}

class Escape : public ::testing::Test {
 protected:
  void SetUp() override {
    kerfline::test::add_test_functions(process_eval().registry());
    InitEval(0, 0, nullptr);
  }

  // Runs DoEval(templ) here while a second thread waits until ready() and
  // then calls act(); saw_ready_ tells whether it did before the end.
  template <typename Ready, typename Act>
  std::optional<std::string> run_and(const std::string& templ, Ready ready, Act act) {
    std::atomic<bool> done{false};
    saw_ready_ = false;
    std::thread other([&] {
      while (!done.load() && !ready()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
      if (done.load()) return;
      saw_ready_ = true;
      act();
    });
    char* block = DoEval(templ.c_str());
    done.store(true);
    other.join();
    if (block == nullptr) return std::nullopt;
    std::string result(block);
    FreeEval(block);
    return result;
  }
  bool saw_ready_ = false;
};

TEST_F(Escape, FromAnotherThreadEndsEveryWaitOfTheEvaluationAtOnce) {
  const auto start = Clock::now();
  // Both operands of the block wait, then a call of the template pass does.
  // The escaped wait gives "escaped"; the later calls take no symbol.
  EXPECT_EQ(run_and("{[&Wait(600000) == &Wait(600000)][same][differ]}|&Wait(600000)", device_read_started,
                    EscapeEval),
            "differ|");
  EXPECT_TRUE(saw_ready_);
  // Far below the ten-minute wait: the wait did not run out.
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(60));
  EXPECT_EQ(DoEval(nullptr), nullptr);
  EXPECT_FALSE(process_eval().evaluator()->escaped());
}

TEST_F(Escape, ASignalWakesTheWaiterWithoutEscaping) {
  EXPECT_EQ(
      run_and("&Wait(600000)|&Wait(1)", device_read_started, [] { process_eval().evaluator()->signal(0); }),
      "signalled|timed out");
  EXPECT_TRUE(saw_ready_);
}

TEST_F(Escape, TheBusyQueryReportsARunningEvaluationOutsideADeviceRead) {
  bool busy_while_holding = false;
  EXPECT_EQ(run_and(
                "&Hold(600000)", [] { return kerfline::test::holding().load(); },
                [&] {
                  busy_while_holding = DoEval(nullptr) != nullptr && !device_read_started();
                  EscapeEval();
                }),
            "escaped");
  EXPECT_TRUE(busy_while_holding);
  EXPECT_EQ(DoEval(nullptr), nullptr);
}

TEST_F(Escape, AnEscapeBeforeTheEvaluationIsForgotten) {
  EscapeEval();
  EXPECT_EQ(run_and(
                "&Wait(1)", [] { return false; }, [] {}),
            "timed out");
}

// FWrite "WaitForRemoved" is no device read, yet an escape ends it too.
TEST_F(Escape, EndsAWaitForAFileToBeRemoved) {
  test::TempDir dir;
  const std::filesystem::path file = dir.path() / "wait.cmd";
  const auto start = Clock::now();
  // Nobody takes the file away: only the escape can end the wait.
  EXPECT_EQ(run_and(
                "[&FWrite(\"" + file.generic_string() + "\", \"x\", \"WaitForRemoved\")]",
                [&] { return std::filesystem::exists(file); }, EscapeEval),
            "[]");
  EXPECT_TRUE(saw_ready_);
  EXPECT_TRUE(std::filesystem::exists(file));
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(30));  // the wait has no limit of its own
}

}  // namespace
}  // namespace kerfline::script
