// The real kerfline-sim as a child process, reached over each transport
// (FIFOs on POSIX only: Windows has none).
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "answer_table.hpp"
#include "fixtures/read_exactly.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "platform/byte_stream.hpp"
#include "platform/fifo.hpp"
#include "platform/line_pair.hpp"
#include "platform/tcp_socket.hpp"
#include "sim_process.hpp"

namespace kerfline::test {
namespace {

using platform::ByteStream;

bool peer_closed(ByteStream& s, int timeout_ms = 3000) {
  char c = 0;
  auto r = s.read(&c, 1, timeout_ms);
  return !r || r->closed;
}

// A connection to a running simulator: one stream both ways, or the FIFO
// pair's two.
struct Link {
  ByteStream to_sim;
  ByteStream from_fifo;
  ByteStream& from_sim() { return from_fifo.is_open() ? from_fifo : to_sim; }
};

// line: the device path; tcp: a loopback connection; fifo: the pipe pair.
enum class Kind { line, fifo, tcp };

struct Running {
  std::unique_ptr<TempDir> dir = std::make_unique<TempDir>();
  std::unique_ptr<SimProcess> sim;
  std::string ready;
};

Running start(Kind kind, std::vector<std::string> extra = {}) {
  Running r;
  std::vector<std::string> args;
  if (kind == Kind::line) args = {"--pty"};
  if (kind == Kind::tcp) args = {"--tcp", "0"};
  if (kind == Kind::fifo) args = {"--fifo", r.dir->path().string()};
  args.insert(args.end(), extra.begin(), extra.end());
  r.sim = std::make_unique<SimProcess>(args);
  r.ready = r.sim->ready_line();
  return r;
}

// Connects as a host would: the line's device is opened once, read-write.
Link connect(Kind kind, const Running& r) {
  Link link;
  if (kind == Kind::tcp) {
    auto s = platform::tcp_connect("127.0.0.1", static_cast<std::uint16_t>(std::stoi(r.ready)), 3000);
    if (s) link.to_sim = std::move(*s);
  } else if (kind == Kind::line) {
    auto s = platform::open_line_device(r.ready);
    if (s) link.to_sim = std::move(*s);
  } else {
    const auto dir = std::filesystem::path(r.ready);
    auto rd = platform::open_fifo_reader((dir / "PIPE00").string());
    if (rd) link.from_fifo = std::move(*rd);
    auto s = platform::open_fifo_writer((dir / "PIPE01").string());
    if (s) link.to_sim = std::move(*s);
  }
  return link;
}

std::string ask(Link& link, const std::string& sent, std::size_t want) {
  auto w = link.to_sim.write(sent.data(), sent.size(), 2000);
  if (!w || *w != sent.size()) return "<write failed>";
  return read_exactly(link.from_sim(), want);
}

class Transports : public ::testing::TestWithParam<Kind> {};

TEST_P(Transports, AnswerEveryRowOfTheTableInOneSession) {
  auto r = start(GetParam());
  ASSERT_FALSE(r.ready.empty());
  Link link = connect(GetParam(), r);
  ASSERT_TRUE(link.to_sim.is_open());
  for (const auto& row : answer_table()) {
    EXPECT_EQ(ask(link, row.sent, row.answer.size()), row.answer) << row.sent;
  }
}

TEST_P(Transports, OnceEndsTheRunWhenThePeerClosesWithTheCutAsSvgAndWhatCameAsLog) {
  TempDir out;
  auto r = start(GetParam(), {"--once", "--svg", out.str("cut.svg"), "--log", out.str("in.log")});
  const std::string square = "IN;SP1;PU0,0;PD400,0,400,400,0,400,0,0;PU;OA;";
  {
    Link link = connect(GetParam(), r);
    EXPECT_EQ(ask(link, square, 6), "0,0,0\r");
    EXPECT_EQ(r.sim->wait_exit(300), -1);  // still serving while connected
  }
  ASSERT_EQ(r.sim->wait_exit(5000), 0);
  EXPECT_EQ(out.read("in.log"), square);
  EXPECT_NE(out.read("cut.svg").find("<polyline points=\"0,0 400,0 400,400 0,400 0,0\"/>"),
            std::string::npos);
}

TEST_P(Transports, SilentAndDelayedAnswers) {
  auto silent = start(GetParam(), {"--silent"});
  Link quiet = connect(GetParam(), silent);
  EXPECT_EQ(ask(quiet, "OI;", 1), "");

  auto slow = start(GetParam(), {"--delay-ms", "400"});
  Link link = connect(GetParam(), slow);
  ASSERT_TRUE(link.to_sim.write("OF;", 3, 1000));
  EXPECT_EQ(read_exactly(link.from_sim(), 1, 100), "");  // not before the delay
  EXPECT_EQ(read_exactly(link.from_sim(), 6), "40,40\r");
}

TEST_P(Transports, FloodAnswersTheWholeAmount) {
  auto r = start(GetParam(), {"--flood=300000"});
  Link link = connect(GetParam(), r);
  const std::string got = ask(link, "OI;", 300000);
  EXPECT_EQ(got.size(), 300000u);
  EXPECT_EQ(read_exactly(link.from_sim(), 1, 200), "");
}

#ifdef _WIN32
const Kind kKinds[] = {Kind::line, Kind::tcp};
#else
const Kind kKinds[] = {Kind::line, Kind::fifo, Kind::tcp};
#endif
INSTANTIATE_TEST_SUITE_P(
    Sim, Transports, ::testing::ValuesIn(kKinds), [](const ::testing::TestParamInfo<Kind>& i) {
      return std::string(i.param == Kind::line ? "line" : i.param == Kind::fifo ? "fifo" : "tcp");
    });

TEST(SimFaults, DefaultFloodIsTenMegabytesOnTcp) {
  auto r = start(Kind::tcp, {"--flood"});
  Link link = connect(Kind::tcp, r);
  EXPECT_EQ(ask(link, "OI;", 20u << 20).size(), 10u << 20);
}

TEST(SimFaults, DropAfterHangsUpMidInstructionWithoutAnswering) {
  TempDir out;
  auto r = start(Kind::tcp, {"--drop-after", "5", "--log", out.str("drop.log")});
  {
    Link link = connect(Kind::tcp, r);
    ASSERT_TRUE(link.to_sim.write("OI;OH;", 6, 1000));
    EXPECT_TRUE(peer_closed(link.from_sim()));
  }
  {
    Link again = connect(Kind::tcp, r);  // each connection gets the same treatment
    EXPECT_EQ(ask(again, "OF;", 6), "40,40\r");
  }
  r.sim->stop();
#ifndef _WIN32  // a stop signal ends the run normally; Windows ends it outright
  EXPECT_EQ(r.sim->wait_exit(0), 0);
#endif
  EXPECT_EQ(out.read("drop.log"), "OI;OHOF;");
}

TEST(SimFaults, DropAfterOnALineMakesTheDeviceDisappear) {
  auto r = start(Kind::line, {"--drop-after", "2"});
  Link link = connect(Kind::line, r);
  ASSERT_TRUE(link.to_sim.write("OI;", 3, 1000));
  EXPECT_TRUE(peer_closed(link.from_sim()));
  EXPECT_EQ(r.sim->wait_exit(5000), 0);
}

TEST(SimFaults, RefusedTcpConnectionsAreClosedBeforeAnyAnswer) {
  auto r = start(Kind::tcp, {"--refuse", "2"});
  for (int i = 0; i < 2; ++i) {
    Link link = connect(Kind::tcp, r);
    link.to_sim.write("OF;", 3, 1000);
    EXPECT_TRUE(peer_closed(link.from_sim())) << "connection " << i;
  }
  Link third = connect(Kind::tcp, r);
  EXPECT_EQ(ask(third, "OF;", 6), "40,40\r");
}

#ifndef _WIN32
TEST(SimFaults, RefusedFifoOpensFindNoPipesUntilTheyAppear) {
  auto r = start(Kind::fifo, {"--refuse", "1"});
  const auto pipe = std::filesystem::path(r.ready) / "PIPE01";
  EXPECT_FALSE(platform::open_fifo_writer(pipe.string()).ok());
  bool appeared = false;
  for (int i = 0; i < 100 && !appeared; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    appeared = std::filesystem::exists(pipe);
  }
  ASSERT_TRUE(appeared);
  Link link = connect(Kind::fifo, r);
  EXPECT_EQ(ask(link, "OF;", 6), "40,40\r");
}
#endif

TEST(SimFaults, BadArgumentsExitWithUsage) {
  SimProcess sim({"--bogus"});
  EXPECT_EQ(sim.wait_exit(5000), 2);
}

}  // namespace
}  // namespace kerfline::test
