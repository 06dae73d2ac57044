#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"

#include "platform/codepage.hpp"

namespace cp = kerfline::platform::cp1252;

struct CasePair {
  unsigned char upper;
  unsigned char lower;
};

class Cp1252CasePairs : public ::testing::TestWithParam<CasePair> {};

TEST_P(Cp1252CasePairs, MapBothWays) {
  EXPECT_EQ(cp::to_upper(GetParam().lower), GetParam().upper);
  EXPECT_EQ(cp::to_lower(GetParam().upper), GetParam().lower);
}

INSTANTIATE_TEST_SUITE_P(Table, Cp1252CasePairs,
                         ::testing::Values(CasePair{'A', 'a'}, CasePair{'Z', 'z'},
                                           CasePair{0xC4, 0xE4},  // Ä ä
                                           CasePair{0xD6, 0xF6},  // Ö ö
                                           CasePair{0xDC, 0xFC},  // Ü ü
                                           CasePair{0xC0, 0xE0},  // À à
                                           CasePair{0xDE, 0xFE},  // Þ þ
                                           CasePair{0x8A, 0x9A},  // Š š
                                           CasePair{0x8C, 0x9C},  // Œ œ
                                           CasePair{0x8E, 0x9E},  // Ž ž
                                           CasePair{0x9F, 0xFF}),
                         kerfline::test::RowIndex());  // Ÿ ÿ

TEST(Cp1252Case, LeavesNonLettersAlone) {
  for (int c : {0x30, 0x40, 0x5B, 0x60, 0x7B, 0xD7 /* × */, 0xF7 /* ÷ */, 0xDF /* ß */, 0xB5 /* µ */,
                0x80 /* € */, 0xA0}) {
    const auto b = static_cast<unsigned char>(c);
    EXPECT_EQ(cp::to_upper(b), b) << c;
    EXPECT_EQ(cp::to_lower(b), b) << c;
  }
}

TEST(Cp1252Case, StringsAndComparison) {
  EXPECT_EQ(cp::to_upper("sl_m\xe4rz"), "SL_M\xc4RZ");
  EXPECT_EQ(cp::to_lower("\xc4Rger"), "\xe4rger");
  EXPECT_TRUE(cp::equals_no_case("CutterSettings", "cuttersettings"));
  EXPECT_TRUE(cp::equals_no_case("\xe4", "\xc4"));
  EXPECT_FALSE(cp::equals_no_case("abc", "abcd"));
  EXPECT_LT(cp::compare_no_case("abc", "ABD"), 0);
  EXPECT_GT(cp::compare_no_case("b", "A"), 0);
  EXPECT_LT(cp::compare_no_case("ab", "AB C"), 0);
}

struct Utf16Case {
  const char* name;
  std::u16string input;
  std::string expected;
};

class Utf16To1252 : public ::testing::TestWithParam<Utf16Case> {};

TEST_P(Utf16To1252, Converts) { EXPECT_EQ(cp::from_utf16(GetParam().input), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Table, Utf16To1252,
    ::testing::Values(Utf16Case{"ascii", u"PU 10,20;", "PU 10,20;"},
                      Utf16Case{"latin1", u"Gr\u00f6\u00dfe",
                                "Gr\xf6\xdf"
                                "e"},
                      Utf16Case{"euro_and_quotes", u"\u20ac \u201cx\u201d", "\x80 \x93x\x94"},
                      Utf16Case{"oe_and_y_diaeresis", u"\u0153\u0178", "\x9c\x9f"},
                      Utf16Case{"unmappable_bmp", u"a\u4e2db", "a?b"},
                      Utf16Case{"surrogate_pair_is_one_char", u"x\U0001F600y", "x?y"},
                      Utf16Case{"lone_high_surrogate", std::u16string(u"a") + char16_t(0xD800) + u"b", "a?b"},
                      Utf16Case{"lone_low_surrogate", std::u16string(u"a") + char16_t(0xDC00), "a?"},
                      Utf16Case{"high_at_end", std::u16string(1, char16_t(0xDBFF)), "?"},
                      Utf16Case{"empty", u"", ""}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Cp1252Unicode, HighControlBlock) {
  EXPECT_EQ(cp::to_unicode(0x80), U'\u20ac');
  EXPECT_EQ(cp::to_unicode(0x9F), U'\u0178');
  EXPECT_EQ(cp::to_unicode(0x81), U'\u0081');
  EXPECT_EQ(cp::to_unicode(0xE4), U'\u00e4');
}

TEST(Cp1252Utf8, EveryByteRoundTrips) {
  std::string all;
  for (int c = 0; c < 256; ++c) all.push_back(static_cast<char>(c));
  const std::string utf8 = cp::to_utf8(all);
  const auto back = cp::from_utf8(utf8);
  ASSERT_TRUE(back.has_value());
  EXPECT_EQ(*back, all);
  EXPECT_EQ(cp::to_utf8("\x80\xe4"), "\xe2\x82\xac\xc3\xa4");  // € ä
}

TEST(Cp1252Utf8, RefusesWhatWouldChangeABytes) {
  const char* bad[] = {
      "\xe4\xb8\xad",      // a character outside 1252
      "\xc3",              // cut short
      "\xc3\x28",          // not a continuation byte
      "\xc0\x80",          // overlong NUL
      "\xf0\x9f\x98\x80",  // outside the BMP
      "\xff",
  };
  for (const char* text : bad) EXPECT_FALSE(cp::from_utf8(text).has_value()) << text;
  EXPECT_EQ(*cp::from_utf8("a?b"), "a?b");
}
