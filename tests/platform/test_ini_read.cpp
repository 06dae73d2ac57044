#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"

#include <cstring>
#include <vector>

#include "ini_fixture.hpp"
#include "ini_wine_rows.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::test::IniFile;
using kerfline::test::operator""_b;

namespace {

// Every reading rule in one file: mixed line endings, spacing, quotes,
// comments, duplicates, 1252 case and a NUL as the last byte.
const std::string kSample =
    "; before any section\r\n"
    "orphan=no section\r\n"
    "[section1]\r\n"
    "name1=val1\r\n"
    "name2=\r\n"
    "name3\r\n"
    "name4=val4\n"
    "=val5\r"
    "[ section2 ]  text after\r\n"
    " \t key \t= spaced value \x1a\r\n"
    "quoted=\"val2\"\r\n"
    "single='val2'\r\n"
    "mixed=\"val2'\r\n"
    "half=\"\r\n"
    "inline=v ;x\r\n"
    "  ;name=comment\r\n"
    "#hash=yes\r\n"
    "eq=a=b\r\n"
    "[Section1]\r\n"
    "name1=second section\r\n"
    "extra=only here\r\n"
    "[section3]\r\n"
    "dup=first\r\n"
    "DUP=second\r\n"
    "\xC4rger=umlaut\r\n"
    "[no bracket\r\n"
    "[a]b]\r\n"
    "k=in a]b\r\n"
    "last=end\0"_b;

struct GetCase {
  const char* section;
  const char* key;
  std::uint32_t result;
  const char* text;  // what the buffer holds before its NUL; nullptr: untouched
  const char* default_value = "d";
  std::uint32_t size = 64;
};

class GetString : public ::testing::TestWithParam<GetCase> {};

TEST_P(GetString, GivesValueOrDefaultWithWin32Count) {
  if (kerfline::test::system_engine_differs()) GTEST_SKIP() << "Wine differs on this row";
  const GetCase& c = GetParam();
  IniFile file;
  file.put(kSample);
  std::vector<char> buffer(c.size + 8, '#');
  EXPECT_EQ(ini::get_string(c.section, c.key, c.default_value, buffer.data(), c.size, file.path()), c.result);
  if (c.text == nullptr) {
    EXPECT_EQ(buffer[0], '#');
    return;
  }
  EXPECT_EQ(std::string(buffer.data(), c.result), c.text);
  EXPECT_EQ(buffer[c.result], '\0');
  EXPECT_EQ(buffer[c.result + 1], '#') << "wrote past the NUL";
}

INSTANTIATE_TEST_SUITE_P(
    Table, GetString,
    ::testing::Values(
        GetCase{"section1", "name1", 4, "val1"}, GetCase{"SECTION1", "NAME1", 4, "val1"},
        GetCase{"section1", "name1", 4, "val1", "d", 5}, GetCase{"section1", "name1", 3, "val", "d", 4},
        GetCase{"section1", "name1", 0, "", "d", 1}, GetCase{"section1", "name1", 0, nullptr, "d", 0},
        GetCase{"section1", "name2", 0, ""}, GetCase{"section1", "name3", 1, "d"},
        GetCase{"section1", "name4", 4, "val4"}, GetCase{"section1", "", 4, "val5"},
        GetCase{"section2", "key", 12, "spaced value"}, GetCase{"section2", "quoted", 4, "val2"},
        GetCase{"section2", "single", 4, "val2"}, GetCase{"section2", "mixed", 6, "\"val2'"},
        GetCase{"section2", "half", 1, "\""}, GetCase{"section2", "inline", 4, "v ;x"},
        GetCase{"section2", "name", 1, "d"}, GetCase{"section2", ";name", 1, "d"},
        GetCase{"section2", "#hash", 3, "yes"}, GetCase{"section2", "eq", 3, "a=b"},
        GetCase{"section1", "extra", 1, "d"}, GetCase{"section3", "dup", 5, "first"},
        GetCase{"section3", "\xE4RGER", 6, "umlaut"}, GetCase{"section3", "[no bracket", 1, "d"},
        GetCase{"a]b", "k", 6, "in a]b"}, GetCase{"a]b", "last", 3, "end"}, GetCase{"", "orphan", 1, "d"},
        GetCase{"nosuch", "name1", 7, "default", "default  "}, GetCase{"section1", "nosuch", 0, "", nullptr},
        // A default loses trailing blanks only.
        GetCase{"section1", "nosuch", 8, "  lead \t", "  lead \t"},
        GetCase{"section1", "nosuch", 4, "d\v\f\x1a", "d\v\f\x1a  "},
        // Names given by the caller are trimmed like the file's own.
        GetCase{" section1\t", "\tname1 ", 4, "val1"}, GetCase{"section1", "nosuch", 3, "def", "default", 4}),
    kerfline::test::RowIndex());

// The list forms, with the whole buffer checked: '#' marks bytes that must
// stay untouched.
const std::string kLists =
    "[section1]\r\n"
    "name1=val1\r\n"
    "name2=\r\n"
    "name3\r\n"
    "; note\r\n"
    "\r\n"
    "name4=val4\r\n"
    "[section2]\r\n"
    "[section3]\r\n"
    "=val5\r\n"
    "k\r\n";

enum class ListKind { kSectionNames, kNamesViaGetString, kKeyNames, kWholeSection };
using enum ListKind;

struct ListCase {
  ListKind kind;
  const char* section;
  std::uint32_t size;
  std::uint32_t result;
  std::string buffer;
};

class ListForms : public ::testing::TestWithParam<ListCase> {};

TEST_P(ListForms, FillTheBufferAsWindowsDoes) {
  if (kerfline::test::system_engine_differs()) GTEST_SKIP() << "Wine differs on this row";
  const ListCase& c = GetParam();
  IniFile file;
  file.put(kLists);
  std::string buffer(c.buffer.size(), '#');
  std::uint32_t result = 0;
  switch (c.kind) {
    case kSectionNames:
      result = ini::get_section_names(buffer.data(), c.size, file.path());
      break;
    case kNamesViaGetString:
      result = ini::get_string(nullptr, "ignored", "ignored", buffer.data(), c.size, file.path());
      break;
    case kKeyNames:
      result = ini::get_string(c.section, nullptr, "dflt ", buffer.data(), c.size, file.path());
      break;
    case kWholeSection:
      result = ini::get_section(c.section, buffer.data(), c.size, file.path());
      break;
  }
  EXPECT_EQ(result, c.result);
  EXPECT_EQ(buffer, c.buffer);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ListForms,
    ::testing::Values(
        ListCase{kSectionNames, nullptr, 29, 27, "section1\0section2\0section3\0\0"_b},
        ListCase{kSectionNames, nullptr, 28, 26, "section1\0section2\0section3\0\0"_b},
        ListCase{kSectionNames, nullptr, 27, 25, "section1\0section2\0section\0\0"_b},
        ListCase{kSectionNames, nullptr, 16, 14, "section1\0secti\0\0##"_b},
        ListCase{kSectionNames, nullptr, 40, 27, "section1\0section2\0section3\0\0###"_b},
        ListCase{kSectionNames, nullptr, 2, 0, "\0\0#"_b}, ListCase{kSectionNames, nullptr, 1, 0, "\0#"_b},
        ListCase{kSectionNames, nullptr, 0, 0, "#"_b},
        ListCase{kNamesViaGetString, nullptr, 16, 14, "section1\0secti\0\0#"_b},
        ListCase{kNamesViaGetString, nullptr, 29, 27, "section1\0section2\0section3\0\0"_b},
        ListCase{kWholeSection, "section1", 40, 35, "name1=val1\0name2=\0name3\0name4=val4\0\0###"_b},
        ListCase{kWholeSection, "SECTION1", 24, 22, "name1=val1\0name2=\0name\0\0#"_b},
        ListCase{kWholeSection, "section3", 16, 8, "=val5\0k\0\0###"_b},
        ListCase{kWholeSection, "section2", 16, 0, "\0\0##"_b},
        ListCase{kWholeSection, "nosuch", 16, 0, "\0\0##"_b},
        ListCase{kKeyNames, "section1", 32, 18, "name1\0name2\0name4\0\0###"_b},
        ListCase{kKeyNames, "section1", 10, 8, "name1\0na\0\0#"_b},
        ListCase{kKeyNames, "section2", 16, 4, "dflt\0#"_b},
        ListCase{kKeyNames, "section3", 16, 4, "dflt\0#"_b}, ListCase{kKeyNames, "nosuch", 3, 2, "df\0#"_b}),
    kerfline::test::RowIndex());

TEST(IniLists, ShowDuplicatesAsTheyStand) {
  IniFile file;
  file.put("[a]\r\nk=1\r\nK=2\r\n[A]\r\nk=3\r\n");
  EXPECT_EQ(ini::read_section_names(file.path()), (std::vector<std::string>{"a", "A"}));
  EXPECT_EQ(ini::read_key_names("a", file.path()), (std::vector<std::string>{"k", "K"}));
  EXPECT_EQ(ini::read_section("A", file.path()), (std::vector<std::string>{"k=1", "K=2"}));
  EXPECT_EQ(ini::read_string("a", "K", "", file.path()), "1");
}

TEST(IniLists, StringFormsMatchTheBufferForms) {
  if (ini::uses_system_engine())
    GTEST_SKIP() << "Wine's profile functions: section lines come back with the blanks around '=' removed";
  IniFile file;
  file.put(kSample);
  EXPECT_EQ(ini::read_section_names(file.path()),
            (std::vector<std::string>{"section1", "section2", "Section1", "section3", "a]b"}));
  EXPECT_EQ(ini::read_key_names("section1", file.path()),
            (std::vector<std::string>{"name1", "name2", "name4"}));
  EXPECT_EQ(ini::read_section("section2", file.path()),
            (std::vector<std::string>{"key \t= spaced value", "quoted=\"val2\"", "single='val2'",
                                      "mixed=\"val2'", "half=\"", "inline=v ;x", "#hash=yes", "eq=a=b"}));
  EXPECT_EQ(ini::find_string("section2", "quoted", file.path()), "val2");
  EXPECT_EQ(ini::find_string("section1", "name2", file.path()), "");
  EXPECT_EQ(ini::find_string("section1", "name3", file.path()), std::nullopt);
  EXPECT_EQ(ini::read_string("section1", "name3", "fallback \t  ", file.path()), "fallback \t");
}

TEST(IniMissingFile, ReadsAsDefaultsAndEmptyLists) {
  if (ini::uses_system_engine())
    GTEST_SKIP()
        << "Wine's profile functions: a missing file gives two NULs, and an untrimmed default for a null key";
  IniFile file;
  std::string buffer(8, '#');
  EXPECT_EQ(ini::get_section_names(buffer.data(), 8, file.path()), 0u);
  EXPECT_EQ(buffer, "\0#######"_b) << "only the first byte is set";
  buffer.assign(8, '#');
  EXPECT_EQ(ini::get_string(nullptr, nullptr, "d", buffer.data(), 8, file.path()), 0u);
  EXPECT_EQ(buffer, "\0#######"_b);
  buffer.assign(8, '#');
  EXPECT_EQ(ini::get_section("s", buffer.data(), 8, file.path()), 0u);
  EXPECT_EQ(buffer, "\0#######"_b);
  buffer.assign(8, '#');
  EXPECT_EQ(ini::get_string("s", nullptr, "dflt  ", buffer.data(), 8, file.path()), 4u);
  EXPECT_EQ(buffer, "dflt\0###"_b);
  buffer.assign(8, '#');
  EXPECT_EQ(ini::get_string("s", "k", "default  ", buffer.data(), 8, file.path()), 7u);
  EXPECT_EQ(buffer, "default\0"_b);
  EXPECT_EQ(ini::get_int("s", "k", -5, file.path()), static_cast<std::uint32_t>(-5));
  EXPECT_EQ(ini::read_section_names(file.path()), std::vector<std::string>{});
  EXPECT_EQ(ini::get_string("s", "k", "d", buffer.data(), 8, ""), 1u)
      << "an empty file name reads as missing";
  EXPECT_FALSE(file.exists()) << "reading must not create the file";
}

struct IntCase {
  const char* value;  // nullptr: no such key
  std::uint32_t result;
};

class GetInt : public ::testing::TestWithParam<IntCase> {};

TEST_P(GetInt, ParsesLikeWindows) {
  IniFile file;
  const IntCase& c = GetParam();
  file.put(c.value == nullptr ? std::string("[n]\r\n") : "[n]\r\nv=" + std::string(c.value) + "\r\n");
  EXPECT_EQ(ini::get_int("n", "v", 77, file.path()), c.result);
  EXPECT_EQ(ini::read_int("n", "v", 77, file.path()), static_cast<std::int32_t>(c.result));
}

INSTANTIATE_TEST_SUITE_P(
    Table, GetInt,
    ::testing::Values(IntCase{"1", 1}, IntCase{"+1", 1}, IntCase{"-1", 4294967295u}, IntCase{"4294967296", 0},
                      IntCase{"4294967297", 1}, IntCase{"-4294967297", 4294967295u},
                      IntCase{"42A94967297", 42}, IntCase{"B4294967297", 0}, IntCase{"0X10", 0},
                      IntCase{"0x10", 16}, IntCase{"0xfF", 255}, IntCase{"-0x10", 0xFFFFFFF0u},
                      IntCase{"0o17", 15}, IntCase{"0o8", 0}, IntCase{"0b101", 5}, IntCase{"0b2", 0},
                      IntCase{"017", 17}, IntCase{"2147483648", 2147483648u}, IntCase{"+-1", 0},
                      IntCase{"-", 0}, IntCase{"\" 12\"", 12}, IntCase{"'-3'", 4294967293u},
                      IntCase{"12 34", 12}, IntCase{"\"\"", 77}, IntCase{"", 77}, IntCase{nullptr, 77}),
    kerfline::test::RowIndex());

TEST(IniNulBytes, AreOrdinaryBytesExceptAtTheVeryEnd) {
  if (ini::uses_system_engine()) GTEST_SKIP() << "Wine's profile functions: a NUL byte ends the value";
  IniFile file;
  file.put("[a]\r\nx=1\0 2\r\ny=2\r\n[b\0]\r\nz=3\0"_b);
  EXPECT_EQ(ini::read_string("a", "x", "", file.path()), "1\0 2"_b);
  EXPECT_EQ(ini::read_int("a", "y", 0, file.path()), 2);
  EXPECT_EQ(ini::read_string("b\0"_b, "z", "", file.path()), "3") << "a final NUL is not part of the value";
}

TEST(IniFileNames, BareNameMeansTheSuiteDirectoryAndCaseIsIgnored) {
  IniFile file;
  namespace kp = kerfline::platform;
  kp::set_home_dir(file.dir().str());
  file.dir().write("PlotMan.ini", "[DeviceNames]\r\nDevice0=Cutter\r\n");
  EXPECT_EQ(ini::resolve_file("plotman.ini"), kp::join_path(file.dir().str(), "PlotMan.ini"));
  EXPECT_EQ(ini::read_string("devicenames", "device0", "", "PLOTMAN.INI"), "Cutter");
  EXPECT_TRUE(ini::write_value("ports", "COM1:", "9600,n,8,1", "win.ini"));
  EXPECT_EQ(file.dir().read("win.ini"), "[ports]\r\nCOM1:=9600,n,8,1\r\n");
  kp::set_home_dir("");
}

}  // namespace
