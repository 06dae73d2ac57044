// Finding the suite directory and stopping the plot manager.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

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
  EXPECT_EQ(GetPlotManPath(nullptr), 0);
  kerfline::platform::set_home_dir("");
}

class CancelPlotmanFlag : public ::testing::TestWithParam<int> {};

// Only flag 0 posts the stop message; whatever the receivers say, the result stays 1.
TEST_P(CancelPlotmanFlag, PostsTheStopMessageOnlyForZero) {
  HostRecorder host;
  host.broadcast_answer = 5;
  EXPECT_EQ(CancelPlotman(GetParam()), 1);
  ASSERT_EQ(host.broadcasts.size(), GetParam() == 0 ? 1u : 0u);
  for (const auto& b : host.broadcasts) {
    EXPECT_EQ(std::tie(b.message, b.w_param, b.l_param, b.wait),
              std::tuple("Umsg_StopPlotman", 0u, 0, false));
  }
}

INSTANTIATE_TEST_SUITE_P(Table, CancelPlotmanFlag, ::testing::Values(0, 1, -1, 2),
                         kerfline::test::RowIndex{});

}  // namespace
