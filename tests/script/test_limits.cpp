// Bounds that keep hostile templates from taking the host down: the pass
// counter, call nesting, import chains.
#include <gtest/gtest.h>

#include <string>

#include "fixtures/temp_dir.hpp"
#include "script/script_error.hpp"
#include "script_fixture.hpp"

namespace kerfline::script {
namespace {

TEST(PassCounter, RefusesAPassAfterTenWithoutReset) {
  kerfline::test::ScriptBench bench;
  bench.evaluator->set_pass_counter(10);
  EXPECT_EQ(bench.evaluator->template_pass("ok"), "ok");
  try {
    bench.evaluator->template_pass("ok");
    ADD_FAILURE() << "the eleventh pass ran";
  } catch (const ScriptError& e) {
    EXPECT_EQ(e.printable(), "[internal recursion limit reached]");
  }
  // The evaluation entry resets the counter.
  EXPECT_EQ(bench.evaluator->evaluate("ok", -1), "ok");
  EXPECT_EQ(bench.evaluator->pass_counter(), 1);
}

// A block whose operands bring the block back: without a budget every level
// doubles the work, 2^16 evaluations of 20 KB each.
TEST(WorkBudget, EndsAnExponentialEvaluation) {
  kerfline::test::ScriptBench bench;
  bench.shared.set("V", "{[&T(V) == &T(V)][a][b]}" + std::string(20000, ' '), 0xFFFFFFFFu);
  EXPECT_EQ(bench.evaluator->evaluate_for_output("x{[&T(V) == b][a][b]}y"),
            "[internal recursion limit reached]");
  EXPECT_TRUE(bench.evaluator->pass_failed());
  EXPECT_FALSE(bench.evaluator->error());
  // The next top-level evaluation starts with a fresh budget.
  EXPECT_EQ(bench.evaluator->evaluate_for_output("{[&T(\"a\") == a][ok][no]}"), "ok");
  EXPECT_FALSE(bench.evaluator->escaped());
}

std::string nested_calls(int depth) {
  std::string text = "&";
  for (int i = 0; i < depth; ++i) text += "T(";
  text += "\"x\"";
  text += std::string(static_cast<std::size_t>(depth), ')');
  return text;
}

TEST(CallNesting, IsBoundedWithoutTouchingTheStack) {
  kerfline::test::ScriptBench bench;
  EXPECT_EQ(bench.evaluator->evaluate(nested_calls(64), -1), "x");
  EXPECT_EQ(bench.evaluator->evaluate(nested_calls(65), -1), "[internal recursion limit reached]");
  EXPECT_EQ(bench.evaluator->evaluate(nested_calls(100000), -1), "[internal recursion limit reached]");
}

TEST(ImportChain, SelfImportEndsWithTheLimitTextInPlaceOfTheValue) {
  kerfline::test::TempDir dir;
  const std::string path = (dir.path() / "self.txt").generic_string();
  dir.write("self.txt", "<&Import(\"" + path + "\")>");
  kerfline::test::ScriptBench bench;
  const std::string out = bench.evaluator->evaluate("&Import(\"" + path + "\")", -1);
  // The top-level evaluation and fifteen imported ones; the sixteenth import
  // is refused.
  EXPECT_EQ(out, std::string(15, '<') + "[internal recursion limit reached]" + std::string(15, '>'));
  EXPECT_FALSE(bench.evaluator->error());
}

TEST(ImportChain, ImportedTextSeesTheCallersVariablesButKeepsItsOwn) {
  kerfline::test::TempDir dir;
  const std::string path = (dir.path() / "vars.txt").generic_string();
  dir.write("vars.txt", R"(&T(a)&VarSet("b", "inner")&T(b))");
  kerfline::test::ScriptBench bench;
  bench.evaluator->own_variables().set("o", "own", 0xFFFFFFFFu);
  EXPECT_EQ(bench.evaluator->evaluate(R"(&VarSet("a", "outer")&Import(")" + path + "\")", -1), "outerinner");
  EXPECT_EQ(bench.evaluator->lookup_or_name("b"), "b");
}

TEST(ImportChain, AnErrorInsideStaysInPlaceOfTheValue) {
  kerfline::test::TempDir dir;
  const std::string path = (dir.path() / "bad.txt").generic_string();
  dir.write("bad.txt", R"(&Left("A"))");
  kerfline::test::ScriptBench bench;
  EXPECT_EQ(bench.evaluator->evaluate("x&Import(\"" + path + "\")y", -1),
            "x[incorrect number of parameters: Operator Left expects 2 parameters]y");
  EXPECT_FALSE(bench.evaluator->error());
}

TEST(ImportChain, AnUnreadableFileGivesItsMessage) {
  kerfline::test::TempDir dir;
  const std::string path = (dir.path() / "missing.txt").generic_string();
  kerfline::test::ScriptBench bench;
  EXPECT_EQ(bench.evaluator->evaluate("&Import(\"" + path + "\")", -1), "Unable to read the file: " + path);
}

}  // namespace
}  // namespace kerfline::script
