// The device-list exports against a real "plotman.ini" in a temporary suite
// directory, with the host's broadcasts recorded.
#include <filesystem>

#include "devconfig/suite_fixture.hpp"
#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"

namespace {

using kerfline::test::HostRecorder;
using kerfline::test::list_all;
using kerfline::test::Listed;
using kerfline::test::record;
using kerfline::test::SuiteDir;
namespace fs = std::filesystem;
namespace ini = kerfline::platform::ini;

struct ListRow {
  const char* section;  // the device's section body; the device is "D"
  Listed expected;      // name "" when it is not listed
};

const ListRow kListRows[] = {
    {"DevOut=COM1\nDevDrvPath={HOME}drv\nDevDrvFileName=a.vmd\n", {"D", "COM1", "{HOME}drv/a.vmd"}},
    {"DevType=3\nDevOut=/dev/ttyS0\n", {"", "", ""}},
    {"DevFlgLocal=0\nDevOut=/dev/ttyS0\nDevDrvPath=/drv/\nDevDrvFileName=a.vmd\n", {"D", "", "/drv/a.vmd"}},
    // The spooler flag defaults to 1 here: the port is "DevOut" whatever the port type.
    {"DevPortType=5\nDevOut=/dev/lp0\nIP_ADDR=10.0.0.9\n", {"D", "/dev/lp0", ""}},
    {"DevFlgUseSpooler=0\nDevPortType=5\nDevOut=/dev/lp0\nIP_ADDR=10.0.0.9\n", {"D", "10.0.0.9", ""}},
    {"DevFlgUseSpooler=0\nDevPortType=4\nDevOut=/dev/usb/lp0\n", {"D", "/dev/usb/lp0", ""}},
    {"DevFlgUseSpooler=0\nDevPortType=1\nDevOut=/dev/lp0\n", {"D", "", ""}},
    // An empty driver directory gives the file name alone.
    {"DevOut=x\nDevDrvFileName=only.vmd\n", {"D", "x", "only.vmd"}},
    {"DevType=5\nDevOut=x\nDevDrvPath=C:\\drv\\\nDevDrvFileName=r.vmd\nDevRemoteIni=r.ini\n",
     {"D", "Remote Plotmanager", "C:\\drv\\r.vmd"}},
    {"DevType=6\nDevOut=x\nDevDrvPath=/ignored/\nDevDrvFileName=t.vmd\n",
     {"D", "Remote Plotmanager", "{HOME}cutter/t.vmd"}},
    // Other types carry no driver path.
    {"DevType=4\nDevOut=/dev/ttyS1\nDevDrvPath=/drv/\nDevDrvFileName=a.vmd\n", {"D", "/dev/ttyS1", ""}},
    // Ports longer than the record's field are cut to 31 characters.
    {"DevOut=/dev/serial/by-id/usb-FTDI_FT232R_USB_UART_A5XK3RJT-if00-port0\n",
     {"D", "/dev/serial/by-id/usb-FTDI_FT23", ""}},
};

class ListTable : public SuiteDir, public ::testing::WithParamInterface<ListRow> {};

TEST_P(ListTable, RecordFollowsTheKeys) {
  dir_.write("plotman.ini", expand(std::string("[DeviceNames]\nD=1\n[D]\n") + GetParam().section));
  const Listed& e = GetParam().expected;
  std::vector<Listed> expected;
  if (!std::get<0>(e).empty()) expected.emplace_back(std::get<0>(e), std::get<1>(e), expand(std::get<2>(e)));
  EXPECT_EQ(list_all(), expected);
}

INSTANTIATE_TEST_SUITE_P(Keys, ListTable, ::testing::ValuesIn(kListRows), kerfline::test::RowIndex());

class DeviceList : public SuiteDir {
 protected:
  HostRecorder host_;
  [[nodiscard]] std::string ini_file() const { return file("plotman.ini"); }
};

// Without a file the list is an array of none (list_all checks it is not null).
TEST_F(DeviceList, EmptyListIsAnArrayOfNone) {
  EXPECT_TRUE(list_all().empty());
  FreeCutDeviceList(nullptr);
}

TEST_F(DeviceList, LongSectionIsReadCompletely) {
  std::string text = "[DeviceNames]\n";
  for (int i = 0; i < 300; ++i) text += "Device number " + std::to_string(i) + "=1\n";
  dir_.write("plotman.ini", text);
  const auto list = list_all();
  ASSERT_EQ(list.size(), 300u);
  EXPECT_EQ(std::get<0>(list.front()), "Device number 0");
  EXPECT_EQ(std::get<0>(list.back()), "Device number 299");
}

TEST_F(DeviceList, AddWritesKeysSpoolLayoutAndAnnounces) {
  dir_.write("drivers/gx24.vdv", std::string("Graphtec GX-24   \0rest", 22));
  const CUTDEVICE d = record("Cut:1", "COM3", file("drivers/gx24.vdv"));
  ASSERT_EQ(WriteCutDevice(&d), 1);

  const std::string spool = file("SPOOLER/SL_CUT_1/");
  EXPECT_TRUE(fs::is_regular_file(spool + "index.hot"));
  EXPECT_TRUE(fs::is_directory(spool + "saved"));
  EXPECT_EQ(ini::read_string("DeviceNames", "Cut:1", "", ini_file()), "1");
  // clang-format off
  const std::pair<const char*, std::string> keys[] = {
      {"DevOut", "COM3"}, {"DevIni", spool + "index.hot"}, {"DevIn", spool}, {"DevDrvPath", file("drivers/")},
      {"DevDrvFileName", "gx24.vdv"}, {"DevDrvInfo", "Graphtec GX-24"}, {"DevType", "2"}};
  // clang-format on
  for (const auto& [key, value] : keys)
    EXPECT_EQ(ini::read_string("Cut:1", key, "", ini_file()), value) << key;

  EXPECT_EQ(GetCutDevicePortType("Cut:1"), 2);

  ASSERT_EQ(host_.broadcasts.size(), 1u);
  const auto& b = host_.broadcasts[0];
  EXPECT_EQ(std::tie(b.message, b.w_param, b.l_param, b.wait),
            std::tuple("Umsg_StartDeviceDlg", 0u, 0, false));
}

TEST_F(DeviceList, UpdateKeepsOtherKeysAndRemoveDeletesEverything) {
  CUTDEVICE d = record("P", "/dev/ttyUSB0", "/drv/a.vmd");
  ASSERT_EQ(WriteCutDevice(&d), 1);
  ini::write_value("P", "DevDefCount", "4", ini_file());
  dir_.write("SPOOLER/SL_P/job1.plt", "PU;");
  dir_.write("SPOOLER/SL_P/saved/old.plt", "PD;");
  d = record("P", "/dev/ttyUSB1", "/drv/b.vmd");
  ASSERT_EQ(WriteCutDevice(&d), 1);
  EXPECT_EQ(ini::read_string("P", "DevOut", "", ini_file()), "/dev/ttyUSB1");
  EXPECT_EQ(ini::read_string("P", "DevDefCount", "", ini_file()), "4");
  EXPECT_TRUE(fs::exists(file("SPOOLER/SL_P/job1.plt")));

  d = record("P", "");
  ASSERT_EQ(WriteCutDevice(&d), 1);
  EXPECT_FALSE(fs::exists(file("SPOOLER/SL_P")));
  EXPECT_TRUE(fs::is_directory(file("SPOOLER")));
  EXPECT_FALSE(ini::find_string("DeviceNames", "P", ini_file()).has_value());
  EXPECT_TRUE(ini::read_section("P", ini_file()).empty());
  EXPECT_EQ(host_.broadcasts.size(), 3u);
}

TEST_F(DeviceList, EmptyNameRemovesEveryDeviceAndAnnouncesOnce) {
  for (const char* n : {"A", "B", "C"}) {
    const CUTDEVICE d = record(n, "/dev/null");
    WriteCutDevice(&d);
  }
  host_.broadcasts.clear();
  const CUTDEVICE all = record("", "/dev/ttyS0");
  ASSERT_EQ(WriteCutDevice(&all), 1);
  EXPECT_TRUE(list_all().empty());
  EXPECT_TRUE(fs::is_empty(file("SPOOLER")));
  EXPECT_EQ(host_.broadcasts.size(), 1u);
}

TEST_F(DeviceList, PathLengthConvention) {
  dir_.write("plotman.ini", "[A]\nDevIn=/spool/a/\n[E]\nDevIn=\n");
  char buf[16];
  EXPECT_EQ(GetCutDevicePath("A", buf, 9), -9);  // exactly as long as the path
  EXPECT_EQ(GetCutDevicePath("A", buf, 10), 1);
  EXPECT_STREQ(buf, "/spool/a/");
  EXPECT_EQ(GetCutDevicePath("E", buf, sizeof buf), 0);
  EXPECT_EQ(GetCutDevicePath("missing", buf, sizeof buf), 0);
}

struct InfoRow {
  const char* type;
  int32_t result;
  int32_t stored;
};

const InfoRow kInfoRows[] = {{"", 1, 2},  {"2", 1, 2}, {"3", 1, 3}, {"4", 0, 0},
                             {"5", 1, 5}, {"6", 1, 6}, {"1", 0, 0}, {"-2", 0, 0}};

class InfoTable : public SuiteDir, public ::testing::WithParamInterface<InfoRow> {};

TEST_P(InfoTable, KnownTypesOnly) {
  if (*GetParam().type != '\0')
    dir_.write("plotman.ini", std::string("[D]\nDevType=") + GetParam().type + "\n");
  CUTDEVICEINFO info{9, 9};
  EXPECT_EQ(GetCutDeviceInfo("D", &info), GetParam().result);
  EXPECT_EQ(info.nReserved, 0);
  EXPECT_EQ(info.nDeviceType, GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(Types, InfoTable, ::testing::ValuesIn(kInfoRows), kerfline::test::RowIndex());

struct QueryRow {
  intptr_t answer;
  int32_t result;
  int pumps;
};

// -1: nobody answered, so the query waits 31 times 100 ms, pumping.
const QueryRow kQueryRows[] = {{3, 1, 0}, {0, 0, 0}, {1, 0, 0}, {-1, 1, 31}};

class QueryTable : public SuiteDir, public ::testing::WithParamInterface<QueryRow> {};

TEST_P(QueryTable, ListeningQueryAnswers) {
  HostRecorder host;
  host.broadcast_answer = GetParam().answer;
  EXPECT_EQ(WriteCutDevice(nullptr), GetParam().result);
  ASSERT_EQ(host.broadcasts.size(), 1u);
  const auto& b = host.broadcasts[0];
  EXPECT_EQ(std::tie(b.message, b.w_param, b.l_param, b.wait),
            std::tuple("Umsg_StartDeviceDlg", 1u, 0, true));
  EXPECT_EQ(host.pumps, GetParam().pumps);
}

INSTANTIATE_TEST_SUITE_P(Answers, QueryTable, ::testing::ValuesIn(kQueryRows), kerfline::test::RowIndex());

TEST_F(DeviceList, InputPathComparedUpperCased) {
  dir_.write("other.ini",
             "[DeviceNames]\nA=1\nB=1\n[A]\nDevIn=/spool/sl_\xE4/\n[B]\nDevIn=/x/\n[C]\nDevIn=/c/\n");
  const std::string other = file("other.ini");
  EXPECT_EQ(IsInputPathUsed(other.c_str(), "/SPOOL/SL_\xC4/"), 1);
  EXPECT_EQ(IsInputPathUsed(other.c_str(), "/X/"), 1);
  EXPECT_EQ(IsInputPathUsed(other.c_str(), "/c/"), 0);  // not listed
  EXPECT_EQ(IsInputPathUsed(other.c_str(), "/spool/"), 0);
  EXPECT_EQ(IsInputPathUsed(other.c_str(), nullptr), 0);
}

TEST_F(DeviceList, CanDoSetupDefaultsToTheSuiteFile) {
  dir_.write("SPOOLER/SL_BUSY/index.hot", "[ActiveJobs]\nCount=2\n");
  EXPECT_EQ(CanDoSetup(nullptr, "Busy"), 0);
  EXPECT_EQ(CanDoSetup(nullptr, "Idle"), 1);
  kerfline::test::TempDir elsewhere;
  EXPECT_EQ(CanDoSetup((elsewhere.str() + "plotman.ini").c_str(), "Busy"), 1);
}

}  // namespace
