// Each settings class against real INI files: what it reads (defaults and
// values) and exactly which lines it writes back, in which order.
#include <functional>
#include <memory>
#include <sstream>

#include "devconfig/suite_fixture.hpp"
#include "fixtures/table_names.hpp"
#include "kerfline/device_settings.hpp"

namespace {

using kerfline::test::SuiteDir;
using Factory = std::function<std::unique_ptr<CBaseDeviceSettings>()>;

template <typename T>
Factory make() {
  return [] { return std::unique_ptr<CBaseDeviceSettings>(new T); };
}

// Section lines are written "a|b|c" here.
std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> lines;
  std::stringstream in(text);
  for (std::string line; std::getline(in, line, '|');) lines.push_back(line);
  return lines;
}

struct KeyRow {
  Factory factory;
  std::string input;                         // lines of section [DEV] before the read
  std::string expected;                      // lines of [DEV] written to a fresh file
  const char* list_section = "DeviceNames";  // where the device is listed
};

const std::string kBase =
    "DevOut=|DevIn={HOME}SPOOLER/SL_DEV|DevSuffix=*.*;|DevFlgAsk=0|DevFlgBreak=0|DevPlotToFile=0|DevFlgWav=0|"
    "DevDefCount=1|DevType=1|DevDefSavedCount=5";
const std::string kDriver = "|DevDrvPath={HOME}cutter/|DevDrvFileName=|DevDrvInfo=";

// The base lines with another "DevType".
std::string base(char type) {
  std::string lines = kBase;
  lines[lines.find("DevType=") + 8] = type;
  return lines;
}

const std::string kCutterDefaults = base('2') + kDriver +
                                    "|IP_ADDR=0.0.0.0|IP_PORT=0|DevFlgUseSpooler=0|DevFlgServer=0|ActJobNr=0|"
                                    "DevUsbDeviceName=|DevPortType=2";
const std::string kCutterValues =
    "IP_ADDR=10.1.2.3|IP_PORT=9100|DevFlgUseSpooler=1|DevFlgServer=1|ActJobNr=4294967295|"
    "DevUsbDeviceName=/dev/usb/lp0|DevPortType=4|DevServerPort=7";

const KeyRow kKeyRows[] = {
    // Base: defaults; the reader's sound default (0) overrides the constructor's 1.
    {make<CBaseDeviceSettings>(), "", kBase},
    // Base: values; "DevFlgBreak" 2 makes it inactive, written back as 1; "DevIn" follows "DevIni".
    {make<CBaseDeviceSettings>(),
     "DevOut=/dev/ttyS0|DevIn=/old/|DevSuffix=*.plt|DevIni=/sp/x/index.hot|DevFlgAsk=1|DevFlgBreak=2|"
     "DevFlgWav=1|DevNotifyWavFile=ding.wav|DevPlotToFile=1|DevDefCount=3|DevDefSavedCount=0|DevType=6",
     "DevOut=/dev/ttyS0|DevIn=/sp/x/|DevSuffix=*.plt;|DevIni=/sp/x/index.hot|DevFlgAsk=1|DevFlgBreak=1|"
     "DevPlotToFile=1|DevFlgWav=1|DevNotifyWavFile=ding.wav|DevDefCount=3|DevType=1|DevDefSavedCount=0"},
    // The sound file is read only with the flag set.
    {make<CBaseDeviceSettings>(), "DevFlgWav=0|DevNotifyWavFile=ding.wav", kBase},
    {make<CDriverDeviceSettings>(), "", kBase + kDriver},
    {make<CDriverDeviceSettings>(), "DevDrvPath=/drv/|DevDrvFileName=gx24.vmd|DevDrvInfo=Graphtec GX-24",
     kBase + "|DevDrvPath=/drv/|DevDrvFileName=gx24.vmd|DevDrvInfo=Graphtec GX-24"},
    // An empty "DevDrvPath" keeps the constructor's default.
    {make<CClientDeviceSettings>(), "DevDrvPath=", kBase + kDriver},
    {make<CCutterDeviceSettings>(), "", kCutterDefaults},
    // "DevServerPort" is read and written only while the server flag is set.
    {make<CCutterDeviceSettings>(), kCutterValues, base('2') + kDriver + "|" + kCutterValues},
    {make<CCutterDeviceSettings>(), "DevFlgServer=0|DevServerPort=7|IP_ADDR=300.1.1.1", kCutterDefaults},
    {make<CRemoteDeviceSettings>(),
     "DevRemoteIndexFile=r.hot|DevRemoteIni=r.ini|DevRemoteDevName=Far|DevDrvFileName=f.vmd|DevDrvInfo=Far "
     "cutter",
     base('5') +
         "|DevDrvPath={HOME}cutter/|DevDrvFileName=f.vmd|DevDrvInfo=Far cutter|DevRemoteIndexFile=r.hot|"
         "DevRemoteIni=r.ini|DevRemoteDevName=Far"},
    // The TCP/IP client skips the driver class's keys; its address defaults to empty.
    {make<CTcpIpClientDeviceSettings>(),
     "DevDrvPath=/ignored/|DevServerDevName=Srv|IP_ADDR=127.0.0.1|IP_PORT=5|TcpIpType=1|DevDrvFileName=s.vmd|"
     "DevDrvInfo=S|TcpIpHostname=plotman.local",
     base('6') + "|DevServerDevName=Srv|IP_ADDR=127.0.0.1|IP_PORT=5|TcpIpType=1|DevDrvFileName=s.vmd|"
                 "DevDrvInfo=S|TcpIpHostname=plotman.local"},
    {make<CHFDeviceSettings>(), "DevHfStartAppTmpl=run %f|DevFlgComLptHf=1|DevFlgStartApp=1|DevPortType=3",
     kBase + "|DevHfStartAppTmpl=run %f|DevFlgComLptHf=1|DevFlgStartApp=1|DevPortType=3"},
    // "RipMinPercent" is left to WriteRipMinSize.
    {make<CExtHFDeviceSettings>(), "rip=1|mask=*.tif|OutBufSize=4096|RipMinPercent=9",
     kBase + "|DevHfStartAppTmpl=|DevFlgComLptHf=0|DevFlgStartApp=0|DevPortType=0|IP_ADDR=0.0.0.0|IP_PORT=0|"
             "DevUsbDeviceName=|DevUsbFriendlyName=|mask=*.tif|rip=1|LastDir=|OutBufSize=4096"},
    {make<CLocaleDeviceSettings>(), "DevPortType=2|LastDir=/home/u",
     base('4') + "|DevPortType=2|LastDir=/home/u", "LocaleDevices"},
};

class KeyTable : public SuiteDir, public ::testing::WithParamInterface<KeyRow> {};

TEST_P(KeyTable, ReadsThenWritesExactlyTheseLines) {
  const KeyRow& row = GetParam();
  std::string in = "[DEV]\n";
  for (const auto& l : split(row.input)) in += l + "\n";
  dir_.write("in.ini", in);

  auto settings = row.factory();
  settings->SetDeviceName("DEV");
  settings->ReadFromIni(file("in.ini").c_str());
  settings->WriteToIni(file("out.ini").c_str());

  std::vector<std::string> expected;
  for (const auto& l : split(row.expected)) expected.push_back(expand(l));
  EXPECT_EQ(lines("DEV", "out.ini"), expected);
  EXPECT_EQ(lines(row.list_section, "out.ini"), std::vector<std::string>{"DEV=1"});
}

INSTANTIATE_TEST_SUITE_P(Classes, KeyTable, ::testing::ValuesIn(kKeyRows), kerfline::test::RowIndex());

class SettingsFile : public SuiteDir {};

TEST_F(SettingsFile, ReadValuesReachTheAccessors) {
  dir_.write("p.ini",
             "[C]\nDevFlgBreak=2\nDevDefSavedCount=0\nIP_ADDR=192.168.0.7\nActJobNr=4000000000\n"
             "DevFlgServer=1\nDevServerPort=3\n");
  CCutterDeviceSettings c("C");
  c.ReadFromIni(file("p.ini").c_str());
  unsigned char b[4] = {};
  c.GetTCPIPAddress(b);
  EXPECT_EQ(b[0], 192);
  EXPECT_EQ(b[3], 7);
  EXPECT_EQ(c.GetJobNr(), 4000000000u);
  EXPECT_EQ(c.IsActive(), 0);
  EXPECT_EQ(c.IsDeleteFilesFlag(), 1);
  EXPECT_EQ(c.GetServerFlag(), 1);
  EXPECT_EQ(c.GetServerPort(), 3);
  EXPECT_EQ(c.GetJobSuffix(c.GetJobSuffixes()), nullptr);
}

TEST_F(SettingsFile, RipMinSizeIsWrittenOnItsOwn) {
  CExtHFDeviceSettings e;
  e.SetDeviceName("E");
  e.SetRipMinPercent(12);
  e.WriteRipMinSize(file("p.ini").c_str());
  EXPECT_EQ(lines("E", "p.ini"), std::vector<std::string>{"RipMinPercent=12"});
  CExtHFDeviceSettings back;
  back.SetDeviceName("E");
  back.ReadFromIni(file("p.ini").c_str());
  EXPECT_EQ(back.GetRipMinPercent(), 12);
  EXPECT_EQ(back.GetAlternateBufsize(), 0u);
}

TEST_F(SettingsFile, FixedSpoolTypeKeepsItsReadFromPath) {
  CBaseDeviceSettings b("F");
  b.SetDeviceType(DEVTYPE_FIXED_SPOOL);
  b.SetReadFrom("/elsewhere/");
  b.WriteToIni(file("p.ini").c_str());
  EXPECT_EQ(kerfline::platform::ini::read_string("F", "DevIn", "?", file("p.ini")), "/elsewhere/");
}

}  // namespace
