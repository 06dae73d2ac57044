// Command lines split the way Windows programs see their arguments, and
// children that are always collected.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cerrno>
#include <string>
#include <vector>

#include "fixtures/self_spawn.hpp"
#include "fixtures/table_names.hpp"
#include "platform/process.hpp"

namespace kerfline::platform {
namespace {

using test::no_child_left;

struct SplitRow {
  const char* line;
  std::vector<std::string> args;
};

class SplitCommandLine : public ::testing::TestWithParam<SplitRow> {};

TEST_P(SplitCommandLine, GivesTheArgumentsWindowsProgramsSee) {
  EXPECT_EQ(split_command_line(GetParam().line), GetParam().args);
}

// The argument rows are the well-known cases of the Windows rules, after a
// program name.
INSTANTIATE_TEST_SUITE_P(
    Table, SplitCommandLine,
    ::testing::Values(
        SplitRow{"", {}}, SplitRow{" \t ", {}}, SplitRow{"prog", {"prog"}},
        SplitRow{"  prog  a  ", {"prog", "a"}}, SplitRow{R"(prog "abc" d e)", {"prog", "abc", "d", "e"}},
        SplitRow{R"(prog a\\b d"e f"g h)", {"prog", R"(a\\b)", "de fg", "h"}},
        SplitRow{R"(prog a\\\"b c d)", {"prog", R"(a\"b)", "c", "d"}},
        SplitRow{R"(prog a\\\\"b c" d e)", {"prog", R"(a\\b c)", "d", "e"}},
        SplitRow{R"(prog a"b"" c d)", {"prog", R"(ab" c d)"}}, SplitRow{R"(prog "" x)", {"prog", "", "x"}},
        SplitRow{R"(prog "open quote runs on)", {"prog", "open quote runs on"}},
        SplitRow{R"(prog trailing\)", {"prog", R"(trailing\)"}}, SplitRow{"prog a\tb", {"prog", "a", "b"}},
        // The program name: quotes group, backslashes stay.
        SplitRow{R"("C:\Program Files\x.exe" -v)", {R"(C:\Program Files\x.exe)", "-v"}},
        SplitRow{R"(C:\dir\"x y".exe z)", {R"(C:\dir\x y.exe)", "z"}}, SplitRow{R"("" arg)", {"", "arg"}}),
    test::RowIndex{});

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
