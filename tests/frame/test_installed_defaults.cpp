// The files installed with the library (share/kerfline/) stand in for a suite
// directory that lacks its own; the suite's files always win.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "fixtures/table_names.hpp"
#include "frame/library_state.hpp"
#include "frame/resources.hpp"
#include "frame_fixture.hpp"
#include "kerfline/kerfline.h"
#include "platform/paths.hpp"

namespace kf = kerfline::frame;
using kerfline::test::FrameTest;
using kerfline::test::TempDir;
using kerfline::test::text_or_none;

namespace {

using Files = std::vector<std::pair<const char*, const char*>>;

class InstalledDefaults : public FrameTest {
 protected:
  void SetUp() override {
    FrameTest::SetUp();
    kerfline::platform::testing::set_data_dir(installed.path().string());
  }
  void TearDown() override {
    kerfline::platform::testing::set_data_dir("");
    FrameTest::TearDown();
  }
  TempDir installed;
};

struct TableCase {
  Files suite;
  Files installed;
  int32_t result;
  const char* cutterx;  // text of id 1 in cutterx.dlx, null: none
  const char* kerfline;
};

class InstalledTables : public InstalledDefaults, public ::testing::WithParamInterface<TableCase> {};

TEST_P(InstalledTables, FillInWhatTheSuiteLacks) {
  const TableCase& c = GetParam();
  for (const auto& [path, text] : c.suite) suite.write(path, text);
  for (const auto& [path, text] : c.installed) installed.write(path, text);
  EXPECT_EQ(InitKerflineDll(), c.result);
  EXPECT_EQ(kf::resource_text(kf::kCutterxTable, 1), text_or_none(c.cutterx));
  EXPECT_EQ(kf::resource_text(kf::kKerflineTable, 1), text_or_none(c.kerfline));
}

INSTANTIATE_TEST_SUITE_P(
    Table, InstalledTables,
    ::testing::Values(
        // the suite's tables win over the installed ones
        TableCase{{{"Res/cutterx.dlx", "1, \"suite c\"\n"}, {"Res/kerfline.dlx", "1, \"suite k\"\n"}},
                  {{"Res/cutterx.dlx", "1, \"inst c\"\n"}, {"Res/kerfline.dlx", "1, \"inst k\"\n"}},
                  1,
                  "suite c",
                  "suite k"},
        // a suite without Res/ runs on the installed tables
        TableCase{{},
                  {{"Res/cutterx.dlx", "1, \"inst c\"\n"}, {"Res/kerfline.dlx", "1, \"inst k\"\n"}},
                  1,
                  "inst c",
                  "inst k"},
        // table by table: one from each place, names in any case
        TableCase{{{"res/KERFLINE.Dlx", "1, \"suite k\"\n"}},
                  {{"res/CUTTERX.DLX", "1, \"inst c\"\n"}, {"res/kerfline.dlx", "1, \"inst k\"\n"}},
                  1,
                  "inst c",
                  "suite k"},
        // nowhere: the start-up still reports the first missing table
        TableCase{{}, {{"Res/kerfline.dlx", "1, \"inst k\"\n"}}, -1, nullptr, nullptr},
        TableCase{{{"Res/cutterx.dlx", "1, \"suite c\"\n"}}, {}, -2, "suite c", nullptr}),
    kerfline::test::RowIndex());

struct TranslationCase {
  Files suite;
  Files installed;
  const char* knife;  // null: not translated
};

class InstalledTranslation : public InstalledDefaults,
                             public ::testing::WithParamInterface<TranslationCase> {};

TEST_P(InstalledTranslation, IsUsedOnlyWhenTheSuiteAsksForItsLanguage) {
  const TranslationCase& c = GetParam();
  for (const auto& [path, text] : c.suite) suite.write(path, text);
  for (const auto& [path, text] : c.installed) installed.write(path, text);
  const int32_t started = InitKerflineDll2();
  EXPECT_TRUE(c.knife != nullptr ? started > 0 : started == 0) << started;
  EXPECT_EQ(kf::translate_text("Knife"), text_or_none(c.knife));
}

const char* const kMesser = "msgid \"Knife\"\nmsgstr \"Messer\"\n";
const char* const kKlinge = "msgid \"Knife\"\nmsgstr \"Klinge\"\n";

// Which translation file the start picks: the code comes from the suite's
// lang.ini (not the language context's Lang/lang.ini).
INSTANTIATE_TEST_SUITE_P(
    Table, InstalledTranslation,
    ::testing::Values(
        // no default in lang.ini: GER
        TranslationCase{
            {{"lang.ini", "[Languages]\nFRA=1\n"}, {"lang/GER/kerflineGER.TRA", kMesser}}, {}, "Messer"},
        TranslationCase{{{"lang.ini", "[Default]\nActual=FRA\n"},
                         {"Lang/lang.ini", "[Default]\nActual=ITA\n"},
                         {"lang/FRA/kerflineFRA.TRA", "msgid \"Knife\"\nmsgstr \"Couteau\"\n"}},
                        {},
                        "Couteau"},
        // names in any case
        TranslationCase{
            {{"LANG.INI", "[Default]\nActual=GER\n"}, {"Lang/ger/KERFLINEGER.tra", kMesser}}, {}, "Messer"},
        // the code is read into ten characters
        TranslationCase{{{"lang.ini", "[Default]\nActual=ABCDEFGHIJKL\n"},
                         {"lang/ABCDEFGHI/kerflineABCDEFGHI.TRA", "msgid \"Knife\"\nmsgstr \"Cut\"\n"}},
                        {},
                        "Cut"},
        // the suite names German and has no file: the installed one
        TranslationCase{
            {{"lang.ini", "[Default]\nActual=GER\n"}}, {{"lang/GER/kerflineGER.TRA", kMesser}}, "Messer"},
        // the suite's own file wins
        TranslationCase{{{"lang.ini", "[Default]\nActual=GER\n"}, {"lang/GER/kerflineGER.TRA", kKlinge}},
                        {{"lang/GER/kerflineGER.TRA", kMesser}},
                        "Klinge"},
        // without lang.ini the suite is not switched to German
        TranslationCase{{}, {{"lang/GER/kerflineGER.TRA", kMesser}}, nullptr},
        // a language nobody installed
        TranslationCase{
            {{"lang.ini", "[Default]\nActual=FRA\n"}}, {{"lang/GER/kerflineGER.TRA", kMesser}}, nullptr}),
    kerfline::test::RowIndex());

}  // namespace
