// The platform port layer: mode texts, port names, device ids, the USB list
// and the handles it never hands out.
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

struct ModeRow {
  const char* text;
  bool parses;
  std::uint32_t baud;
  speed_t speed;
  char parity;
  int data_bits;
  int stop_tenths;
  bool xon;
  bool rts_cts;
};

class ModeTexts : public ::testing::TestWithParam<ModeRow> {};

const ModeRow kModes[] = {
    {"9600,n,8,1,x", true, 9600, B9600, 'n', 8, 10, true, false},
    {"baud=9600 parity=N data=8 stop=1", true, 9600, B9600, 'n', 8, 10, false, true},  // "p" of "parity"
    {"96,e,7,2", true, 9600, B9600, 'e', 7, 20, false, false},
    {"19200,o,8,1,p", true, 19200, B19200, 'o', 8, 10, false, true},
    {"4800,M,5,1.5", true, 4800, B4800, 'm', 5, 15, false, false},
    {"baud=115200 data=8 xon=on", true, 115200, B115200, 'n', 8, 10, true, false},
    {"9600,n,8,1,x,p", false, 0, B0, 'n', 0, 0, false, false},
    {"FILE", false, 0, B0, 'n', 0, 0, false, false},
    {"", false, 0, B0, 'n', 0, 0, false, false},
    {"9600,q,8,1", false, 0, B0, 'n', 0, 0, false, false},
    {"9600,n,9,1", false, 0, B0, 'n', 0, 0, false, false},
    {"baud=9600 colour=blue", false, 0, B0, 'n', 0, 0, false, false},
};

TEST_P(ModeTexts, GiveTheLineSettings) {
  const ModeRow& row = GetParam();
  const auto s = port::line_settings_for(row.text);
  ASSERT_EQ(s.has_value(), row.parses);
  if (!s) return;
  EXPECT_EQ(s->baud, row.baud);
  EXPECT_EQ(s->parity, row.parity);
  EXPECT_EQ(s->data_bits, row.data_bits);
  EXPECT_EQ(s->stop_bits, row.stop_tenths);
  EXPECT_EQ(s->xon_xoff, row.xon);
  EXPECT_EQ(s->rts_cts, row.rts_cts);
}

// A pseudo-terminal keeps 8 data bits without parity whatever it is told,
// so speed, stop bits and flow control are what can be seen on it.
TEST_P(ModeTexts, SetUpTheLineOrLeaveItAsItIs) {
  const ModeRow& row = GetParam();
  Pty pty;
  auto opened = port::open_existing(pty.path(), port::Access::kReadWrite);
  ASSERT_TRUE(opened.ok());
  const port::Handle h = opened.value();
  termios before{};
  ASSERT_EQ(::tcgetattr(static_cast<int>(h), &before), 0);
  EXPECT_EQ(port::setup_serial(h, pty.path() + ":", row.text), row.parses);
  termios after{};
  ASSERT_EQ(::tcgetattr(static_cast<int>(h), &after), 0);
  if (!row.parses) {
    EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
  } else {
    EXPECT_EQ(::cfgetospeed(&after), row.speed);
    EXPECT_EQ((after.c_cflag & CSTOPB) != 0, row.stop_tenths > 10);
    EXPECT_EQ((after.c_iflag & IXON) != 0 && (after.c_iflag & IXOFF) != 0, row.xon);
    EXPECT_EQ((after.c_cflag & CRTSCTS) != 0, row.rts_cts);
  }
  EXPECT_TRUE(port::close(h));
}
INSTANTIATE_TEST_SUITE_P(Table, ModeTexts, ::testing::ValuesIn(kModes), RowIndex());

TEST(ModeTexts, SetUpIsSkippedWhereThereIsNoLine) {
  TempDir dir;
  const auto file = dir.write("out.plt", "");
  auto opened = port::open_existing(file.string(), port::Access::kReadWrite);
  ASSERT_TRUE(opened.ok());
  EXPECT_FALSE(port::setup_serial(opened.value(), "out.plt:", "9600,n,8,1,x"));
  EXPECT_FALSE(port::input_count(opened.value()).ok());  // as ClearCommError fails on a file
  EXPECT_FALSE(port::purge(opened.value()));
  port::close(opened.value());
}

using NameRow = std::pair<const char*, const char*>;
class PortNames : public ::testing::TestWithParam<NameRow> {};
TEST_P(PortNames, MapWindowsNamesOnly) {
  EXPECT_EQ(port::map_port_name(GetParam().first), GetParam().second);
}
INSTANTIATE_TEST_SUITE_P(Table, PortNames,
                         ::testing::Values(NameRow{"COM1", "/dev/ttyS0"}, NameRow{"com3:", "/dev/ttyS2"},
                                           NameRow{"LPT1", "/dev/lp0"}, NameRow{"LPT2:", "/dev/lp1"},
                                           NameRow{"COM", "COM"}, NameRow{"COM0", "COM0"},
                                           NameRow{"COMX1", "COMX1"}, NameRow{"COM1234", "COM1234"},
                                           NameRow{"/dev/ttyUSB0", "/dev/ttyUSB0"},
                                           NameRow{"out.plt", "out.plt"}),
                         RowIndex());

struct IdRow {
  const char* id;
  const char* key;
  const char* value;
};
class DeviceIds : public ::testing::TestWithParam<IdRow> {};
TEST_P(DeviceIds, GiveTheFieldAsked) {
  EXPECT_EQ(usb::ieee1284_field(GetParam().id, GetParam().key), GetParam().value);
}
INSTANTIATE_TEST_SUITE_P(Table, DeviceIds,
                         ::testing::Values(IdRow{"MFG:Graphtec;MDL:CE6000-60;CMD:HPGL;", "MDL", "CE6000-60"},
                                           IdRow{"MANUFACTURER:Roland DG;MODEL:GX-24;", "MFG", "Roland DG"},
                                           IdRow{" mfg : Acme ; mdl:Cut 1", "MDL", "Cut 1"},
                                           IdRow{"MFG:;MDL", "MDL", ""}, IdRow{";;;:::", "MFG", ""},
                                           IdRow{"", "MFG", ""}),
                         RowIndex());

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
