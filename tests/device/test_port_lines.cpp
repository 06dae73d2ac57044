// The POSIX side of the port layer: termios set-up of a line, the USB list
// from sysfs and the descriptors an open never hands out.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstring>
#include <optional>

#include "fixtures/table_names.hpp"
#include "platform/serial_port.hpp"
#include "platform/usb_devices.hpp"
#include "port_fixture.hpp"

namespace port = kerfline::platform::port;
namespace usb = kerfline::platform::usb;
using kerfline::test::Pty;
using kerfline::test::RowIndex;
using kerfline::test::TempDir;

namespace {

// A pseudo-terminal keeps 8 data bits without parity whatever it is told,
// so speed, stop bits and flow control are what can be seen on it. A text
// that does not parse (speed B0) leaves the line as it was.
struct LineRow {
  const char* text;
  speed_t speed;
  bool two_stop;
  bool xon;
  bool rts_cts;
};
class LineSetUp : public ::testing::TestWithParam<LineRow> {};
TEST_P(LineSetUp, SetsUpTheLineOrLeavesItAsItIs) {
  const LineRow& row = GetParam();
  Pty pty;
  auto opened = port::open_existing(pty.path(), port::Access::kReadWrite);
  ASSERT_TRUE(opened.ok());
  const port::Handle h = opened.value();
  termios before{};
  ASSERT_EQ(::tcgetattr(static_cast<int>(h), &before), 0);
  EXPECT_EQ(port::setup_serial(h, pty.path() + ":", row.text), row.speed != B0);
  termios after{};
  ASSERT_EQ(::tcgetattr(static_cast<int>(h), &after), 0);
  if (row.speed == B0) {
    EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
  } else {
    EXPECT_EQ(::cfgetospeed(&after), row.speed);
    EXPECT_EQ((after.c_cflag & CSTOPB) != 0, row.two_stop);
    EXPECT_EQ((after.c_iflag & IXON) != 0 && (after.c_iflag & IXOFF) != 0, row.xon);
    EXPECT_EQ((after.c_cflag & CRTSCTS) != 0, row.rts_cts);
  }
  EXPECT_TRUE(port::close(h));
}
INSTANTIATE_TEST_SUITE_P(Table, LineSetUp,
                         ::testing::Values(LineRow{"9600,n,8,1,x", B9600, false, true, false},
                                           LineRow{"96,e,7,2", B9600, true, false, false},
                                           LineRow{"19200,o,8,1,p", B19200, false, false, true},
                                           LineRow{"baud=115200 data=8 xon=on", B115200, false, true, false},
                                           LineRow{"9600,n,9,1", B0, false, false, false},
                                           LineRow{"FILE", B0, false, false, false}),
                         RowIndex());

TEST(NoLine, SetUpIsSkippedOnAFile) {
  TempDir dir;
  const auto file = dir.write("out.plt", "");
  auto opened = port::open_existing(file.string(), port::Access::kReadWrite);
  ASSERT_TRUE(opened.ok());
  EXPECT_FALSE(port::setup_serial(opened.value(), "out.plt:", "9600,n,8,1,x"));
  EXPECT_FALSE(port::input_count(opened.value()).ok());  // as ClearCommError fails on a file
  EXPECT_FALSE(port::purge(opened.value()));
  port::close(opened.value());
}

TEST(UsbList, ReadsPrintersAndSerialAdaptersFromTheTree) {
  namespace fs = std::filesystem;
  TempDir root;
  auto device = [&](const std::string& usb, const std::string& mfg, const std::string& product) {
    if (!mfg.empty()) root.write("sys/devices/" + usb + "/manufacturer", mfg + "\n");
    if (!product.empty()) root.write("sys/devices/" + usb + "/product", product + "\n");
    fs::create_directories(root.path() / "sys/devices" / usb / (usb + ":1.0"));
    return root.path() / "sys/devices" / usb / (usb + ":1.0");
  };
  auto link = [&](const fs::path& target, const std::string& at) {
    fs::create_directories((root.path() / at).parent_path());
    fs::create_directory_symlink(target, root.path() / at);
  };
  const fs::path lp0 = device("1-1", "Graphtec", "CE6000");
  root.write("sys/devices/1-1/1-1:1.0/ieee1284_id", "MFG:Graphtec;MDL:CE6000;");
  const fs::path lp1 = device("1-2", "", "");
  root.write("sys/devices/1-2/1-2:1.0/ieee1284_id", "MFG:Roland;MDL:GX-24;");
  const fs::path ftdi = device("1-3", "FTDI", "FT232R");
  fs::create_directories(ftdi / "ttyUSB0");
  const fs::path acm = device("1-4", "", "Cutter CDC");
  for (const auto& [target, at] :
       std::vector<std::pair<fs::path, std::string>>{{lp0, "sys/class/usbmisc/lp0/device"},
                                                     {lp1, "sys/class/usbmisc/lp1/device"},
                                                     {ftdi / "ttyUSB0", "sys/class/tty/ttyUSB0/device"},
                                                     {acm, "sys/class/tty/ttyACM0/device"}}) {
    link(target, at);
  }
  fs::create_directories(root.path() / "sys/class/tty/ttyS0");  // not USB
  fs::create_directories(root.path() / "dev/serial/by-id");
  fs::create_symlink("../../ttyUSB0", root.path() / "dev/serial/by-id/usb-FTDI_FT232R_A1-if00-port0");

  const auto list = usb::enumerate(root.path().string());
  ASSERT_EQ(list.size(), 4u);
  const std::string r = root.path().string();
  const std::vector<std::pair<std::string, std::string>> expected{
      {"Graphtec CE6000", r + "/dev/usb/lp0"},
      {"Roland GX-24", r + "/dev/usb/lp1"},
      {"Cutter CDC", r + "/dev/ttyACM0"},
      {"FTDI FT232R", r + "/dev/serial/by-id/usb-FTDI_FT232R_A1-if00-port0"}};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(list[i].name, expected[i].first) << i;
    EXPECT_EQ(list[i].path, expected[i].second) << i;
  }
  EXPECT_EQ(list[0].ieee1284_id, "MFG:Graphtec;MDL:CE6000;");
  EXPECT_TRUE(usb::enumerate((root.path() / "nothing").string()).empty());
}

TEST(NullHandle, AnOpenNeverHandsOutTheStandardDescriptors) {
  TempDir dir;
  const auto file = dir.write("f", "");
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(0);
    ::close(1);
    auto opened = port::open_existing(file.string(), port::Access::kReadWrite);
    ::_exit(opened.ok() && opened.value() > 2 ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
