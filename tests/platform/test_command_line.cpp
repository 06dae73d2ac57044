// Command lines split the way Windows programs see their arguments.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fixtures/table_names.hpp"
#include "platform/process.hpp"

namespace kerfline::platform {
namespace {

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

// Whatever an argument holds, quoting it and splitting the line gives it back.
TEST(QuoteCommandArgument, SplitGivesTheArgumentBack) {
  for (const std::string arg :
       {"", "a b", R"(say "hi")", R"(a)", R"(end\)", R"(two\)", R"("x\")", "\t'$;"}) {
    EXPECT_EQ(split_command_line("prog " + quote_command_argument(arg) + " next"),
              (std::vector<std::string>{"prog", arg, "next"}))
        << arg;
  }
}

}  // namespace
}  // namespace kerfline::platform
