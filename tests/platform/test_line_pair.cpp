// The line pair (a pseudo-terminal; a named pipe on Windows) and, on POSIX,
// the FIFOs that stand in for USB pipes.
#include <gtest/gtest.h>

#include <string>

#include "fixtures/temp_dir.hpp"
#include "platform/fifo.hpp"
#include "platform/line_pair.hpp"

namespace kerfline::platform {
namespace {

std::string read_n(ByteStream& s, std::size_t n) {
  std::string got;
  char buf[64];
  while (got.size() < n) {
    auto r = s.read(buf, sizeof(buf), 2000);
    if (!r || r->count == 0) break;
    got.append(buf, r->count);
  }
  return got;
}

TEST(LinePair, PassesEveryByteBothWaysToEachPeerAndSeesTheLastCloseOnceReleased) {
  auto line = LinePair::open();
  ASSERT_TRUE(line) << line.error().message;
  // Line editing, echo or CR/LF mapping would change or add to these.
  const std::string awkward = "OI;\r\n\x03\x7f\x11\x13\x1b.B\x04";
  for (int peer = 0; peer < 2; ++peer) {  // a close before the release lets the next peer in
    auto device = open_line_device(line->device_path());
    ASSERT_TRUE(device) << device.error().message;
    ASSERT_TRUE(device->write(awkward.data(), awkward.size(), 1000));
    EXPECT_EQ(read_n(line->stream(), awkward.size()), awkward);
    ASSERT_TRUE(line->stream().write(awkward.data(), awkward.size(), 1000));
    EXPECT_EQ(read_n(*device, awkward.size()), awkward);
    if (peer == 1) line->release_device();
  }
  char c = 0;
  auto end = line->stream().read(&c, 1, 2000);
  EXPECT_TRUE(end && end->closed);
  EXPECT_FALSE(open_line_device(line->device_path() + "x").ok());
}

#ifndef _WIN32  // Windows has no FIFOs in its file system
TEST(Fifo, ReaderSeesTheEndWhenItsWriterLeavesAndWriterNeverWaitsForAReader) {
  test::TempDir dir;
  const std::string path = (dir.path() / "PIPE01").string();
  ASSERT_TRUE(make_fifo(path));
  ASSERT_TRUE(make_fifo(path));  // an existing FIFO is kept

  auto reader = open_fifo_reader(path);
  ASSERT_TRUE(reader);
  char c = 0;
  auto idle = reader->read(&c, 1, 30);  // no writer yet: a time-out, not the end
  ASSERT_TRUE(idle);
  EXPECT_TRUE(idle->timed_out());
  {
    auto writer = open_fifo_writer(path);
    ASSERT_TRUE(writer);
    ASSERT_TRUE(writer->write("PU;", 3, 1000));
    EXPECT_EQ(read_n(*reader, 3), "PU;");
  }
  auto end = reader->read(&c, 1, 2000);
  EXPECT_TRUE(end && end->closed);

  auto alone = open_fifo_writer((dir.path() / "PIPE00").string());
  EXPECT_FALSE(alone.ok());  // not created yet
  ASSERT_TRUE(make_fifo((dir.path() / "PIPE00").string()));
  auto lonely = open_fifo_writer((dir.path() / "PIPE00").string());
  ASSERT_TRUE(lonely);
  EXPECT_TRUE(lonely->write("0\r", 2, 100));

  dir.write("plain", "x");
  EXPECT_FALSE(make_fifo((dir.path() / "plain").string()));
}
#endif

}  // namespace
}  // namespace kerfline::platform
