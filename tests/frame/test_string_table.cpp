#include <gtest/gtest.h>

#include <string>

#include "fixtures/table_names.hpp"
#include "frame/string_table.hpp"

using kerfline::frame::StringTable;

namespace {

struct LineCase {
  const char* line;
  std::uint32_t id;
  const char* expected;  // null: the line is skipped
};

class StringTableLine : public ::testing::TestWithParam<LineCase> {};

TEST_P(StringTableLine, ReadsOrSkipsTheLine) {
  const LineCase& c = GetParam();
  const StringTable table = StringTable::parse(c.line);
  if (c.expected == nullptr) {
    EXPECT_EQ(table.size(), 0u);
    EXPECT_EQ(table.skipped_lines(), 1u);
  } else {
    EXPECT_EQ(table.find(c.id), std::optional<std::string>(c.expected));
    EXPECT_EQ(table.skipped_lines(), 0u);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, StringTableLine,
    ::testing::Values(
        LineCase{"1200, \"Plot manager\"", 1200, "Plot manager"},
        LineCase{"  1200 ,\t\"spaced\"  ", 1200, "spaced"}, LineCase{"1200 \"no comma\"", 1200, "no comma"},
        LineCase{"0x4B0, \"hex number\"", 1200, "hex number"},
        LineCase{"7, \"a\\tb\\nc\\\\d\\\"e\\'f\\?\"", 7, "a\tb\nc\\d\"e'f?"},
        LineCase{"7, \"\\101\\x42\\x7e\\177\"", 7, "AB~\177"}, LineCase{"7, \"\\xe4\\344\"", 7, "\xe4\xe4"},
        LineCase{"7, \"\"", 7, ""},
        LineCase{"7, \"100% // not a comment\" // comment", 7, "100% // not a comment"},
        LineCase{"4294967295, \"largest\"", 4294967295u, "largest"},
        // Malformed lines.
        LineCase{"1200, Plot manager", 0, nullptr}, LineCase{"1200, \"unterminated", 0, nullptr},
        LineCase{"1200, \"text\" trailing", 0, nullptr}, LineCase{"-5, \"negative\"", 0, nullptr},
        LineCase{"4294967296, \"too large\"", 0, nullptr}, LineCase{"STRINGTABLE", 0, nullptr},
        LineCase{"7, \"bad \\q escape\"", 0, nullptr}, LineCase{"7, \"\\x\"", 0, nullptr},
        LineCase{"7, \"nul \\0 inside\"", 0, nullptr}, LineCase{"7, \"\\400\"", 0, nullptr},
        LineCase{"7, \"ends in backslash\\", 0, nullptr}, LineCase{"\"no number\"", 0, nullptr}),
    kerfline::test::RowIndex());

TEST(StringTable, SkipsMalformedLinesAndServesTheRest) {
  const StringTable table = StringTable::parse(
      "// comment\r\n"
      "\r\n"
      "1, \"one\"\r\n"
      "garbage line\r\n"
      "2, \"two\r\n"  // unterminated
      "3, \"three\"\r\n"
      "1, \"duplicate\"\n"
      "   // indented comment\n"
      "4, \"no final line break\"");
  EXPECT_EQ(table.find(1), std::optional<std::string>("one"));
  EXPECT_EQ(table.find(2), std::nullopt);
  EXPECT_EQ(table.find(3), std::optional<std::string>("three"));
  EXPECT_EQ(table.find(4), std::optional<std::string>("no final line break"));
  EXPECT_EQ(table.size(), 3u);
  EXPECT_EQ(table.skipped_lines(), 2u);
}

TEST(StringTable, AnswersAtMost511Bytes) {
  const std::string long_text(600, 'x');
  const StringTable table =
      StringTable::parse("1, \"" + long_text + "\"\n2, \"" + std::string(511, 'y') + "\"\n");
  EXPECT_EQ(table.find(1), std::optional<std::string>(std::string(511, 'x')));
  EXPECT_EQ(table.find(2)->size(), 511u);
}

TEST(StringTable, ShippedTablesHoldTheLibrarysTextsWithoutMalformedLines) {
  const StringTable kerfline = StringTable::load(KERFLINE_RES_DIR "/kerfline.dlx").value();
  const StringTable cutterx = StringTable::load(KERFLINE_RES_DIR "/cutterx.dlx").value();
  EXPECT_EQ(kerfline.skipped_lines(), 0u);
  EXPECT_EQ(cutterx.skipped_lines(), 0u);
  for (const std::uint32_t id : {1200u, 1604u, 35589u}) EXPECT_TRUE(kerfline.find(id)) << id;
  // Descriptions of the standard variables: text n + 1 of variable n.
  for (std::uint32_t id = 9001; id < 9000 + 8 * 57; id += 8) EXPECT_TRUE(cutterx.find(id)) << id;
}

}  // namespace
