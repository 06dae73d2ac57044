#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kerfline/kerfline.h"
#include "sample_driver.hpp"

namespace {

CUTLAYER layer(int first) {
  CUTLAYER l{};
  for (int i = 0; i < 7; ++i) l.anWords[i] = first + i;
  return l;
}

class CutData : public ::testing::Test {
 protected:
  void SetUp() override {
    std::memset(&data, 0xAB, sizeof(data));
    ASSERT_EQ(InitCutData(&data), 1);
    ASSERT_TRUE(kerfline::test::all_zero(&data, sizeof data));  // every byte cleared
  }
  void TearDown() override { EXPECT_EQ(FreeCutData(&data), 1); }
  CUTDATA data;
};

}  // namespace

TEST_F(CutData, VariablesAreCopiedInOrderAndNullTextsBecomeEmpty) {
  char name[] = "%Speed%";
  char value[] = "40";
  const CUTVAR vars[] = {{name, value}, {const_cast<char*>("b"), nullptr}, {nullptr, const_cast<char*>("3")}};
  for (const CUTVAR& var : vars) ASSERT_EQ(AddVariable(&data, &var), 1);
  std::strcpy(name, "changed");  // the host's texts are copied
  std::strcpy(value, "xx");
  ASSERT_EQ(data.nVarCount, 3);
  const char* const expected[][2] = {{"%Speed%", "40"}, {"b", ""}, {"", "3"}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_STREQ(data.pVars[i].pszName, expected[i][0]);
    EXPECT_STREQ(data.pVars[i].pszValue, expected[i][1]);
  }
}

TEST_F(CutData, ASecondVariableDropsTheLayersAddedBeforeIt) {
  const CUTVAR a{const_cast<char*>("a"), const_cast<char*>("1")};
  const CUTVAR b{const_cast<char*>("b"), const_cast<char*>("2")};
  const CUTLAYER l = layer(1);

  ASSERT_EQ(AddVariable(&data, &a), 1);
  ASSERT_EQ(AddLayer(&data, &l), 1);  // kept: only one variable so far
  ASSERT_EQ(AddLayer(&data, &l), 1);
  ASSERT_EQ(data.nLayerCount, 2);

  ASSERT_EQ(AddVariable(&data, &b), 1);
  EXPECT_EQ(data.nLayerCount, 0);
  EXPECT_EQ(data.pLayers, nullptr);
  ASSERT_EQ(data.nVarCount, 2);

  ASSERT_EQ(AddLayer(&data, &l), 1);  // layers after the last variable stay
  EXPECT_EQ(data.nLayerCount, 1);
}

// Counts around the points where the arrays grow: every entry stays intact
// and in place (ASan catches a write past a block).
class CutDataCounts : public ::testing::TestWithParam<int> {};

TEST_P(CutDataCounts, EveryEntrySurvivesGrowth) {
  CUTDATA data{};
  const int n = GetParam();
  for (int i = 0; i < n; ++i) {
    const std::string text = std::to_string(i);
    const CUTVAR var{const_cast<char*>(text.c_str()), const_cast<char*>(text.c_str())};
    ASSERT_EQ(AddVariable(&data, &var), 1);
  }
  for (int i = 0; i < n; ++i) {
    const CUTLAYER l = layer(i);
    ASSERT_EQ(AddLayer(&data, &l), 1);
  }
  ASSERT_EQ(data.nVarCount, n);
  ASSERT_EQ(data.nLayerCount, n);
  for (int i = 0; i < n; ++i) {
    EXPECT_EQ(data.pVars[i].pszName, std::to_string(i));
    const CUTLAYER expected = layer(i);
    EXPECT_EQ(std::memcmp(&data.pLayers[i], &expected, sizeof expected), 0);
  }
  EXPECT_EQ(FreeCutData(&data), 1);
}

INSTANTIATE_TEST_SUITE_P(Counts, CutDataCounts, ::testing::Values(1, 2, 3, 4, 5, 8, 9, 17, 1000));
