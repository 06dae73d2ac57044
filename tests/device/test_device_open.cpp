// Opening the device: port types and their error codes, the retry prompts
// and the Graphtec library's two sides.
#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"
#include "platform/environment.hpp"
#include "port_fixture.hpp"

namespace dev = kerfline::device;
namespace port = kerfline::platform::port;
using kerfline::platform::set_environment;
using kerfline::test::DeviceEnv;
using kerfline::test::open_descriptors;
using kerfline::test::RowIndex;

namespace {

struct OpenRow {
  const char* device;
  std::int32_t port_type;
  const char* write_to;  // below the suite dir; "" stays empty
  std::int32_t result;
  std::int32_t error;
  bool opened;
};

class OpenCodes : public ::testing::TestWithParam<OpenRow> {};

const OpenRow kOpens[] = {
    {"", 2, "out.plt", -1, -7, false},
    {nullptr, 2, "out.plt", -1, -7, false},
    {"Cutter", 1, "out.plt", -1, -6, false},
    {"Cutter", 3, "out.plt", -1, -6, false},
    {"Cutter", 5, "out.plt", -1, -6, false},
    {"Cutter", 0, "out.plt", 0, 1, false},
    {"Cutter", 6, "out.plt", 0, 1, false},
    {"Cutter", -1, "out.plt", 0, 1, false},
    {"Cutter", 2, "missing.plt", -1, -5, false},
    {"Cutter", 2, "dir", -1, -5, false},
    {"Cutter", 2, "", -1, -5, false},
    {"Cutter", 2, "out.plt", 0, 1, true},
};

TEST_P(OpenCodes, GiveTheCodeAndLeakNothing) {
  const OpenRow& row = GetParam();
  DeviceEnv env;
  env.dir.write("out.plt", "");
  std::filesystem::create_directory(env.dir.path() / "dir");
  dev::PortSettings& s = env.devices["Cutter"];
  s.port_type = row.port_type;
  s.write_to = *row.write_to ? (env.dir.path() / row.write_to).string() : "";
  const int before = open_descriptors();
  env.read = 1234;
  env.write = 5678;
  EXPECT_EQ(env.open(row.device), row.result);
  EXPECT_EQ(env.error, row.error);
  if (row.opened) {
    EXPECT_EQ(env.read, env.write);
    EXPECT_TRUE(port::is_open_handle(env.read));
    dev::close_pair(env.read, env.write);
  } else {
    EXPECT_EQ(env.read, 1234);
    EXPECT_EQ(env.write, 5678);
  }
  EXPECT_FALSE(dev::link_state().pipe_flag);
  EXPECT_TRUE(env.host.boxes.empty());
  EXPECT_EQ(open_descriptors(), before);
}
INSTANTIATE_TEST_SUITE_P(Table, OpenCodes, ::testing::ValuesIn(kOpens), RowIndex());

// Retries: ten silent attempts with their waits, then the prompt; Yes starts
// ten more, No gives the side's code.
struct RetryRow {
  bool single;           // the single read-write pipe was asked for
  bool out_pipe_exists;  // a regular file stands in for a pipe that opens
  std::int32_t error;
  const char* title;
  std::vector<std::uint32_t> waits_per_attempt;
  const char* prompted_pipe;
};
class OpenRetries : public ::testing::TestWithParam<RetryRow> {};

TEST_P(OpenRetries, AskAfterTenSilentAttempts) {
  const RetryRow& row = GetParam();
  DeviceEnv env;
  env.host.queue_answer(KERFLINE_IDYES);
  env.host.queue_answer(KERFLINE_IDNO);
  std::filesystem::create_directory(env.dir.path() / "usb");
  if (row.out_pipe_exists) env.dir.write("usb/PIPE01", "");
  dev::PortSettings& s = env.devices["Cutter"];
  s.port_type = 4;
  s.usb_device_name = "Nobody";
  s.usb_device_path = (env.dir.path() / "usb").string();
  dev::link_state().single_handle_request = row.single;
  const int before = open_descriptors();
  EXPECT_EQ(env.open("Cutter"), -1);
  EXPECT_EQ(env.error, row.error);
  ASSERT_EQ(env.host.boxes.size(), 2u);
  const std::string pipe_path = kerfline::platform::join_path(s.usb_device_path, row.prompted_pipe);
  for (const auto& box : env.host.boxes) {
    EXPECT_EQ(box.caption, row.title);
    EXPECT_EQ(box.text, pipe_path);
    EXPECT_EQ(box.type, KERFLINE_MB_YESNO);
  }
  std::vector<std::uint32_t> expected;
  for (int i = 0; i < 20; ++i)
    expected.insert(expected.end(), row.waits_per_attempt.begin(), row.waits_per_attempt.end());
  EXPECT_EQ(env.waits, expected);
  EXPECT_GE(env.host.pumps, 20);
  EXPECT_EQ(dev::link_state().single_retries + dev::link_state().out_retries + dev::link_state().in_retries,
            0);
  EXPECT_EQ(open_descriptors(), before);
}
const RetryRow kRetries[] = {
    {true, false, -4, "Error from CreateFile(RW): Retry ?", {2000, 1000, 1000}, "PIPE00"},
    {false, false, -3, "Error from CreateFile(Out, ErrorCode= 2 ): Retry ?", {2000}, "PIPE01"},
    {false, true, -4, "Error from CreateFile(In, ErrorCode= 2 ): Retry ?", {2000, 1000, 1000}, "PIPE00"},
};
INSTANTIATE_TEST_SUITE_P(Table, OpenRetries, ::testing::ValuesIn(kRetries), RowIndex());

struct GraphtecRow {
  const char* library_dir;  // "" leaves the library out
  int refusals;
  std::vector<int> answers;
  std::int32_t result;
  std::int32_t error;
  std::size_t prompts;
};
class GraphtecOpen : public ::testing::TestWithParam<GraphtecRow> {};

TEST_P(GraphtecOpen, RetriesEachSideAndAsks) {
  const GraphtecRow& row = GetParam();
  DeviceEnv env;
  for (int a : row.answers) env.host.queue_answer(a);
  if (*row.library_dir) {
    const std::string file =
        std::string(KERFLINE_FAKE_VENDOR_PREFIX) + "gitkusbp" KERFLINE_FAKE_VENDOR_SUFFIX;
    std::filesystem::copy_file(std::string(KERFLINE_FAKE_VENDOR_DIR) + "/" + file, env.dir.path() / file);
  }
  env.dir.write("out", "");
  env.dir.write("in", "answer");
  set_environment("FAKE_VENDOR_DIR", env.dir.path().string());
  set_environment("FAKE_VENDOR_FAILS", std::to_string(row.refusals));
  env.devices["Cutter"].port_type = 4;
  dev::link_state().graphtec_request = true;
  env.read = env.write = 77;
  EXPECT_EQ(env.open("Cutter"), row.result);
  EXPECT_EQ(env.error, row.error);
  EXPECT_EQ(env.host.boxes.size(), row.prompts);
  if (row.result == 0) {
    EXPECT_NE(env.read, env.write);
    char buf[8] = {};
    EXPECT_EQ(port::read(env.read, buf, 6).count, 6u);
    dev::close_pair(env.read, env.write);
  } else {
    EXPECT_EQ(env.read, port::kInvalidHandle);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, GraphtecOpen,
                         ::testing::Values(GraphtecRow{"", 0, {}, -1, 1, 0},
                                           GraphtecRow{"lib", 0, {}, 0, 1, 0},
                                           GraphtecRow{"lib", 10, {}, 0, 1, 0},
                                           GraphtecRow{"lib", 11, {KERFLINE_IDYES, KERFLINE_IDYES}, 0, 1, 2},
                                           GraphtecRow{"lib", 11, {KERFLINE_IDNO}, -1, -3, 1}),
                         RowIndex());

}  // namespace
