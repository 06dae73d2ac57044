// Finding the suite directory and stopping the plot manager.
#include <gtest/gtest.h>

#include <string>

#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "platform/paths.hpp"

namespace {

using kerfline::test::HostRecorder;
using kerfline::test::TempDir;

TEST(GetPlotManPath, CopiesTheSuiteDirectoryWithItsSeparator) {
  const TempDir dir;
  kerfline::platform::set_home_dir(dir.str());
  char buffer[4096];
  EXPECT_EQ(GetPlotManPath(buffer), 0);
  EXPECT_EQ(std::string(buffer), dir.str());
  EXPECT_EQ(std::string(buffer).back(), kerfline::platform::path_separator());
  EXPECT_EQ(GetPlotManPath(nullptr), 0);
  kerfline::platform::set_home_dir("");
}

struct CancelRow {
  int flag;
  std::size_t posts;
};

class CancelPlotmanFlag : public ::testing::TestWithParam<CancelRow> {};

TEST_P(CancelPlotmanFlag, PostsTheStopMessageOnlyForZero) {
  HostRecorder host;
  host.broadcast_answer = 5;  // whatever the receivers say, the result stays 1
  EXPECT_EQ(CancelPlotman(GetParam().flag), 1);
  ASSERT_EQ(host.broadcasts.size(), GetParam().posts);
  if (GetParam().posts == 0) return;
  EXPECT_EQ(host.broadcasts[0].message, "Umsg_StopPlotman");
  EXPECT_EQ(host.broadcasts[0].w_param, 0u);
  EXPECT_EQ(host.broadcasts[0].l_param, 0);
  EXPECT_FALSE(host.broadcasts[0].wait);
}

INSTANTIATE_TEST_SUITE_P(Table, CancelPlotmanFlag,
                         ::testing::Values(CancelRow{0, 1}, CancelRow{1, 0}, CancelRow{-1, 0},
                                           CancelRow{2, 0}),
                         kerfline::test::RowIndex{});

}  // namespace
