#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>

#include "fixtures/table_names.hpp"
#include "frame/library_state.hpp"
#include "frame/resources.hpp"
#include "frame/translation_store.hpp"
#include "frame_fixture.hpp"
#include "kerfline/kerfline.h"

namespace kf = kerfline::frame;
using kerfline::test::FrameTest;
using kerfline::test::po_entry;
using kerfline::test::TempDir;

namespace {

class Translation : public FrameTest {
 protected:
  // Puts a German translation file in place and starts the service.
  void start_with(const std::string& po) {
    suite.write("lang/GER/kerflineGER.TRA", po);
    ASSERT_GT(InitKerflineDll2(), 0);
  }
};

// --- Escapes of one text ----------------------------------------------------

TEST_F(Translation, LooksUpEscapedAndUndoesTheEscapes) {
  // The four characters \r\n of a driver text are a real line break in the
  // file and come back as the four characters; texts up to 2047 bytes fit
  // the service's buffer.
  const struct {
    std::string po;        // the translation file's entries
    const char* text;      // the driver's text
    std::string expected;  // "-": not found
  } rows[] = {             // clang-format off
      {"msgid \"50!-Percent-!\"\nmsgstr \"50!-Percent-! Druck\"\n", "50%", "50% Druck"},
      {"msgid \"50%\"\nmsgstr \"50% Druck\"\n", "50%", "-"},
      {"msgid \"%!-Percent-!%\"\nmsgstr \"x\"\n", "%%%", "-"},
      {"msgid \"!-Percent-!!-Percent-!\"\nmsgstr \"%!-Percent-!\"\n", "%%", "%%"},
      {"msgid \"Line\\r\\nTwo\"\nmsgstr \"Zeile\\r\\nZwei\"\n", "Line\\r\\nTwo", "Zeile\\r\\nZwei"},
      {"msgid \"Line\\\\r\\\\nTwo\"\nmsgstr \"x\"\n", "Line\\r\\nTwo", "-"},
      {"msgid \"A\\r\\nB\"\nmsgstr \"X\\r\\nY\"\n", "A\r\nB", "X\\r\\nY"},
      {"msgid \"M\"\nmsgstr \"A!-\\r\\n-!B\"\n", "M", "A\\r\\nB"},
      {"msgid \"M\"\nmsgstr \"A\\nB\\rC\"\n", "M", "A\nB\rC"},
      {po_entry("fits", std::string(2047, 'f')), "fits", std::string(2047, 'f')},
      {po_entry("long", std::string(2048, 'l')), "long", "-"}};
  // clang-format on
  for (const auto& row : rows) {
    kf::testing::reset_library_state();
    start_with(row.po);
    EXPECT_EQ(kf::translate_text(row.text).value_or("-"), row.expected) << row.po;
  }
}

// --- TranslateString and TranslateDrvString --------------------------------

TEST_F(Translation, TranslateStringReplacesTheTextOnlyWhenTheTranslationFits) {
  start_with(po_entry("Pen", "Stift") + po_entry("50!-Percent-!", "f\\xfcnfzig!-Percent-!"));
  // size, text, result, text after; "Stift" and its zero: exactly 6
  const std::tuple<std::size_t, const char*, int32_t, const char*> rows[] = {{6, "Pen", 1, "Stift"},
                                                                             {5, "Pen", 0, "Pen"},
                                                                             {16, "50%", 1, "f\xfcnfzig%"},
                                                                             {8, "Router", 0, "Router"}};
  for (const auto& [size, text, result, after] : rows) {
    std::string buffer(text);
    buffer.resize(size, '\0');
    EXPECT_EQ(TranslateString(buffer.data(), static_cast<uint32_t>(size)), result) << size;
    EXPECT_STREQ(buffer.c_str(), after) << size;
  }
  char unterminated[3] = {'P', 'e', 'n'};
  EXPECT_EQ(TranslateString(unterminated, sizeof(unterminated)), 0);
}

int g_allocations = 0;
std::size_t g_last_size = 0;
void* counting_alloc(std::size_t size) {
  ++g_allocations;
  g_last_size = size;
  return std::malloc(size);
}
void* failing_alloc(std::size_t) { return nullptr; }

TEST_F(Translation, TranslateDrvStringHandsOutABlockFromTheCallersAllocator) {
  start_with(po_entry("Knife", "Messer"));
  g_allocations = 0;
  char* out = TranslateDrvString("Knife", counting_alloc);
  EXPECT_STREQ(out, "Messer");
  EXPECT_EQ(g_last_size, 7u);
  std::free(out);

  EXPECT_EQ(TranslateDrvString("Unknown", counting_alloc), nullptr);
  EXPECT_EQ(g_allocations, 1);  // nothing allocated without a translation
  EXPECT_EQ(TranslateDrvString("Knife", failing_alloc), nullptr);
}

// --- InitKerflineDll2 --------------------------------------------------------

TEST_F(Translation, IsStartedOncePerProcess) {
  start_with(po_entry("Knife", "Messer"));
  const int32_t first = InitKerflineDll2();
  // A started service stays with its file even when the suite moves.
  TempDir other;
  other.write("lang/GER/kerflineGER.TRA", po_entry("Knife", "Klinge"));
  KerflineSetHomeDir(other.path().string().c_str());
  EXPECT_EQ(InitKerflineDll2(), first);
  EXPECT_EQ(kf::translate_text("Knife"), "Messer");
}

TEST_F(Translation, FailedStartIsRetriedOnlyAfterTheSuiteDirectoryChanges) {
  EXPECT_EQ(InitKerflineDll2(), 0);
  suite.write("lang/GER/kerflineGER.TRA", po_entry("Knife", "Messer"));
  EXPECT_EQ(InitKerflineDll2(), 0);  // tried already
  EXPECT_EQ(kf::translate_text("Knife"), std::nullopt);

  TempDir other;
  other.write("lang/GER/kerflineGER.TRA", po_entry("Knife", "Klinge"));
  KerflineSetHomeDir(other.path().string().c_str());
  EXPECT_GT(InitKerflineDll2(), 0);
  EXPECT_EQ(kf::translate_text("Knife"), "Klinge");
}

TEST_F(Translation, AnUnreadableTranslationFileLeavesTranslationOff) {
  std::filesystem::create_directories(suite.path() / "lang/GER/kerflineGER.TRA");
  EXPECT_EQ(InitKerflineDll2(), 0);
  EXPECT_EQ(kf::translate_text("Knife"), std::nullopt);
}

// --- The start record ---------------------------------------------------------

// (Its layout is fixed by static_asserts beside the record.)
TEST_F(Translation, StartRecordCarriesFileAndLibraryDirectoryAndNothingElse) {
  const kf::TranslationStartRecord none = kf::translation_start_record(suite.str());
  EXPECT_EQ(none.translation_file[0], '\0');  // without a translation file
  EXPECT_EQ(kf::translation_store().start(none), 0);
  const auto tra = suite.write("lang/GER/kerflineGER.TRA", "");
  const kf::TranslationStartRecord record = kf::translation_start_record(suite.str());
  EXPECT_EQ(record.field_788, 1u);
  kf::TranslationStartRecord expected;
  std::strcpy(expected.translation_file, tra.string().c_str());
  std::strcpy(expected.library_dir, suite.str("lang/dll").c_str());
  EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
}

TEST(TranslationStore, RefusesBadRecordsAndReportsSmallBuffers) {
  TempDir dir;
  const auto file = dir.write("t.TRA", po_entry("Knife", "Messer"));
  kf::TranslationStore store;
  EXPECT_EQ(store.add_thread(1), 0);  // not started

  kf::TranslationStartRecord wrong = kf::make_start_record(file.string(), "");
  wrong.size = 812;
  EXPECT_EQ(store.start(wrong), 0);
  const std::string too_long = dir.str() + std::string(300, 'x');
  EXPECT_EQ(kf::make_start_record(too_long, too_long).translation_file[0], '\0');
  EXPECT_EQ(kf::make_start_record(too_long, too_long).library_dir[0], '\0');

  ASSERT_EQ(store.start(kf::make_start_record(file.string(), "")), 1);
  EXPECT_EQ(store.add_thread(1), 1);
  char out[7];
  EXPECT_EQ(store.translate("Knife", out, 6), -7);
  EXPECT_EQ(store.translate("Knife", out, 7), 6);
  EXPECT_STREQ(out, "Messer");
  EXPECT_EQ(store.translate("Pen", out, 7), 0);
  EXPECT_EQ(store.translate(nullptr, out, 7), 0);
}

// --- Flags and ReplaceString ---------------------------------------------------

TEST_F(FrameTest, TranslationFlagsFollowTheirCalls) {
  EXPECT_EQ(GetTranslationFlag(), 0xFFFFFFFFu);
  EXPECT_EQ(RemoveTranslationFlag(1), 0xFFFFFFFEu);
  EXPECT_FALSE(kf::translation_enabled(kf::kTranslateToolNames));
  EXPECT_TRUE(kf::translation_enabled(kf::kTranslateMaterialNames));
  EXPECT_EQ(RemoveTranslationFlag(0x6), ~0x6u);
  EXPECT_EQ(GetTranslationFlag(), 0xFFFFFFF8u);
  EXPECT_EQ(AddTranslationFlag(0x5), 0x5u);
  EXPECT_EQ(GetTranslationFlag(), 0xFFFFFFFDu);
  EXPECT_EQ(SetTranslationFlag(0), 0xFFFFFFFDu);
  EXPECT_FALSE(kf::translation_enabled(kf::kTranslateExtDialogTexts));  // the other kinds: ShownNames
  EXPECT_EQ(SetTranslationFlag(0x8), 0u);
  EXPECT_TRUE(kf::translation_enabled(kf::kTranslateExtDialogTexts));
}

struct ReplaceCase {
  const char* text;
  const char* find;
  const char* replacement;
  const char* expected;
  int32_t count;
};

class ReplaceStringTable : public ::testing::TestWithParam<ReplaceCase> {};

TEST_P(ReplaceStringTable, ReplacesLeftToRightWithoutRescanning) {
  const ReplaceCase& c = GetParam();
  char buffer[64] = {};
  std::strcpy(buffer, c.text);
  EXPECT_EQ(ReplaceString(buffer, c.find, c.replacement), c.count);
  EXPECT_STREQ(buffer, c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ReplaceStringTable,
    ::testing::Values(ReplaceCase{"%I1 %I2", "%I", "%", "%1 %2", 2}, ReplaceCase{"%I%I", "%I", "%", "%%", 2},
                      ReplaceCase{"abab", "ab", "abab", "abababab", 2},
                      ReplaceCase{"aaa", "a", "aa", "aaaaaa", 3}, ReplaceCase{"aaaa", "aa", "a", "aa", 2},
                      ReplaceCase{"abcabc", "abc", "", "", 2},
                      ReplaceCase{"short", "short", "much longer text", "much longer text", 1},
                      ReplaceCase{"none here", "x", "y", "none here", 0},
                      ReplaceCase{"empty find", "", "y", "empty find", 0}, ReplaceCase{"", "a", "b", "", 0}),
    kerfline::test::RowIndex());

}  // namespace
