// Decisions about ports that need no device: mode texts, port names, IEEE-1284
// id fields, which link the driver variables choose, and where a USB device
// moved to.
#include <gtest/gtest.h>

#include <optional>

#include "fixtures/table_names.hpp"
#include "platform/serial_port.hpp"
#include "platform/usb_devices.hpp"
#include "port_fixture.hpp"

namespace dev = kerfline::device;
namespace port = kerfline::platform::port;
using kerfline::test::DeviceEnv;
using kerfline::test::DriverVars;
using kerfline::test::RowIndex;

namespace {

struct ModeRow {
  const char* text;
  std::optional<port::LineSettings> settings;  // baud parity data stop(tenths) xon rts
};
class ModeTexts : public ::testing::TestWithParam<ModeRow> {};
TEST_P(ModeTexts, GiveTheLineSettings) {
  const auto s = port::line_settings_for(GetParam().text);
  const auto& want = GetParam().settings;
  ASSERT_EQ(s.has_value(), want.has_value());
  if (!s) return;
  EXPECT_EQ(
      std::tie(s->baud, s->parity, s->data_bits, s->stop_bits, s->xon_xoff, s->rts_cts),
      std::tie(want->baud, want->parity, want->data_bits, want->stop_bits, want->xon_xoff, want->rts_cts));
}
INSTANTIATE_TEST_SUITE_P(
    Table, ModeTexts,
    ::testing::Values(
        ModeRow{"9600,n,8,1,x", port::LineSettings{9600, 'n', 8, 10, true, false}},
        // the "p" of "parity" asks for RTS/CTS
        ModeRow{"baud=9600 parity=N data=8 stop=1", port::LineSettings{9600, 'n', 8, 10, false, true}},
        ModeRow{"96,e,7,2", port::LineSettings{9600, 'e', 7, 20, false, false}},
        ModeRow{"19200,o,8,1,p", port::LineSettings{19200, 'o', 8, 10, false, true}},
        ModeRow{"4800,M,5,1.5", port::LineSettings{4800, 'm', 5, 15, false, false}},
        ModeRow{"baud=115200 data=8 xon=on", port::LineSettings{115200, 'n', 8, 10, true, false}},
        ModeRow{"9600,n,8,1,x,p", std::nullopt}, ModeRow{"FILE", std::nullopt}, ModeRow{"", std::nullopt},
        ModeRow{"9600,q,8,1", std::nullopt}, ModeRow{"9600,n,9,1", std::nullopt},
        ModeRow{"baud=9600 colour=blue", std::nullopt}),
    RowIndex());

// Windows opens its port names itself; elsewhere they map to device nodes.
struct NameRow {
  const char* name;
  const char* posix;
};
class PortNames : public ::testing::TestWithParam<NameRow> {};
TEST_P(PortNames, MapWindowsNamesOnly) {
#ifdef _WIN32
  EXPECT_EQ(port::map_port_name(GetParam().name), GetParam().name);
#else
  EXPECT_EQ(port::map_port_name(GetParam().name), GetParam().posix);
#endif
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
  EXPECT_EQ(kerfline::platform::usb::ieee1284_field(GetParam().id, GetParam().key), GetParam().value);
}
INSTANTIATE_TEST_SUITE_P(Table, DeviceIds,
                         ::testing::Values(IdRow{"MFG:Graphtec;MDL:CE6000-60;CMD:HPGL;", "MDL", "CE6000-60"},
                                           IdRow{"MANUFACTURER:Roland DG;MODEL:GX-24;", "MFG", "Roland DG"},
                                           IdRow{" mfg : Acme ; mdl:Cut 1", "MDL", "Cut 1"},
                                           IdRow{"MFG:;MDL", "MDL", ""}, IdRow{";;;:::", "MFG", ""},
                                           IdRow{"", "MFG", ""}),
                         RowIndex());

using Vars = std::vector<std::pair<std::string, std::string>>;
struct LinkRow {
  Vars vars;
  std::int32_t port_type;
  dev::EDeviceLink link;
  const char* usb_name;  // what the named links give; the others leave the name alone
  bool out_flag_4;
};
class LinkDecision : public ::testing::TestWithParam<LinkRow> {};
TEST_P(LinkDecision, FollowsTheDriverVariablesInOrder) {
  const LinkRow& row = GetParam();
  DeviceEnv env;
  env.devices["Cutter"].port_type = row.port_type;
  DriverVars vars(row.vars);
  std::string usb_name = "untouched";
  EXPECT_EQ(dev::DecideDeviceLink(vars.drv(), "Cutter", usb_name), row.link);
  EXPECT_EQ(usb_name, row.usb_name);
  EXPECT_EQ(dev::link_state().out_flag_4, row.out_flag_4);
  // Once set, the flag stays whatever the next driver says.
  DriverVars off(Vars{{"%OutFlag_4%", "0"}});
  dev::DecideDeviceLink(off.drv(), "Cutter", usb_name);
  EXPECT_EQ(dev::link_state().out_flag_4, row.out_flag_4);
}
const LinkRow kLinks[] = {
    {{}, 4, dev::LinkPort, "untouched", false},
    {{{"%RolandUSB%", "1"}, {"%RolandUSBDevName%", "GX-24"}}, 4, dev::LinkRdgUsb, "GX-24", false},
    {{{"%RolandUSB%", "1"}, {"%RolandUSBDevName%", "GX-24"}}, 2, dev::LinkPort, "untouched", false},
    {{{"%RolandUSB%", "2"}, {"%RolandUSBDevName%", "SLOT"}}, 4, dev::LinkSlotReader, "SLOT", false},
    {{{"%RolandUSB%", "2"}}, 4, dev::LinkSlotReader, "", false},
    {{{"%RolandUSB%", "0"}, {"%USBApi%", "1"}, {"%TCPIPApi%", "1"}}, 4, dev::LinkPort, "untouched", false},
    {{{"%USBApi%", "1"}}, 4, dev::LinkUsbApi, "untouched", false},
    {{{"%USBApi%", "2"}}, 4, dev::LinkUsbPipeSingle, "untouched", false},
    {{{"%USBApi%", "3"}}, 4, dev::LinkGraphtecUsb, "untouched", false},
    {{{"%USBApi%", "3"}}, 2, dev::LinkPort, "untouched", false},
    {{{"%USBApi%", "0"}, {"%TCPIPApi%", "1"}}, 2, dev::LinkPort, "untouched", false},
    {{{"%TCPIPApi%", "1"}}, 2, dev::LinkTcpIp, "untouched", false},
    {{{"%TCPIPApi%", "1"}}, 0, dev::LinkTcpIp, "untouched", false},
    {{{"%TCPIPApi%", "1 "}}, 2, dev::LinkPort, "untouched", false},
    {{{"%USBApi%", " 1"}}, 4, dev::LinkPort, "untouched", false},
    {{{"%OutFlag_4%", "1"}, {"%TCPIPApi%", "1"}}, 2, dev::LinkTcpIp, "untouched", true},
};
INSTANTIATE_TEST_SUITE_P(Table, LinkDecision, ::testing::ValuesIn(kLinks), RowIndex());

struct UsbRow {
  std::vector<dev::UsbEntry> present;
  const char* stored_path;
  const char* resolved;  // the stored name is always "CE6000"
};
class UsbPaths : public ::testing::TestWithParam<UsbRow> {};
TEST_P(UsbPaths, FindTheDeviceAgainByName) {
  EXPECT_EQ(dev::resolve_usb_path(GetParam().present, "CE6000", GetParam().stored_path), GetParam().resolved);
}
INSTANTIATE_TEST_SUITE_P(
    Table, UsbPaths,
    ::testing::Values(
        UsbRow{{{"CE6000", "/dev/usb/lp0"}}, "/dev/usb/lp0", "/dev/usb/lp0"},
        UsbRow{{{"CE6000", "/dev/usb/lp1"}}, "/dev/usb/lp0", "/dev/usb/lp1"},
        UsbRow{{{"GX-24", "/dev/usb/lp0"}}, "/dev/usb/lp3", "/dev/usb/lp3"},
        UsbRow{{}, "/dev/usb/lp3", "/dev/usb/lp3"},
        UsbRow{{{"CE6000", "/dev/usb/lp1"}, {"CE6000", "/dev/usb/lp2"}}, "/dev/usb/lp9", "/dev/usb/lp1"},
        UsbRow{{{"CE6000", "/dev/usb/lp1"}, {"CE6000", "/dev/usb/lp2"}}, "/dev/usb/lp2", "/dev/usb/lp2"},
        UsbRow{{{"ce6000", "/dev/usb/lp1"}}, "/dev/usb/lp0", "/dev/usb/lp0"}),
    RowIndex());

}  // namespace
