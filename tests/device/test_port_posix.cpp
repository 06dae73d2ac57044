// What only POSIX has: termios set-up of a line, the USB list from sysfs,
// FIFO pairs as the USB pipes, character devices, and the standard
// descriptors that an open never hands out.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cstring>
#include <optional>

#include "fixtures/table_names.hpp"
#include "platform/serial_port.hpp"
#include "platform/usb_devices.hpp"
#include "port_fixture.hpp"

namespace dev = kerfline::device;
namespace port = kerfline::platform::port;
namespace usb = kerfline::platform::usb;
using kerfline::test::DeviceEnv;
using kerfline::test::DriverVars;
using kerfline::test::Line;
using kerfline::test::open_descriptors;
using kerfline::test::RowIndex;
using kerfline::test::TempDir;
using namespace std::chrono_literals;

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
  Line line;
  auto opened = port::open_existing(line.path(), port::Access::kReadWrite);
  ASSERT_TRUE(opened.ok());
  const port::Handle h = opened.value();
  termios before{};
  ASSERT_EQ(::tcgetattr(static_cast<int>(h), &before), 0);
  EXPECT_EQ(port::setup_serial(h, line.path() + ":", row.text), row.speed != B0);
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
                                           LineRow{"9600,n,9,1", B0, false, false, false}),
                         RowIndex());

namespace fs = std::filesystem;

// A USB device in the system tree below root: maker and product files (none
// when empty) and sys/class/<link>/device naming its interface, or the
// interface's `node` directory.
void fake_usb(const TempDir& root, const std::string& usb, const std::string& mfg, const std::string& product,
              const std::string& link, const std::string& node = "") {
  if (!mfg.empty()) root.write("sys/devices/" + usb + "/manufacturer", mfg + "\n");
  if (!product.empty()) root.write("sys/devices/" + usb + "/product", product + "\n");
  fs::path target = root.path() / "sys/devices" / usb / (usb + ":1.0");
  if (!node.empty()) target /= node;
  fs::create_directories(target);
  fs::create_directories(root.path() / "sys/class" / link);
  fs::create_directory_symlink(target, root.path() / "sys/class" / link / "device");
}

TEST(UsbList, ReadsPrintersAndSerialAdaptersFromTheTree) {
  TempDir root;
  fake_usb(root, "1-1", "Graphtec", "CE6000", "usbmisc/lp0");
  root.write("sys/devices/1-1/1-1:1.0/ieee1284_id", "MFG:Graphtec;MDL:CE6000;");
  fake_usb(root, "1-2", "", "", "usbmisc/lp1");
  root.write("sys/devices/1-2/1-2:1.0/ieee1284_id", "MFG:Roland;MDL:GX-24;");
  fake_usb(root, "1-3", "FTDI", "FT232R", "tty/ttyUSB0", "ttyUSB0");
  fake_usb(root, "1-4", "", "Cutter CDC", "tty/ttyACM0");
  fs::create_directories(root.path() / "sys/class/tty/ttyS0");  // not USB
  fs::create_directories(root.path() / "dev/serial/by-id");
  fs::create_symlink("../../ttyUSB0", root.path() / "dev/serial/by-id/usb-FTDI_FT232R_A1-if00-port0");

  const auto list = usb::enumerate(root.path().string());
  std::vector<std::pair<std::string, std::string>> found;
  for (const auto& d : list) found.emplace_back(d.name, d.path);
  const std::string r = root.path().string();
  EXPECT_EQ(found, (std::vector<std::pair<std::string, std::string>>{
                       {"Graphtec CE6000", r + "/dev/usb/lp0"},
                       {"Roland GX-24", r + "/dev/usb/lp1"},
                       {"Cutter CDC", r + "/dev/ttyACM0"},
                       {"FTDI FT232R", r + "/dev/serial/by-id/usb-FTDI_FT232R_A1-if00-port0"}}));
  ASSERT_FALSE(list.empty());
  EXPECT_EQ(list[0].ieee1284_id, "MFG:Graphtec;MDL:CE6000;");
  EXPECT_TRUE(usb::enumerate((root.path() / "nothing").string()).empty());
}

// The child's standard input is a pipe the parent reads back: with nothing
// to open, no text reaches descriptor 0, and no open hands out 0, 1 or 2.
TEST(NullHandle, NeitherOpenedNorWrittenToTheStandardDescriptors) {
  DeviceEnv env;
  env.devices["Cutter"] = {0, "/dev/null", "", "", "", 0};
  DriverVars vars({});
  const auto file = env.dir.write("f", "");
  int fds[2];
  ASSERT_EQ(::pipe(fds), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(0);
    ::close(1);
    auto opened = port::open_existing(file.string(), port::Access::kReadWrite);
    ::dup2(fds[1], 0);
    const bool nothing = DeviceWriteString(vars.drv(), "Cutter", "LEAK") == 0;
    ::_exit(opened.ok() && opened.value() > 2 && nothing ? 0 : 1);
  }
  ::close(fds[1]);
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  char buf[8];
  EXPECT_EQ(::read(fds[0], buf, sizeof buf), 0);
  ::close(fds[0]);
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
  const port::Handle read =
      port::open_existing(env.dir.write("in", "").string(), port::Access::kRead).value();
  const port::Handle write = port::open_existing("/dev/full", port::Access::kWrite).value();
  EXPECT_EQ(dev::QueryDevice(read, write, "OS;", nullptr), std::nullopt);
  EXPECT_EQ(open_descriptors(), before);
}

TEST(OpenUsb, PipesComeFromTheDriverAndAMovedDeviceIsFoundByName) {
  DeviceEnv env;
  env.dir.write("usb/UP", "");
  env.dir.write("usb/DOWN", "");
  // The stored path is stale: enumeration finds the device elsewhere.
  fake_usb(env.dir, "1-1", "", "CE6000", "usbmisc/lp0");
  fs::create_directories(env.dir.path() / "dev/usb");
  fs::create_directory_symlink(env.dir.path() / "usb", env.dir.path() / "dev/usb/lp0");
  ::setenv("KERFLINE_SYSTEM_ROOT", env.dir.path().c_str(), 1);
  dev::PortSettings& s = env.devices["Cutter"];
  s.port_type = 4;
  s.usb_device_name = "CE6000";
  s.usb_device_path = "/nowhere";
  DriverVars vars({{"%USBIn%", "UP"}, {"%USBOut%", "DOWN"}});
  EXPECT_EQ(env.open("Cutter", vars.drv()), 0);
  EXPECT_NE(env.read, env.write);
  EXPECT_TRUE(dev::link_state().pipe_flag);
  EXPECT_TRUE(env.host.boxes.empty());
  const char text[] = "PU0,0;";
  EXPECT_TRUE(port::write(env.write, text, 6).ok);
  dev::close_pair(env.read, env.write);
  EXPECT_EQ(env.dir.read("usb/DOWN"), "PU0,0;");
  ::unsetenv("KERFLINE_SYSTEM_ROOT");
}

TEST(OpenUsb, ACharacterDeviceIsOpenedItselfForBothPipes) {
  DeviceEnv env;
  dev::PortSettings& s = env.devices["Cutter"];
  s.port_type = 4;
  s.usb_device_path = "/dev/null";
  dev::link_state().single_handle_request = true;
  ASSERT_EQ(env.open("Cutter"), 0);
  EXPECT_EQ(env.read, env.write);
  EXPECT_FALSE(dev::link_state().single_handle_request);
  EXPECT_TRUE(dev::link_state().pipe_flag);
  dev::close_pair(env.read, env.write);
}

}  // namespace
