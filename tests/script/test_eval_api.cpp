// The exported evaluation API on the process's one evaluator. Every test runs
// in its own process (CTest), so the first InitEval of a test is the
// process's first.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "platform/paths.hpp"
#include "script/process_state.hpp"
#include "script_fixture.hpp"

namespace kerfline::script {
namespace {

// A result block as a string, released; nullopt for NULL.
std::optional<std::string> taken(char* block, void (*release)(char*) = FreeEval) {
  if (block == nullptr) return std::nullopt;
  std::string result(block);
  release(block);
  return result;
}
std::optional<std::string> do_eval(const char* text) { return taken(DoEval(text)); }
std::optional<std::string> get_var(const char* name) { return taken(GetEvalVar(name), FreeEvalVar); }

class EvalApi : public ::testing::Test {
 protected:
  void SetUp() override {
    kerfline::test::add_test_functions(process_eval().registry());
    ASSERT_EQ(InitEval(0, 0, nullptr), 1);
  }
};

TEST(EvalApiBeforeInit, EverythingIsANoOp) {
  if (process_eval().evaluator() != nullptr) GTEST_SKIP() << "needs a process without an evaluator";
  EXPECT_EQ(DoEval(nullptr), nullptr);
  EXPECT_EQ(DoEval("text"), nullptr);
  EXPECT_EQ(GetEvalVar("x"), nullptr);
  EXPECT_EQ(EscapeEval(), 1);
  EXPECT_EQ(EnableEval(), 1);
  EXPECT_EQ(SetEvalLogFile(5), 1);
  EXPECT_EQ(ExitEval(), 1);
  FreeEval(nullptr);
  EXPECT_EQ(process_eval().evaluator(), nullptr);
}

struct DoEvalRow {
  std::string templ;
  std::optional<std::string> expected;
};

class DoEvalTable : public EvalApi, public ::testing::WithParamInterface<DoEvalRow> {};

TEST_P(DoEvalTable, Result) { EXPECT_EQ(do_eval(GetParam().templ.c_str()), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Rows, DoEvalTable,
    ::testing::Values(DoEvalRow{"PU %x%,%y%;\r\n", "PU %x%,%y%;\r\n"}, DoEvalRow{"", std::nullopt},
                      DoEvalRow{R"(&T(""))", std::nullopt}, DoEvalRow{"%[1+2", "0.0"},
                      DoEvalRow{"{[1][a][b]", "0.0"}, DoEvalRow{"{[ISCLOSED][yes][no]}", "no"},
                      // A script error is the pass's whole output; an error inside a
                      // condition's operand is only a value.
                      DoEvalRow{R"(&Left("AB"))",
                                "[incorrect number of parameters: Operator Left expects 2 parameters]"},
                      DoEvalRow{R"({[&Left("A") == x][y][n]})", "n"},
                      // The passes run in order: blocks, calls, arithmetic.
                      DoEvalRow{"{[1][%[1+1]%][0]}", "2"}, DoEvalRow{R"(&T("%[")3]%)", "3"},
                      DoEvalRow{R"(&T("{[1][a][b]}"))", "a"}),
    kerfline::test::RowIndex());

TEST_F(EvalApi, InitKeepsNonZeroSettingsCountsCallsAndClearsTheEscape) {
  Evaluator& e = *process_eval().evaluator();
  int owner = 0;
  const std::uint32_t count = process_eval().init_count;
  InitEval(5, 7, &owner);
  EXPECT_EQ(e.mode, 5u);
  EXPECT_EQ(e.log_target, 7u);
  EXPECT_EQ(e.owner, &owner);
  InitEval(0, 0, nullptr);
  EXPECT_EQ(e.mode, 5u);
  EXPECT_EQ(e.log_target, 7u);
  EXPECT_EQ(e.owner, nullptr);
  EXPECT_EQ(process_eval().latest_mode, 0u);
  SetEvalLogFile(0);
  EXPECT_EQ(e.log_target, 7u);
  SetEvalLogFile(9);
  EXPECT_EQ(e.log_target, 9u);
  EXPECT_EQ(process_eval().init_count, count + 2);
  EXPECT_EQ(process_eval().evaluator(), &e);
  EXPECT_EQ(e.async_io.load(), 0);
  InitEvalAsync(0, 0, nullptr);
  EXPECT_EQ(e.async_io.load(), 1);
  // Init and EnableEval clear the escape flag.
  EscapeEval();
  EXPECT_TRUE(process_eval().evaluator()->escaped());
  InitEval(0, 0, nullptr);
  EXPECT_FALSE(process_eval().evaluator()->escaped());
  EscapeEval();
  EnableEval();
  EXPECT_FALSE(process_eval().evaluator()->escaped());
}

TEST_F(EvalApi, SharedAndScriptVariables) {
  EXPECT_EQ(SetEvalVar("%Speed%", "800", 0xFFFFFFFFu), 1);
  EXPECT_EQ(get_var("%speed%"), "800");
  EXPECT_EQ(do_eval("VS&T(%Speed%);"), "VS800;");
  SetEvalVar("%Tool%", "1", 0xFFFFFFFFu);
  SetEvalVar("%x%", "1200", 0xFFFFFFFFu);
  SetEvalVar("%y%", "3400", 0xFFFFFFFFu);
  // Variables take part through calls only; the blocks see texts.
  EXPECT_EQ(
      do_eval(
          "{[&T(%Tool%) == 1][SP1;][SP2;]}{[%Tool% == 1][SP1;][SP2;]}PU&T(%x%),&T(%y%);PD%[1200/40*2.5]%;"),
      "SP1;SP2;PU1200,3400;PD75;");
  EXPECT_EQ(SetEvalVar("%Speed%", nullptr, 0), 1);
  EXPECT_EQ(get_var("%Speed%"), "%Speed%");
  EXPECT_EQ(SetEvalVar("Empty", "", 0xFFFFFFFFu), 1);
  EXPECT_EQ(get_var("Empty"), std::nullopt);
  // Visible only on channel 0; evaluations use channel -1.
  EXPECT_EQ(SetEvalVar("Hidden", "x", 0x1u), 1);
  EXPECT_EQ(get_var("Hidden"), "Hidden");
  EXPECT_EQ(SetEvalVar("", "x", 1), -2);
  // A script's variables survive later evaluations and inits.
  EXPECT_EQ(do_eval(R"(&VarSet("n", "5"))"), std::nullopt);
  EXPECT_EQ(do_eval("&T(n)"), "5");
  InitEval(1, 1, nullptr);
  EXPECT_EQ(get_var("N"), "5");
}

TEST(EvalApiUserFunctions, RegisteredBeforeAndAfterInit) {
  EXPECT_EQ(AddEvalUserFunc("Twice", "a", "&Join(a, a)"), 1);
  EXPECT_EQ(AddEvalUserFunc("twice", "a", "a"), 0);
  InitEval(0, 0, nullptr);
  EXPECT_EQ(AddEvalUserFunc("Pair", "a, b", "Join(b, a)"), 1);
  EXPECT_EQ(AddEvalUserFunc("Left", "a", "a"), 0);
  EXPECT_EQ(AddEvalUserFunc("VarSet", "", "x"), 0);
  EXPECT_EQ(do_eval(R"(&Twice("x")/&Pair("1", "2"))"), "xx/21");
}

TEST_F(EvalApi, OutputEntryShowsErrorsUntilCancelled) {
  kerfline::test::HostRecorder host;
  Evaluator& e = *process_eval().evaluator();
  EXPECT_EQ(e.evaluate_device_output("%[1+1]%&T(\"\")"), std::optional<std::string>("%[1+1]%"));
  EXPECT_EQ(e.evaluate_device_output(R"(&T(""))"), std::optional<std::string>(""));
  EXPECT_TRUE(host.boxes.empty());

  host.queue_answer(KERFLINE_IDOK);
  EXPECT_EQ(e.evaluate_device_output(R"(&Left("A"))"), std::nullopt);
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0].text, "[incorrect number of parameters: Operator Left expects 2 parameters]");
  EXPECT_EQ(host.boxes[0].caption, "Cutter Script Error:");
  EXPECT_EQ(host.boxes[0].type, KERFLINE_MB_OKCANCEL);

  host.queue_answer(KERFLINE_IDCANCEL);
  EXPECT_EQ(e.evaluate_device_output("&T()"), std::nullopt);
  EXPECT_EQ(host.boxes.size(), 2u);
  EXPECT_EQ(e.evaluate_device_output("&T()"), std::nullopt);
  EXPECT_EQ(host.boxes.size(), 2u);
  EXPECT_EQ(e.last_error(), "[incorrect number of parameters: Operator T expects 1 parameters]");
}

struct AsyncRow {
  std::string ini;  // plotman.ini contents; empty: no file
  int expected;
};
class AsyncIoSwitch : public ::testing::TestWithParam<AsyncRow> {};

TEST_P(AsyncIoSwitch, OnlyExactlyOne) {
  kerfline::test::TempDir dir;
  if (!GetParam().ini.empty()) dir.write("plotman.ini", GetParam().ini);
  platform::set_home_dir(dir.str());
  EXPECT_EQ(IsAsyncIO(), GetParam().expected);
  process_eval().ensure_evaluator().async_io.store(0);  // an earlier row in this process may have set it
  InitEval(0, 0, nullptr);
  EXPECT_EQ(process_eval().evaluator()->async_io.load(), GetParam().expected);
  platform::set_home_dir("");
}

INSTANTIATE_TEST_SUITE_P(Rows, AsyncIoSwitch,
                         ::testing::Values(AsyncRow{"[CutterSettings]\r\nAsyncIO=1\r\n", 1},
                                           AsyncRow{"[cuttersettings]\nasyncio=1\n", 1},
                                           AsyncRow{"[CutterSettings]\nAsyncIO=2\n", 0},
                                           AsyncRow{"[Other]\nAsyncIO=1\n", 0}, AsyncRow{"", 0}),
                         kerfline::test::RowIndex());

}  // namespace
}  // namespace kerfline::script
