// One question and its answer over real ports: a pseudo-terminal with a
// peer, FIFO pairs, a regular file; the log a user asks for; faults.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>

#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "port_fixture.hpp"

namespace dev = kerfline::device;
namespace port = kerfline::platform::port;
using kerfline::test::DeviceEnv;
using kerfline::test::HostRecorder;
using kerfline::test::open_descriptors;
using kerfline::test::Pty;
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
  HostRecorder host;
  Pty pty;
  const int before = open_descriptors();
  const port::Handle h = open_rw(pty.path());
  ASSERT_TRUE(port::is_open_handle(h));
  if (row.hang_up) {
    pty.hang_up();
  } else {
    pty.serve(';', row.delay, row.answer);
  }
  const auto start = std::chrono::steady_clock::now();
  const auto answer = dev::QueryDevice(h, h, "OI;", nullptr);
  const auto took = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(answer, row.expected);
  EXPECT_LT(took, 4s);
  if (!row.hang_up) {
    EXPECT_EQ(pty.stop(), "OI;");
  }
  EXPECT_EQ(open_descriptors(), before - (row.hang_up ? 1 : 0));  // the hang-up closed the master
  EXPECT_TRUE(host.boxes.empty());
}
INSTANTIATE_TEST_SUITE_P(Table, SerialQuery, ::testing::ValuesIn(kSerial), RowIndex());

TEST(SerialQuery, TheMarkInstructionGoesFirstWhenTheUserSaysYes) {
  for (const int said : {KERFLINE_IDYES, KERFLINE_IDNO}) {
    DeviceEnv env;
    HostRecorder host;
    host.queue_answer(said);
    Pty pty;
    pty.serve('?', 0ms, "1\r");
    const port::Handle h = open_rw(pty.path());
    EXPECT_EQ(dev::QueryDevice(h, h, "OS?", "PA100,100;"), "1\r");
    EXPECT_EQ(pty.stop(), said == KERFLINE_IDYES ? "PA100,100;OS?" : "OS?");
    ASSERT_EQ(host.boxes.size(), 1u);
    EXPECT_EQ(host.boxes[0].text, "PA100,100;");
    EXPECT_EQ(host.boxes[0].caption, "Marke anfahren?");
    EXPECT_EQ(host.boxes[0].type, KERFLINE_MB_YESNO);
  }
}

TEST(SerialQuery, PendingInputIsDrainedBeforeTheInstruction) {
  DeviceEnv env;
  Pty pty;
  const port::Handle h = open_rw(pty.path());
  ASSERT_EQ(::write(pty.master(), "stale", 5), 5);
  std::this_thread::sleep_for(50ms);
  pty.serve(';', 0ms, "fresh");
  EXPECT_EQ(dev::QueryDevice(h, h, "OA;", nullptr), "fresh");
}

TEST(QueryLog, RecordsEveryStepWhenCtrlAndShiftAreHeld) {
  DeviceEnv env;
  HostRecorder host;
  host.ctrl_down = host.shift_down = true;
  host.queue_answer(KERFLINE_IDYES);
  Pty pty;
  pty.serve(';', 0ms, "OK");
  const port::Handle h = open_rw(pty.path());
  EXPECT_EQ(dev::QueryDevice(h, h, "OI;", nullptr), "OK");
  ASSERT_EQ(host.boxes.size(), 1u);
  const std::string log_path = env.dir.str() + "readplt.log";
  EXPECT_EQ(host.boxes[0].text, "Create logfile ? :" + log_path);
  EXPECT_EQ(host.boxes[0].caption, "Reading plotter:");
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
  HostRecorder host;
  host.ctrl_down = host.shift_down = true;
  host.queue_answer(KERFLINE_IDYES);
  const int before = open_descriptors();
  Pty pty;
  const port::Handle h = open_rw(pty.path());
  EXPECT_EQ(dev::QueryDevice(h, h, "", nullptr), std::nullopt);
  EXPECT_TRUE(env.dir.read("readplt.log").ends_with("Instruction: \r\nError: Empty instr."));
  pty.hang_up();
  EXPECT_EQ(open_descriptors(), before + 1);  // only the test's own slave end
}

TEST(QueryLog, IsOnlyOfferedWithBothKeys) {
  DeviceEnv env;
  HostRecorder host;
  host.ctrl_down = true;
  const port::Handle h = open_rw(env.dir.write("f", "").string());
  EXPECT_EQ(dev::QueryDevice(h, h, "", nullptr), std::nullopt);
  EXPECT_TRUE(host.boxes.empty());
}

// A regular file in serial mode has no input count: the rounds run out.
TEST(SerialQuery, ARegularFileGivesAnEmptyAnswer) {
  DeviceEnv env;
  const auto file = env.dir.write("plot.plt", "");
  const port::Handle h = open_rw(file.string());
  const int before = open_descriptors();
  EXPECT_EQ(dev::QueryDevice(h, h, "OI;", nullptr), "");
  EXPECT_EQ(env.dir.read("plot.plt"), "OI;");
  EXPECT_EQ(open_descriptors(), before - 1);
}

// FIFO pairs stand in for the two USB pipes.
struct PipeRow {
  bool no_flush;
  std::string answer;  // "" leaves the device silent
  bool writer_gone;    // the device closes its end before the reads
  std::optional<std::string> expected;
  const char* device_received;
};
class PipeQuery : public ::testing::TestWithParam<PipeRow> {};

const PipeRow kPipes[] = {
    {true, "42\r", false, "42\r", "OS;"},
    {false, "42\r", false, "42\r", "X1b;@:\r\nEND.\r\nOS;"},
    {true, "", false, "", "OS;"},
    {true, "", true, "", "OS;"},
};

TEST_P(PipeQuery, FlushesOnlyWhenAskedAndReadsAnAnswer) {
  const PipeRow& row = GetParam();
  DeviceEnv env;
  const std::string down = env.dir.str() + "down";
  const std::string up = env.dir.str() + "up";
  ASSERT_EQ(::mkfifo(down.c_str(), 0600), 0);
  ASSERT_EQ(::mkfifo(up.c_str(), 0600), 0);
  const int device_in = ::open(down.c_str(), O_RDONLY | O_NONBLOCK);
  const int device_out = ::open(up.c_str(), O_RDWR);
  const int before = open_descriptors();
  const port::Handle write = port::open_existing(down, port::Access::kWrite).value();
  const port::Handle read = port::open_existing(up, port::Access::kRead).value();
  if (row.writer_gone) ::close(device_out);
  dev::link_state().pipe_flag = true;
  dev::link_state().no_flush = row.no_flush;
  std::string received;
  std::thread device([&] {
    for (int i = 0; i < 300 && received.find("OS;") == std::string::npos; ++i) {
      char buf[64];
      const ssize_t n = ::read(device_in, buf, sizeof buf);
      if (n > 0) received.append(buf, static_cast<std::size_t>(n));
      std::this_thread::sleep_for(10ms);
    }
    if (!row.answer.empty()) {
      EXPECT_EQ(::write(device_out, row.answer.data(), row.answer.size()),
                static_cast<ssize_t>(row.answer.size()));
    }
  });
  const auto answer = dev::QueryDevice(read, write, "OS;", nullptr);
  device.join();
  EXPECT_EQ(answer, row.expected);
  EXPECT_EQ(received, row.device_received);
  EXPECT_EQ(open_descriptors(), before - (row.writer_gone ? 1 : 0));
  ::close(device_in);
  if (!row.writer_gone) ::close(device_out);
}
INSTANTIATE_TEST_SUITE_P(Table, PipeQuery, ::testing::ValuesIn(kPipes), RowIndex());

TEST(PipeQuery, AFailedWriteGivesNullAndClosesBoth) {
  DeviceEnv env;
  const int before = open_descriptors();
  const port::Handle read = open_rw(env.dir.write("in", "").string());
  const port::Handle write = port::open_existing("/dev/full", port::Access::kWrite).value();
  EXPECT_EQ(dev::QueryDevice(read, write, "OS;", nullptr), std::nullopt);
  EXPECT_EQ(open_descriptors(), before);
}

}  // namespace
