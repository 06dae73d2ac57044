#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/language_context.hpp"
#include "frame/resources.hpp"
#include "frame_fixture.hpp"
#include "kerfline/kerfline.h"

namespace kf = kerfline::frame;
using kerfline::test::FrameTest;
using kerfline::test::TempDir;

namespace {

class InitDll : public FrameTest {};

TEST_F(InitDll, LoadsBothTablesAndThenReportsDone) {
  suite.write("Res/cutterx.dlx", "9001, \"Reserved\"\n");
  suite.write("Res/kerfline.dlx", "35589, \"Input error: %s\"\n");
  EXPECT_EQ(kf::resource_text(kf::kKerflineTable, 35589), "Input error: %s");  // a lookup starts the library
  EXPECT_EQ(InitKerflineDll(), 1);
  EXPECT_EQ(kf::resource_text(kf::kCutterxTable, 9001), "Reserved");
  EXPECT_EQ(kf::resource_text(kf::kCutterxTable, 35589), std::nullopt);
  EXPECT_EQ(kf::resource_text(2, 35589), std::nullopt);
  // Done stays done; tables stay loaded.
  std::filesystem::remove_all(suite.path() / "Res");
  EXPECT_EQ(InitKerflineDll(), 1);
  EXPECT_EQ(kf::resource_text(kf::kKerflineTable, 35589), "Input error: %s");
}

// (That a missing cutterx.dlx fails before kerfline.dlx is tried: InstalledTables.)
TEST_F(InitDll, ARetryLoadsOnlyWhatIsStillMissing) {
  suite.write("Res/cutterx.dlx", "2, \"second\"\n");
  EXPECT_EQ(InitKerflineDll(), -2);
  std::filesystem::remove(suite.path() / "Res/cutterx.dlx");
  suite.write("Res/kerfline.dlx", "1, \"again\"\n");
  EXPECT_EQ(InitKerflineDll(), 1);
  EXPECT_EQ(kf::resource_text(kf::kCutterxTable, 2), "second");
  EXPECT_EQ(kf::resource_text(kf::kKerflineTable, 1), "again");
}

TEST_F(InitDll, AnUnreadableTableCountsAsMissing) {
  std::filesystem::create_directories(suite.path() / "Res/cutterx.dlx");
  suite.write("Res/kerfline.dlx", "1, \"x\"\n");
  EXPECT_EQ(InitKerflineDll(), -1);
}

class LanguageContext : public FrameTest {};

// Languages section of the first read cut at 62 characters (64 bytes as a
// list): the second read is sized from that, so it stays cut.
std::string twelve_languages() {
  std::string ini = "[Languages]\n";
  for (char c = 'A'; c < 'A' + 12; ++c) ini += std::string("Language") + c + "=x\n";
  return ini;
}

TEST_F(LanguageContext, ReadsNamesAndLanguageFromLangIni) {
  struct {
    const char* file;
    std::string text;
    const char* dir;  // made first
    std::string language_dir;
    const char* names;
  } const rows[] = {
      {"Lang/lang.ini", "[Languages]\r\nGer=Deutsch\r\nEng=English\r\nFra=\r\n[Default]\r\nActual=Eng\r\n",
       "", "Lang/Eng/", "Ger,Eng,Fra,"},
      {"lang/LANG.INI", "[Languages]\nGer=1\n[Default]\nActual=GER\n", "lang/ger", "lang/ger/",
       "Ger,"},                                                            // any case
      {"Lang/lang.ini", "[Languages]\nEng=1\n", "", "Lang/Ger/", "Eng,"},  // without [Default]: Ger
      {"Lang/lang.ini", "[Default]\nActual=" + std::string(40, 'L') + "\n", "",
       "Lang/" + std::string(31, 'L') + "/", ""},  // read into 32 characters
      {"Lang/lang.ini", twelve_languages(), "", "Lang/Ger/",
       "LanguageA,LanguageB,LanguageC,LanguageD,LanguageE,LanguageF,La,"}};
  for (const auto& row : rows) {
    TempDir dir;
    dir.write(row.file, row.text);
    if (*row.dir != '\0') std::filesystem::create_directories(dir.path() / row.dir);
    KerflineSetHomeDir(dir.path().string().c_str());
    const kf::LanguageContext context = kf::language_context();
    std::string names;
    for (const std::string& name : context.language_names) names += name + ",";
    EXPECT_EQ(names, row.names) << row.text;
    EXPECT_EQ(context.language_file, dir.str(row.file));
    EXPECT_EQ(kf::language_directory(), dir.str(row.language_dir));
  }
}

TEST_F(LanguageContext, IsRebuiltWhenTheSuiteDirectoryChanges) {
  suite.write("Lang/lang.ini", "[Default]\nActual=Eng\n");
  EXPECT_EQ(kf::language_directory(), suite.str("Lang/Eng/"));
  // Cached while the directory stays...
  suite.write("Lang/lang.ini", "[Default]\nActual=Fra\n");
  EXPECT_EQ(kf::language_directory(), suite.str("Lang/Eng/"));

  TempDir other;
  other.write("Lang/lang.ini", "[Languages]\nIta=1\n[Default]\nActual=Ita\n");
  KerflineSetHomeDir(other.path().string().c_str());
  EXPECT_EQ(kf::language_context().base_dir, other.str());
  EXPECT_EQ(kf::language_context().language_names, std::vector<std::string>{"Ita"});
  EXPECT_EQ(kf::language_directory(), other.str("Lang/Ita/"));

  char help[512];
  const std::string expected = other.str("Lang/Ita/plotman.hlp");
  EXPECT_EQ(KerflineGetHelpFile(help, sizeof(help)), static_cast<int32_t>(expected.size()));
  EXPECT_EQ(std::string(help), expected);
  EXPECT_EQ(KerflineGetHelpFile(help, static_cast<uint32_t>(expected.size())),
            -static_cast<int32_t>(expected.size() + 1));
}

}  // namespace
