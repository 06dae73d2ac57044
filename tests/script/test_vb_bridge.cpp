// Script sections in driver texts and the script-engine exports: values,
// the error boxes the user sees, and (with Lua) the sandbox.
#include <gtest/gtest.h>

#include <string>

#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "kerfline/kerfline.h"
#include "script/vb_sections.hpp"

namespace kerfline::script {
namespace {

using kerfline::test::HostRecorder;

#if defined(_WIN32)
// VBScript: a counter proves the order in which sections are evaluated.
constexpr const char* kCounter = "Dim n\nFunction f(x)\n n = n + 1\n f = x * 10 + n\nEnd Function\n";
constexpr const char* kBroken = "Dim x\nx = = 1\n";
constexpr const char* kLooping = "Function again()\n again = \"<VBStart>again()<VBEnd>\"\nEnd Function\n";
// Wine's Script Control leaves an error's description and source text empty.
constexpr bool kEngineNamesSource = false;
#else
constexpr const char* kCounter = "n = 0\nfunction f(x)\n n = n + 1\n return x * 10 + n\nend\n";
constexpr const char* kBroken = "local x\nx = = 1\n";
constexpr const char* kLooping = "function again() return '<VBStart>again()<VBEnd>' end\n";
constexpr bool kEngineNamesSource = true;
#endif
constexpr const char* kSyntaxErrorExpression = "1 +";

struct Expansion {
  std::string text;
  const char* global_code;
  std::string expected;
  std::size_t boxes;
};

class Sections : public ::testing::TestWithParam<Expansion> {};

TEST_P(Sections, ExpandToTheValuesLeftToRight) {
  const Expansion& row = GetParam();
  HostRecorder recorder;
  EXPECT_EQ(expand_vb_sections(row.text, row.global_code), row.expected);
  EXPECT_EQ(recorder.boxes.size(), row.boxes);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Sections,
    ::testing::Values(Expansion{"A<VBStart>1+2<VBEnd>B", "", "A3B", 0},
                      Expansion{"<VBStart>f(2)<VBEnd>-<VBStart>f(3)<VBEnd>", kCounter, "21-32", 0},
                      Expansion{"<VBStart>6/2<VBEnd>;<VBStart>7/2<VBEnd>;<VBStart>1<2<VBEnd>", "", "3;3.5;-1",
                                0},
                      // No section: no engine, so the broken code is never run.
                      Expansion{"plain <VBEnd> text", kBroken, "plain <VBEnd> text", 0},
                      Expansion{"A<VBStart>1+2<VBEnd>B", kBroken, "", 1},
                      Expansion{"A<VBStart>1+2<VBEnd>B<VBStart>1 +<VBEnd>", "", "", 1},
                      Expansion{"A<VBStart>1+2", "", "", 0},
                      Expansion{"<VBEnd>A<VBStart>1+2<VBEnd>", "", "", 0},
                      Expansion{"<VBStart>again()<VBEnd>", kLooping, "", 0}),
    kerfline::test::RowIndex());

TEST(ScriptHostExports, ShowFailuresWithLineCodeAndSource) {
  HostRecorder recorder;
  // Any old value is replaced: a failed start leaves nothing to free.
  KERFLINE_SCRIPT_HOST* host = reinterpret_cast<KERFLINE_SCRIPT_HOST*>(&recorder);
  EXPECT_EQ(InitVBEval(&host, kBroken), 0);
  EXPECT_EQ(host, nullptr);
  ASSERT_EQ(recorder.boxes.size(), 1U);
  EXPECT_EQ(recorder.boxes[0].caption, "VBCutter (VBInitGlobals):");
  EXPECT_EQ(recorder.boxes[0].text.rfind("Line: 2\r\n", 0), 0U) << recorder.boxes[0].text;
  EXPECT_TRUE(recorder.boxes[0].text.ends_with(kEngineNamesSource ? "\r\n[x = = 1]\n" : "]\n"));

  ASSERT_EQ(InitVBEval(&host, kCounter), 1);
  EXPECT_EQ(DoVBEval(host, kSyntaxErrorExpression), nullptr);
  ASSERT_EQ(recorder.boxes.size(), 2U);
  EXPECT_EQ(recorder.boxes[1].caption, "VBCutter:");
  EXPECT_TRUE(recorder.boxes[1].text.starts_with("Line: 1 [Code: ")) << recorder.boxes[1].text;
  EXPECT_TRUE(recorder.boxes[1].text.ends_with(kEngineNamesSource ? "\r\n[1 +]\n" : "]\n"));

  char* value = DoVBEval(host, "f(4)");  // the host still works after a failure
  EXPECT_STREQ(value, "41");
  EXPECT_EQ(FreeVBResult(value), 1);
  EXPECT_EQ(FreeVBEval(&host), 1);
  EXPECT_EQ(host, nullptr);
  EXPECT_EQ(InitVBEval(nullptr, ""), KERFLINE_BAD_ARGUMENT);
}

#if !defined(_WIN32)
struct Refusal {
  const char* expression;
  const char* reason;
};

class Sandbox : public ::testing::TestWithParam<Refusal> {};

TEST_P(Sandbox, RefusesAndStaysUsable) {
  HostRecorder recorder;
  KERFLINE_SCRIPT_HOST* host = nullptr;
  ASSERT_EQ(InitVBEval(&host, nullptr), 1);
  EXPECT_EQ(DoVBEval(host, GetParam().expression), nullptr);
  ASSERT_EQ(recorder.boxes.size(), 1U);
  EXPECT_NE(recorder.boxes[0].text.find(GetParam().reason), std::string::npos) << recorder.boxes[0].text;
  char* value = DoVBEval(host, "#string.rep('x', 1000000)");  // well within the limits
  EXPECT_STREQ(value, "1000000");
  FreeVBResult(value);
  FreeVBEval(&host);
}

INSTANTIATE_TEST_SUITE_P(
    Lua, Sandbox,
    ::testing::Values(
        Refusal{"os.execute('true')", "global 'os'"}, Refusal{"io.open('/etc/passwd')", "global 'io'"},
        Refusal{"require('os')", "global 'require'"},
        Refusal{"load(string.char(27) .. 'Lua')", "global 'load'"},
        Refusal{"dofile('/etc/passwd')", "global 'dofile'"}, Refusal{"string.dump(tostring)", "field 'dump'"},
        Refusal{"debug.getinfo(1)", "global 'debug'"}, Refusal{"collectgarbage('stop')", "not available"},
        Refusal{"(function() while true do end end)()", "instruction limit reached"},
        Refusal{"string.rep('x', 32 * 1024 * 1024)", "not enough memory"}, Refusal{"{}", "type mismatch"},
        Refusal{"1/0", "overflow"},
        Refusal{"setmetatable({}, {__gc = function() while true do end end})", "__gc"}),
    kerfline::test::RowIndex());
#endif

}  // namespace
}  // namespace kerfline::script
