// Suffix lists, spool directory names, active-job counts and copies.
#include <filesystem>

#include "devconfig/spool_paths.hpp"
#include "devconfig/suite_fixture.hpp"
#include "fixtures/table_names.hpp"
#include "kerfline/device_settings.hpp"

namespace {

using kerfline::test::SuiteDir;
namespace fs = std::filesystem;

struct SuffixRow {
  const char* text;
  char separator;
  std::vector<std::string> entries;
};

const SuffixRow kSuffixRows[] = {
    {"", ';', {}},
    {"*.plt", ';', {"*.plt"}},
    {"*.plt;", ';', {"*.plt"}},
    {"*.a;*.b", ';', {"*.a", ""}},
    // Later entries run past their own separator, as the suite reads them.
    {"*.a;*.b;", ';', {"*.a", "*.b;"}},
    {"a;bb;ccc;", ';', {"a", "bb;c", "ccc;"}},
    {"x,y,", ',', {"x", "y,"}},
    {";", ';', {""}},
};

class SuffixTable : public ::testing::TestWithParam<SuffixRow> {};

TEST_P(SuffixTable, SplitsLikeTheSuite) {
  CBaseDeviceSettings s;
  s.SetJobSuffix("old", ';');
  s.SetJobSuffix(GetParam().text, GetParam().separator);
  std::vector<std::string> got;
  std::string joined;
  for (int i = 0; i < s.GetJobSuffixes(); ++i) {
    got.emplace_back(s.GetJobSuffix(i));
    joined += got.back() + ';';
  }
  EXPECT_EQ(got, GetParam().entries);
  EXPECT_EQ(s.GetJobSuffix(), joined);
}

INSTANTIATE_TEST_SUITE_P(Texts, SuffixTable, ::testing::ValuesIn(kSuffixRows), kerfline::test::RowIndex());

struct SafeNameRow {
  const char* name;
  const char* safe;
};

const SafeNameRow kSafeNameRows[] = {
    {"Plotter:1/A", "PLOTTER_1_A"},
    {"a.b[c]d\\e", "A_B_C_D_E"},
    {"..", "__"},
    {"../../etc", "______ETC"},
    {"/", "_"},
    {"M\xE4rz \xD6l \xFC", "MAERZ OEL UE"},  // Windows-1252 umlauts spelled out
    {"\xDF\xE9", "\xDF\xC9"},                // sharp s has no capital; é upper-cases
    {"", ""},
};

class SafeNameTable : public SuiteDir, public ::testing::WithParamInterface<SafeNameRow> {};

TEST_P(SafeNameTable, NeverLeavesTheSpoolRoot) {
  const std::string safe = kerfline::devconfig::safe_device_name(GetParam().name);
  EXPECT_EQ(safe, GetParam().safe);
  EXPECT_EQ(kerfline::devconfig::spool_dir(home(), GetParam().name), file("SPOOLER/SL_") + safe);
}

INSTANTIATE_TEST_SUITE_P(Names, SafeNameTable, ::testing::ValuesIn(kSafeNameRows),
                         kerfline::test::RowIndex());

class SpoolFiles : public SuiteDir {};

// InitDir's layout and record are checked through WriteCutDevice.
TEST_F(SpoolFiles, StaticJobCountIsTheCountMemberIsAFlag) {
  CBaseDeviceSettings idle("Idle");
  idle.SetIni(file("idle/plotman.ini").c_str());
  idle.InitDir();
  EXPECT_EQ(idle.HasActiveJob(), 0);
  dir_.write("SPOOLER/SL_PLOTTER_1_A/index.hot", "[ActiveJobs]\nCount=3\n");
  EXPECT_EQ(CBaseDeviceSettings::HasActiveJob("Plotter:1/A", file("plotman.ini").c_str()), 3);
  CBaseDeviceSettings s("Plotter:1/A");
  s.SetIni(file("plotman.ini").c_str());
  s.InitDir();
  EXPECT_EQ(s.GetIndexFile(), file("SPOOLER/SL_PLOTTER_1_A/index.hot"));
  EXPECT_EQ(s.HasActiveJob(), 1);
  // The index file existed: nothing was written.
  EXPECT_FALSE(fs::exists(file("plotman.ini")));
}

struct SetupRow {
  const char* name;
  const char* index_leaf;  // where a busy index file is put ("" for none)
  int allowed;
};

const SetupRow kSetupRows[] = {
    {"Cutter", "", 1},
    {"Cutter", "SPOOLER/SL_CUTTER/index.hot", 0},
    {"LPT1", "", 0},
    {"lpt1", "", 1},
    {"A:b", "SPOOLER/SL_A_B/index.hot", 0},
    // Only ':' is made safe here: the dot stays, unlike the spool directory.
    {"v1.2", "SPOOLER/SL_V1.2/index.hot", 0},
};

class SetupTable : public SuiteDir, public ::testing::WithParamInterface<SetupRow> {};

TEST_P(SetupTable, BusyDevicesAndPrinterPortsRefuseSetup) {
  if (*GetParam().index_leaf != '\0') dir_.write(GetParam().index_leaf, "[ActiveJobs]\nCount=1\n");
  EXPECT_EQ(CBaseDeviceSettings::IsSetupAllowed(GetParam().name, file("plotman.ini").c_str()),
            GetParam().allowed);
}

INSTANTIATE_TEST_SUITE_P(Names, SetupTable, ::testing::ValuesIn(kSetupRows), kerfline::test::RowIndex());

TEST_F(SpoolFiles, TypeQueriesDefaultToCutterOnAPath) {
  dir_.write("plotman.ini", "[R]\nDevType=5\nDevPortType=4\n");
  const std::string ini = file("plotman.ini");
  EXPECT_EQ(CBaseDeviceSettings::GetDeviceType("R", ini.c_str()), 5);
  EXPECT_EQ(CBaseDeviceSettings::GetPortType("R", ini.c_str()), 4);
  EXPECT_EQ(CBaseDeviceSettings::GetDeviceType("missing", ini.c_str()), 2);
  EXPECT_EQ(CBaseDeviceSettings::GetPortType("missing", ini.c_str()), 2);
  // Subclasses with their own port type still offer the static form.
  EXPECT_EQ(CCutterDeviceSettings::GetPortType("R", ini.c_str()), 4);
}

TEST(CopySettings, AppendsSuffixesKeepsTypeAndSkipsDriverFields) {
  CCutterDeviceSettings from("From");
  from.SetJobSuffix("*.plt", ';');
  from.SetWriteTo("/dev/ttyUSB0");
  from.SetMaxFileCount(9);
  from.SetPortType(PORTTYPE_USB);
  from.SetJobNr(77);
  from.SetDrvFileName("from.vmd");
  from.SetDeviceType(DEVTYPE_REMOTE);
  CCutterDeviceSettings to("To");
  to.SetJobSuffix("*.hpgl", ';');
  to.SetDrvFileName("to.vmd");
  to.CopySettings(&from);
  EXPECT_STREQ(to.GetDeviceName(), "From");
  EXPECT_STREQ(to.GetWriteTo(), "/dev/ttyUSB0");
  EXPECT_EQ(to.GetMaxFileCount(), 9);
  EXPECT_EQ(to.GetPortType(), PORTTYPE_USB);
  EXPECT_EQ(to.GetJobNr(), 77u);
  EXPECT_STREQ(to.GetDrvFileName(), "to.vmd");
  EXPECT_EQ(to.GetDeviceType(), DEVTYPE_CUTTER);
  EXPECT_STREQ(to.GetJobSuffix(), "*.hpgl;*.plt;");
  // Through the base overload only the base part moves.
  CCutterDeviceSettings base_only;
  base_only.CopySettings(static_cast<const CBaseDeviceSettings*>(&from));
  EXPECT_EQ(base_only.GetJobNr(), 0u);
  EXPECT_EQ(base_only.GetMaxFileCount(), 9);
}

}  // namespace
