// Children that are always collected: this test binary again, in a role.
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>

#include "fixtures/self_spawn.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"

namespace kerfline::platform {
namespace {

// Ignores the polite request to stop, says so through a file, and sleeps.
int stubborn() {
  std::signal(SIGTERM, SIG_IGN);
  std::ofstream{std::getenv("KERFLINE_READY_FILE")};
  for (;;) std::this_thread::sleep_for(std::chrono::seconds(1));
}

// Ends with the code it is given, or by raising the signal given negated.
int exit_with() {
  const int arg = test::child_int("KERFLINE_ARG");
  return arg >= 0 ? arg : std::raise(-arg);
}

[[maybe_unused]] const bool kChild =
    test::run_role("exit", exit_with) || test::run_role("stubborn", stubborn);

using ExitRow = std::pair<int, int>;  // what the child is told, its exit code
class ChildExit : public ::testing::TestWithParam<ExitRow> {};

TEST_P(ChildExit, ReportsTheStatusAndIsCollected) {
  auto child = test::spawn_self("exit", {{"KERFLINE_ARG", std::to_string(GetParam().first)}});
  ASSERT_TRUE(child) << child.error().message;
  child->wait();
  EXPECT_EQ(child->exit_code(), GetParam().second);
#ifndef _WIN32
  EXPECT_TRUE(test::no_child_left());
#endif
}

INSTANTIATE_TEST_SUITE_P(Table, ChildExit,
                         ::testing::Values(ExitRow{0, 0}, ExitRow{1, 1}, ExitRow{7, 7}, ExitRow{200, 200}),
                         test::RowIndex{});
#ifndef _WIN32
// Ended by a signal: reported as shells do.
INSTANTIATE_TEST_SUITE_P(Signal, ChildExit, ::testing::Values(ExitRow{-SIGKILL, 128 + SIGKILL}),
                         test::RowIndex{});
#endif

TEST(ChildProcess, ReportsAProgramThatDoesNotExist) {
  auto child = ChildProcess::spawn("kerfline-no-such-program-here --x", 0);
  ASSERT_FALSE(child);
  EXPECT_EQ(child.error().code, ENOENT);  // ERROR_FILE_NOT_FOUND has the same number
  EXPECT_NE(child.error().message.find("kerfline-no-such-program-here"), std::string::npos);
}

TEST(ChildProcess, TerminateEndsAChildThatIgnoresTheRequest) {
  const test::TempDir dir;
  auto child = test::spawn_self("stubborn", {{"KERFLINE_READY_FILE", dir.str("ready")}});
  ASSERT_TRUE(child);
  // Until the file is there the request itself could still end the child.
  for (int i = 0; i < 3000 && !std::filesystem::exists(dir.str("ready")); ++i)
    ASSERT_FALSE(child->wait_for(10));
  child->terminate();
#ifdef _WIN32
  EXPECT_EQ(child->exit_code(), 1);  // TerminateProcess's code: Windows has no request to ignore
#else
  EXPECT_EQ(child->exit_code(), 128 + SIGKILL);  // killed after the grace time
  EXPECT_TRUE(test::no_child_left());
#endif
}

}  // namespace
}  // namespace kerfline::platform
