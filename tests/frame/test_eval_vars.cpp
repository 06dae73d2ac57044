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
  auto& root = sample.doc.Root();
  root.AddChild(kerfline::test::item("%Pressure%", "80"));
  root.AddChild(kerfline::test::item("%pressure%", "second"));  // a later duplicate loses
  auto nested = kerfline::test::group("Deep");
  nested->AddChild(kerfline::test::item("%Offset%", "0.25"));
  root.AddChild(nested);

  ASSERT_EQ(InitEval(0, 0, nullptr), 1);
  EXPECT_GT(LoadEvalVars(&sample.handle, 0xFFFFFFFFu), 3);
  EXPECT_EQ(var("%Pressure%"), "80");
  EXPECT_EQ(var("%PRESSURE%"), "80");
  EXPECT_EQ(var("%Offset%"), "0.25");
  EXPECT_EQ(var("%Speed%"), "speed");
  EXPECT_EQ(var("Deep"), "Deep");  // groups are walked, not loaded: the name comes back
}

TEST(LoadEvalVars, NeedsAnOpenDriver) {
  EXPECT_EQ(LoadEvalVars(nullptr, 1), -2);
  VMV6DRV closed{};
  EXPECT_EQ(LoadEvalVars(&closed, 1), -2);
}
