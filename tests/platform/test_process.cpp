// Children that are always collected.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cerrno>
#include <string>

#include "fixtures/self_spawn.hpp"
#include "fixtures/table_names.hpp"
#include "platform/process.hpp"

namespace kerfline::platform {
namespace {

using test::no_child_left;

struct ExitRow {
  const char* line;
  int code;
};

class ChildExit : public ::testing::TestWithParam<ExitRow> {};

TEST_P(ChildExit, ReportsTheStatusAndIsCollected) {
  auto child = ChildProcess::spawn(GetParam().line, 0);
  ASSERT_TRUE(child) << child.error().message;
  child->wait();
  EXPECT_EQ(child->exit_code(), GetParam().code);
  EXPECT_TRUE(no_child_left());
}

INSTANTIATE_TEST_SUITE_P(Table, ChildExit,
                         ::testing::Values(ExitRow{"true", 0}, ExitRow{"false", 1},
                                           ExitRow{R"(sh -c "exit 7")", 7},
                                           ExitRow{R"(sh -c "kill -9 $$")", 128 + 9}),
                         test::RowIndex{});

TEST(ChildProcess, ReportsAProgramThatDoesNotExist) {
  auto child = ChildProcess::spawn("kerfline-no-such-program-here --x", 0);
  ASSERT_FALSE(child);
  EXPECT_EQ(child.error().code, ENOENT);
  EXPECT_NE(child.error().message.find("kerfline-no-such-program-here"), std::string::npos);
}

TEST(ChildProcess, TerminateKillsAChildThatIgnoresTheRequest) {
  auto child = ChildProcess::spawn(R"(sh -c "trap '' TERM; while :; do sleep 1; done")", 0);
  ASSERT_TRUE(child);
  ASSERT_FALSE(child->wait_for(100));  // give the shell time to set its trap
  child->terminate();
  EXPECT_EQ(child->exit_code(), 128 + 9);
  EXPECT_TRUE(no_child_left());
}

}  // namespace
}  // namespace kerfline::platform
