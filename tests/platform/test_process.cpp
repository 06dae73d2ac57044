// Children that are always collected: this test binary again, in a role.
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "fixtures/self_spawn.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "platform/process.hpp"

namespace kerfline::platform {
namespace {

using test::no_child_left;

// Ignores the polite request to stop, says so through a file, and sleeps.
int stubborn() {
  std::signal(SIGTERM, SIG_IGN);
  std::ofstream{std::getenv("KERFLINE_READY_FILE")};
  for (;;) std::this_thread::sleep_for(std::chrono::seconds(1));
}

[[maybe_unused]] const bool kChild = test::run_role({
    {"exit", [] { return test::child_int("KERFLINE_EXIT"); }},
    {"raise", [] { return std::raise(test::child_int("KERFLINE_EXIT")) == 0 ? 0 : 1; }},
    {"stubborn", stubborn},
});

struct ExitRow {
  const char* role;
  int value;
  int code;
};

class ChildExit : public ::testing::TestWithParam<ExitRow> {};

TEST_P(ChildExit, ReportsTheStatusAndIsCollected) {
  auto child = test::spawn_self(GetParam().role, {{"KERFLINE_EXIT", std::to_string(GetParam().value)}});
  ASSERT_TRUE(child) << child.error().message;
  child->wait();
  EXPECT_EQ(child->exit_code(), GetParam().code);
  EXPECT_TRUE(no_child_left());
}

const ExitRow kExitRows[] = {
    {"exit", 0, 0},
    {"exit", 1, 1},
    {"exit", 7, 7},
    {"exit", 200, 200},
#ifndef _WIN32
    {"raise", SIGKILL, 128 + SIGKILL},  // ended by a signal: reported as shells do
#endif
};

INSTANTIATE_TEST_SUITE_P(Table, ChildExit, ::testing::ValuesIn(kExitRows), test::RowIndex{});

TEST(ChildProcess, ReportsAProgramThatDoesNotExist) {
  auto child = ChildProcess::spawn("kerfline-no-such-program-here --x", 0);
  ASSERT_FALSE(child);
  EXPECT_EQ(child.error().code, ENOENT);  // ERROR_FILE_NOT_FOUND has the same number
  EXPECT_NE(child.error().message.find("kerfline-no-such-program-here"), std::string::npos);
}

TEST(ChildProcess, TerminateEndsAChildThatIgnoresTheRequest) {
  const test::TempDir dir;
  const std::string ready = (dir.path() / "ready").string();
  auto child = test::spawn_self("stubborn", {{"KERFLINE_READY_FILE", ready}});
  ASSERT_TRUE(child);
  // Until the file is there the child may still die of the request itself.
  for (int i = 0; i < 3000 && !std::filesystem::exists(ready); ++i) {
    ASSERT_FALSE(child->wait_for(10)) << "the child ended early: " << child->exit_code().value_or(-1);
  }
  child->terminate();
#ifdef _WIN32
  EXPECT_EQ(child->exit_code(), test::kTerminatedCode);
#else
  EXPECT_EQ(child->exit_code(), 128 + SIGKILL);  // killed after the grace time
#endif
  EXPECT_TRUE(no_child_left());
}

}  // namespace
}  // namespace kerfline::platform
