#include <gtest/gtest.h>

#include "platform/codepage.hpp"

#include <string>

namespace cp = kerfline::platform::cp1252;

// The letter pairs A-a, Z-z, Ä-ä, Ö-ö, Ü-ü, À-à, Þ-þ, Š-š, Œ-œ, Ž-ž and Ÿ-ÿ.
const std::string kUpper = "AZ\xC4\xD6\xDC\xC0\xDE\x8A\x8C\x8E\x9F";
const std::string kLower = "az\xE4\xF6\xFC\xE0\xFE\x9A\x9C\x9E\xFF";
// No letters, or letters without a partner: 0 @ [ ` { × ÷ ß µ € and the no-break space.
const std::string kCaseless = "0@[`{\xD7\xF7\xDF\xB5\x80\xA0";

TEST(Cp1252Case, MapsLetterPairsBothWaysAndLeavesTheRestAlone) {
  const auto byte = [](char c) { return static_cast<unsigned char>(c); };
  for (std::size_t k = 0; k < kUpper.size(); ++k) {
    EXPECT_EQ(cp::to_upper(byte(kLower[k])), byte(kUpper[k])) << k;
    EXPECT_EQ(cp::to_lower(byte(kUpper[k])), byte(kLower[k])) << k;
  }
  for (const char c : kCaseless) {
    EXPECT_EQ(cp::to_upper(byte(c)), byte(c)) << int{byte(c)};
    EXPECT_EQ(cp::to_lower(byte(c)), byte(c)) << int{byte(c)};
  }
  EXPECT_EQ(cp::to_upper(kLower + kCaseless), kUpper + kCaseless);
  EXPECT_EQ(cp::to_lower(kUpper + kCaseless), kLower + kCaseless);
}

TEST(Cp1252Case, Comparison) {
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
                      Utf16Case{"latin1", u"Gr\u00f6\u00dfe", std::string("Gr\xf6\xdf") + "e"},
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
  // Outside 1252, cut short, no continuation byte, overlong NUL, outside the BMP, never UTF-8.
  const char* bad[] = {"\xe4\xb8\xad", "\xc3", "\xc3\x28", "\xc0\x80", "\xf0\x9f\x98\x80", "\xff"};
  for (const char* text : bad) EXPECT_FALSE(cp::from_utf8(text).has_value()) << text;
  EXPECT_EQ(*cp::from_utf8("a?b"), "a?b");
}
