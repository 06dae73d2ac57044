#include <gtest/gtest.h>

#include <string>

#include "fixtures/table_names.hpp"
#include "frame/po_catalog.hpp"

using kerfline::frame::PoCatalog;

namespace {

std::optional<std::string> lookup(const PoCatalog& catalog, std::string_view id) {
  const std::string* found = catalog.find(id);
  return found != nullptr ? std::optional<std::string>(*found) : std::nullopt;
}

struct EntryCase {
  const char* po;
  const char* id;
  const char* expected;  // null: no translation
};

class PoEntry : public ::testing::TestWithParam<EntryCase> {};

TEST_P(PoEntry, TranslatesAsGettextWould) {
  const EntryCase& c = GetParam();
  const PoCatalog catalog = PoCatalog::parse(c.po);
  EXPECT_EQ(lookup(catalog, c.id), c.expected ? std::optional<std::string>(c.expected) : std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PoEntry,
    ::testing::Values(
        EntryCase{"msgid \"Knife\"\nmsgstr \"Messer\"\n", "Knife", "Messer"},
        // Strings split over lines are joined.
        EntryCase{"msgid \"\"\n\"Tool \"\n\"offset\"\nmsgstr \"\"\n\"Werkzeug\"\n  \"versatz\"\n",
                  "Tool offset", "Werkzeugversatz"},
        EntryCase{"msgid \"a\\r\\nb\"\nmsgstr \"c\\r\\n\"\n\"d\"\n", "a\r\nb", "c\r\nd"},
        EntryCase{"msgid \"q\\\"uote\\\\ \\t\"\nmsgstr \"\\x41\\102\"\n", "q\"uote\\ \t", "AB"},
        EntryCase{"msgid \"CRLF file\"\r\nmsgstr \"Datei\"\r\n", "CRLF file", "Datei"},
        EntryCase{"msgid \"Pen\"\nmsgstr \"Stift\"", "Pen", "Stift"},  // no final line break
        EntryCase{"msgid \"Pen\" \nmsgstr\t\"Stift\"  \n", "Pen", "Stift"},
        // Not translations.
        EntryCase{"#, c-format, fuzzy\nmsgid \"Knife\"\nmsgstr \"Messer\"\n", "Knife", nullptr},
        EntryCase{"#, fuzzyish\nmsgid \"Knife\"\nmsgstr \"Messer\"\n", "Knife", "Messer"},
        EntryCase{"#~ msgid \"Knife\"\n#~ msgstr \"Messer\"\n", "Knife", nullptr},
        EntryCase{"msgid \"Knife\"\nmsgstr \"\"\n", "Knife", nullptr},
        EntryCase{"msgctxt \"menu\"\nmsgid \"Knife\"\nmsgstr \"Messer\"\n", "Knife", nullptr},
        EntryCase{"msgid \"\"\nmsgstr \"Header\\n\"\n", "", nullptr},
        // Plural entries give their first form.
        EntryCase{"msgid \"tool\"\nmsgid_plural \"tools\"\nmsgstr[0] \"Werkzeug\"\nmsgstr[1] \"Werkzeuge\"\n",
                  "tool", "Werkzeug"},
        // The first of two entries with one msgid wins.
        EntryCase{"msgid \"Pen\"\nmsgstr \"Stift\"\nmsgid \"Pen\"\nmsgstr \"Feder\"\n", "Pen", "Stift"},
        // Broken entries.
        EntryCase{"msgid \"Pen\nmsgstr \"Stift\"\n", "Pen", nullptr},
        EntryCase{"msgid \"Pen\"\nmsgstr \"Stift\" junk\n", "Pen", nullptr},
        EntryCase{"msgid \"Pen\"\nmsgstr \"St\\qift\"\n", "Pen", nullptr},
        EntryCase{"msgid \"Pen\"\nmsgtxt \"Stift\"\n", "Pen", nullptr},
        EntryCase{"msgid \"Pen\"\nmsgid \"Pen2\"\nmsgstr \"Stift\"\n", "Pen", nullptr},
        EntryCase{"msgid \"Pen\"\nmsgstr \"Stift\"\nmsgstr \"Feder\"\n", "Pen", nullptr},
        EntryCase{"msgid \"Pen\"\nmsgstr \"Stift\"\n\"a\" \"b\"\n", "Pen", nullptr},
        EntryCase{"msgid \"Pen\"\nmsgstr \"St\\0ift\"\n", "Pen", nullptr}),
    kerfline::test::RowIndex());

TEST(PoCatalog, ABrokenEntryIsSkippedAndTheRestStillServes) {
  const PoCatalog catalog = PoCatalog::parse(
      "msgid \"One\"\nmsgstr \"Eins\"\n\n"
      "msgstr \"orphan\"\n"  // no msgid
      "\"stray continuation\"\n"
      "msgid \"Two\"\nmsgstr \"Zwei\n"  // unterminated
      "\"more\"\n\n"
      "msgid \"Three\"\nbogus \"x\"\nmsgstr \"Drei\"\n\n"
      "msgid \"Four\"\nmsgstr \"Vier\"\n"
      "msgid \"Five\"\n");  // no msgstr at the end
  EXPECT_EQ(lookup(catalog, "One"), "Eins");
  EXPECT_EQ(lookup(catalog, "Two"), std::nullopt);
  EXPECT_EQ(lookup(catalog, "Three"), std::nullopt);
  EXPECT_EQ(lookup(catalog, "Four"), "Vier");
  EXPECT_EQ(catalog.size(), 2u);
  EXPECT_EQ(catalog.broken_entries(), 4u);
}

TEST(PoCatalog, ConvertsUtf8FilesToTheLibrarysCodePage) {
  const char* header = "msgid \"\"\nmsgstr \"\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n\n";
  const PoCatalog utf8 = PoCatalog::parse(
      std::string(header) +
      "msgid \"Router\"\nmsgstr \"Fr\xC3\xA4ser\"\n"
      "msgid \"Gr\xC3\xBC\xC3\x9F\"\nmsgstr \"\xE2\x82\xAC \xE2\x98\x83 \xF0\x9F\x98\x80 \xC3\"\n");
  EXPECT_EQ(lookup(utf8, "Router"), "Fr\xE4ser");
  // Euro sign is in 1252; a snowman and an emoji are not; a cut sequence is "?".
  EXPECT_EQ(lookup(utf8, "Gr\xFC\xDF"), "\x80 ? ? ?");

  const PoCatalog bom = PoCatalog::parse("\xEF\xBB\xBFmsgid \"Router\"\nmsgstr \"Fr\xC3\xA4ser\"\n");
  EXPECT_EQ(lookup(bom, "Router"), "Fr\xE4ser");

  // Without a UTF-8 header the bytes are taken as they stand (1252).
  const PoCatalog latin = PoCatalog::parse(
      "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=CP1252\\n\"\n"
      "msgid \"Router\"\nmsgstr \"Fr\xE4ser\"\n");
  EXPECT_EQ(lookup(latin, "Router"), "Fr\xE4ser");
}

TEST(PoCatalog, SampleGermanFileIsWellFormed) {
  const auto loaded = PoCatalog::load(KERFLINE_RES_DIR "/lang/GER/kerflineGER.TRA");
  ASSERT_TRUE(loaded.ok());
  EXPECT_EQ(loaded.value().broken_entries(), 0u);
  EXPECT_EQ(lookup(loaded.value(), "Router"), "Fr\xE4ser");
  EXPECT_EQ(lookup(loaded.value(), "Tool offset\r\nin mm"), "Werkzeugversatz\r\nin mm");
}

}  // namespace
