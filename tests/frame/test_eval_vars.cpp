#include <gtest/gtest.h>

#include <string>

#include "kerfline/kerfline.h"
#include "sample_driver.hpp"

namespace {

std::string var(const char* name) {
  char* out = GetEvalVar(name);
  std::string result = out != nullptr ? out : "<null>";
  FreeEvalVar(out);
  return result;
}

}  // namespace

TEST(LoadEvalVars, TheDriversVariablesBecomeSharedVariables) {
  kerfline::test::SampleDriver sample;
  using kerfline::test::item;
  kerfline::test::add_all(sample.doc.Root(),
                          {item("%Pressure%", "80"), item("%pressure%", "second"),  // a later duplicate loses
                           kerfline::test::with(kerfline::test::group("Deep"), {item("%Offset%", "0.25")})});

  ASSERT_EQ(InitEval(0, 0, nullptr), 1);
  EXPECT_GT(LoadEvalVars(&sample.handle, 0xFFFFFFFFu), 3);
  EXPECT_EQ(var("%Pressure%"), "80");
  EXPECT_EQ(var("%Offset%"), "0.25");
  EXPECT_EQ(var("Deep"), "Deep");  // groups are walked, not loaded: the name comes back
}

// A group held twice at each of 40 levels: every group is walked once.
TEST(LoadEvalVars, WalksAGroupHeldTwiceOnce) {
  kerfline::test::SampleDriver sample;
  auto inner = kerfline::test::group("Level0");
  inner->AddChild(kerfline::test::item("%Innermost%", "found"));
  for (int i = 1; i <= 40; ++i) {
    auto outer = kerfline::test::group("Level" + std::to_string(i));
    outer->AddChild(inner);
    outer->AddChild(inner);
    inner = outer;
  }
  ASSERT_EQ(InitEval(0, 0, nullptr), 1);
  const int32_t before = LoadEvalVars(&sample.handle, 0xFFFFFFFFu);
  sample.doc.Root().AddChild(inner);
  EXPECT_EQ(LoadEvalVars(&sample.handle, 0xFFFFFFFFu), before + 1);
  EXPECT_EQ(var("%Innermost%"), "found");
}
