// One question and its answer over real ports: a line with a peer, a
// regular file; the log a user asks for; faults.
#include <gtest/gtest.h>

#include <chrono>

#include "fixtures/table_names.hpp"
#include "port_fixture.hpp"

namespace dev = kerfline::device;
namespace port = kerfline::platform::port;
using kerfline::test::DeviceEnv;
using kerfline::test::Line;
using kerfline::test::open_descriptors;
using kerfline::test::RowIndex;
using namespace std::chrono_literals;

namespace {

port::Handle open_rw(const std::string& path) {
  auto opened = port::open_existing(path, port::Access::kReadWrite);
  return opened ? opened.value() : port::kInvalidHandle;
}

struct SerialRow {
  std::chrono::milliseconds delay;
  std::string answer;
  std::optional<std::string> expected;
  bool hang_up;  // the device disappears before it answers
};
class SerialQuery : public ::testing::TestWithParam<SerialRow> {};

const SerialRow kSerial[] = {
    {0ms, "CE6000-60\r", "CE6000-60\r", false},
    {300ms, "0,0,47000,36000\r", "0,0,47000,36000\r", false},
    {0ms, "", "", false},                                             // silent device
    {2600ms, "late\r", "", false},                                    // after the twenty rounds
    {0ms, std::string(10 << 20, 'A'), std::string(128, 'A'), false},  // 10 MB answer
    {0ms, "", "", true},
};

TEST_P(SerialQuery, AnswersWithinTheRounds) {
  const SerialRow& row = GetParam();
  DeviceEnv env;
  const int before = open_descriptors();
  {
    Line line;
    const port::Handle h = open_rw(line.path());
    ASSERT_TRUE(port::is_open_handle(h));
    if (row.hang_up) {
      line.hang_up();
    } else {
      line.serve(';', row.delay, row.answer);
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(dev::QueryDevice(h, h, "OI;", nullptr), row.expected);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 4s);
    EXPECT_EQ(line.stop(), row.hang_up ? "" : "OI;");
  }
  EXPECT_EQ(open_descriptors(), before);  // the query closed its handle
  EXPECT_TRUE(env.host.boxes.empty());
}
INSTANTIATE_TEST_SUITE_P(Table, SerialQuery, ::testing::ValuesIn(kSerial), RowIndex());

TEST(SerialQuery, TheMarkInstructionGoesFirstWhenTheUserSaysYes) {
  for (const int said : {KERFLINE_IDYES, KERFLINE_IDNO}) {
    DeviceEnv env;
    env.host.queue_answer(said);
    Line line;
    line.serve('?', 0ms, "1\r");
    const port::Handle h = open_rw(line.path());
    EXPECT_EQ(dev::QueryDevice(h, h, "OS?", "PA100,100;"), "1\r");
    EXPECT_EQ(line.stop(), said == KERFLINE_IDYES ? "PA100,100;OS?" : "OS?");
    ASSERT_EQ(env.host.boxes.size(), 1u);
    EXPECT_EQ(env.host.boxes[0].text, "PA100,100;");
    EXPECT_EQ(env.host.boxes[0].caption, "Marke anfahren?");
    EXPECT_EQ(env.host.boxes[0].type, KERFLINE_MB_YESNO);
  }
}

TEST(SerialQuery, PendingInputIsDrainedBeforeTheInstruction) {
  DeviceEnv env;
  Line line;
  const port::Handle h = open_rw(line.path());
  ASSERT_TRUE(line.send("stale"));
  std::this_thread::sleep_for(50ms);
  line.serve(';', 0ms, "fresh");
  EXPECT_EQ(dev::QueryDevice(h, h, "OA;", nullptr), "fresh");
}

TEST(QueryLog, RecordsEveryStepWhenCtrlAndShiftAreHeld) {
  DeviceEnv env;
  env.host.ctrl_down = env.host.shift_down = true;
  env.host.queue_answer(KERFLINE_IDYES);
  Line line;
  line.serve(';', 0ms, "OK");
  const port::Handle h = open_rw(line.path());
  EXPECT_EQ(dev::QueryDevice(h, h, "OI;", nullptr), "OK");
  ASSERT_EQ(env.host.boxes.size(), 1u);
  const std::string log_path = env.dir.str() + "readplt.log";
  EXPECT_EQ(env.host.boxes[0].text, "Create logfile ? :" + log_path);
  EXPECT_EQ(env.host.boxes[0].caption, "Reading plotter:");
  const std::string hd = std::to_string(h);
  EXPECT_EQ(env.dir.read("readplt.log"),
            "Creating log:\r\n  Handle(Read):" + hd + "\r\n Handle(Write):" + hd +
                "\r\nInstruction: OI;\r\n"
                "Writing:\r\n State (Return): 1\r\n State (Bytes written): 3\r\n LastError: 0\r\n"
                "FlushFileBuffers:\r\n State (Return): 1\r\n LastError: 0\r\n"
                "ReadFile:\r\n State (Return): 1\r\n State(Bytes reed): 2\r\n LastError: 0\r\n");
}

TEST(QueryLog, AnEmptyInstructionIsLoggedAndClosesTheHandles) {
  DeviceEnv env;
  env.host.ctrl_down = env.host.shift_down = true;
  env.host.queue_answer(KERFLINE_IDYES);
  const int before = open_descriptors();
  Line line;
  const port::Handle h = open_rw(line.path());
  EXPECT_EQ(dev::QueryDevice(h, h, "", nullptr), std::nullopt);
  EXPECT_TRUE(env.dir.read("readplt.log").ends_with("Instruction: \r\nError: Empty instr."));
  line.hang_up();
  EXPECT_EQ(open_descriptors(), before);
}

TEST(QueryLog, IsOnlyOfferedWithBothKeys) {
  DeviceEnv env;
  env.host.ctrl_down = true;
  const port::Handle h = open_rw(env.dir.write("f", "").string());
  EXPECT_EQ(dev::QueryDevice(h, h, "", nullptr), std::nullopt);
  EXPECT_TRUE(env.host.boxes.empty());
}

// A regular file has no line to set up and no input count (as
// ClearCommError fails on a file): the rounds run out.
TEST(SerialQuery, ARegularFileGivesAnEmptyAnswer) {
  DeviceEnv env;
  const auto file = env.dir.write("plot.plt", "");
  const int before = open_descriptors();
  const port::Handle h = open_rw(file.string());
  EXPECT_FALSE(port::setup_serial(h, "plot.plt:", "9600,n,8,1,x"));
  EXPECT_FALSE(port::input_count(h).ok());
  EXPECT_FALSE(port::purge(h));
  EXPECT_EQ(dev::QueryDevice(h, h, "OI;", nullptr), "");
  EXPECT_EQ(env.dir.read("plot.plt"), "OI;");
  EXPECT_EQ(open_descriptors(), before);
}

}  // namespace
