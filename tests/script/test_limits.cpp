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

// An imported text sees the caller's variables but keeps its own; a limit
// or an error inside stays in place of the value.
TEST(ImportChain, RunsInItsOwnScopeAndFailsInPlace) {
  kerfline::test::TempDir dir;
  const auto import = [&dir](const std::string& leaf, const std::string& text) {
    dir.write(leaf, text);
    return "&Import(\"" + (dir.path() / leaf).generic_string() + "\")";
  };
  kerfline::test::ScriptBench bench;
  const std::string self = (dir.path() / "self.txt").generic_string();
  EXPECT_EQ(bench.evaluator->evaluate(import("self.txt", "<&Import(\"" + self + "\")>"), -1),
            // The top-level evaluation and fifteen imported ones; the sixteenth is refused.
            std::string(15, '<') + "[internal recursion limit reached]" + std::string(15, '>'));
  EXPECT_FALSE(bench.evaluator->error());
  EXPECT_EQ(bench.evaluator->evaluate("x" + import("bad.txt", R"(&Left("A"))") + "y", -1),
            "x[incorrect number of parameters: Operator Left expects 2 parameters]y");
  EXPECT_FALSE(bench.evaluator->error());
  bench.evaluator->own_variables().set("o", "own", 0xFFFFFFFFu);
  EXPECT_EQ(bench.evaluator->evaluate(
                R"(&VarSet("a", "outer"))" + import("vars.txt", R"(&T(a)&VarSet("b", "inner")&T(b))"), -1),
            "outerinner");
  EXPECT_EQ(bench.evaluator->lookup_or_name("b"), "b");
}

}  // namespace
}  // namespace kerfline::script
