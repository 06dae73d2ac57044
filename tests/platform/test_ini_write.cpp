#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"

#include <filesystem>
#include <functional>
#include <optional>

#include "ini_fixture.hpp"
#include "ini_wine_rows.hpp"
#include "platform/ini.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::test::IniFile;
using kerfline::test::operator""_b;

namespace {

using Op = std::function<bool(const std::string& file)>;

Op set(const char* section, const char* key, const char* value) {
  return [=](const std::string& file) { return ini::write_string(section, key, value, file); };
}

Op set_section(const char* section, std::optional<std::string> data) {
  return [=](const std::string& file) {
    return ini::write_section(section, data ? data->c_str() : nullptr, file);
  };
}

struct WriteCase {
  std::optional<std::string> before;  // nothing: no file
  Op op;
  bool ok;
  std::string after;
};

class IniWrite : public ::testing::TestWithParam<WriteCase> {};

TEST_P(IniWrite, ChangesOnlyWhatItIsAbout) {
  if (kerfline::test::system_engine_differs()) GTEST_SKIP() << "Wine differs on this row";
  const WriteCase& c = GetParam();
  IniFile file;
  if (c.before) file.put(*c.before);
  EXPECT_EQ(c.op(file.path()), c.ok);
  EXPECT_EQ(file.bytes(), c.after);
}

INSTANTIATE_TEST_SUITE_P(
    Table, IniWrite,
    ::testing::Values(
        // A new file is written the Windows way.
        WriteCase{std::nullopt, set("App", "key", "string"), true, "[App]\r\nkey=string\r\n"},
        WriteCase{std::nullopt, set("App", "key", ""), true, "[App]\r\nkey=\r\n"},
        // New keys go after the section's last line, before its trailing
        // comments and blank lines; new sections at the end.
        WriteCase{"[App]\r\nk=v\r\n; end of App\r\n\r\n[Next]\r\nn=1\r\n", set("App", "new", "x"), true,
                  "[App]\r\nk=v\r\nnew=x\r\n; end of App\r\n\r\n[Next]\r\nn=1\r\n"},
        WriteCase{"[a]\r\n[b]\r\n", set("A", "n", "1"), true, "[a]\r\nn=1\r\n[b]\r\n"},
        WriteCase{"[a]\r\nk=v\r\n", set("b", "x", "1"), true, "[a]\r\nk=v\r\n[b]\r\nx=1\r\n"},
        // The file's own line ending is used for new lines.
        WriteCase{"[a]\nk=v\n", set("a", "k2", "w"), true, "[a]\nk=v\nk2=w\n"},
        WriteCase{"[a]\rk=1\r", set("a", "n", "2"), true, "[a]\rk=1\rn=2\r"},
        WriteCase{"[a]\nk=v", set("b", "x", "1"), true, "[a]\nk=v\n[b]\nx=1\n"},
        WriteCase{"[a]\r\nk=v", set("a", "x", "1"), true, "[a]\r\nk=v\r\nx=1\r\n"},
        WriteCase{"[a]", set("a", "x", "1"), true, "[a]\r\nx=1\r\n"},
        WriteCase{"", set("a", "x", "1"), true, "[a]\r\nx=1\r\n"},
        // Changed in place; everything else byte for byte.
        WriteCase{"; c\r\norphan=1\r\n[a]\r\n  K = old ;x\r\nother = 1\r\n\r\njunk\r\n", set("a", "k", "new"),
                  true, "; c\r\norphan=1\r\n[a]\r\n  K=new\r\nother = 1\r\n\r\njunk\r\n"},
        WriteCase{"[a]\r\nx=\0y\r\nk=1\r\n"_b, set("a", "k", "2"), true, "[a]\r\nx=\0y\r\nk=2\r\n"_b},
        WriteCase{"[a]\r\nk=1\0"_b, set("a", "n", "2"), true, "[a]\r\nk=1\r\nn=2\r\n\0"_b},
        WriteCase{"[a]\r\nk=1\r\n[A]\r\nk=2\r\n", set("a", "k", "3"), true, "[a]\r\nk=3\r\n[A]\r\nk=2\r\n"},
        WriteCase{"[a]\nk=1\r\nj=2\n", set("a", "k", "\"q\""), true, "[a]\nk=\"q\"\r\nj=2\n"},
        // Deleting keys.
        WriteCase{"[App3]\r\nk=v\r\n", set("App3", "k", nullptr), true, "[App3]\r\n"},
        // Padded names given by the caller are the file's names.
        WriteCase{"[s]\r\npadkey=1\r\n", set("s", " padkey ", "2"), true, "[s]\r\npadkey=2\r\n"},
        WriteCase{"[s]\r\nk=1\r\n", set(" s ", "n", "2"), true, "[s]\r\nk=1\r\nn=2\r\n"},
        WriteCase{std::nullopt, set("\ts ", "k\t", "v"), true, "[s]\r\nk=v\r\n"},
        WriteCase{"[a]\r\nk=1\r\nj=2\r\n", set(" a", "k\t", nullptr), true, "[a]\r\nj=2\r\n"},
        WriteCase{"[a]\r\nk=1\r\n[b]\r\n", set("\ta ", nullptr, nullptr), true, "[b]\r\n"},
        // Only the first occurrence of a key or section is deleted.
        WriteCase{"[a]\r\nk=1\r\n;c\r\nK=2\r\nj=3\r\n", set("a", "k", nullptr), true,
                  "[a]\r\n;c\r\nK=2\r\nj=3\r\n"},
        WriteCase{"[a]\r\nk=1\r\n", set("a", "nosuch", nullptr), true, "[a]\r\nk=1\r\n"},
        WriteCase{"[a]\r\nk=1\r\n", set("nosuch", "k", nullptr), true, "[a]\r\nk=1\r\n"},
        WriteCase{std::nullopt, set("a", "k", nullptr), true, ""},
        // Deleting sections: header and every line up to the next one.
        WriteCase{"[a]\r\nk=1\r\n;c\r\n\r\n[b]\r\nx=2\r\n", set("a", nullptr, "ignored"), true,
                  "[b]\r\nx=2\r\n"},
        WriteCase{"top\r\n[a]\r\nk=1\r\n[b]\r\n[A]\r\nj=2", set("A", nullptr, nullptr), true,
                  "top\r\n[b]\r\n[A]\r\nj=2"},
        WriteCase{std::nullopt, set("a", nullptr, nullptr), true, ""},
        // A null section changes nothing.
        WriteCase{"[a]\r\nk=1\r\n", set(nullptr, "k", "v"), false, "[a]\r\nk=1\r\n"},
        // Whole sections: key lines replaced where they stood.
        WriteCase{"[a]\r\nk=1\r\n;keep\r\nj=2\r\n[b]\r\n", set_section("a", "x=9\0y=8\0"_b), true,
                  "[a]\r\nx=9\r\ny=8\r\n;keep\r\n[b]\r\n"},
        WriteCase{"[a]\nk=1\n", set_section("b", "x=9\0"_b), true, "[a]\nk=1\n[b]\nx=9\n"},
        // Exactly the lines a whole-section read lists are replaced: lines
        // without "=" go, comments stay.
        WriteCase{"[a]\r\nk=1\r\nbare\r\n;keep\r\n", set_section(" a ", "x=9\0"_b), true,
                  "[a]\r\nx=9\r\n;keep\r\n"},
        WriteCase{"[a]\r\nk=1\r\n[b]\r\n", set_section("a", ""), true, "[a]\r\n[b]\r\n"},
        WriteCase{"[a]\r\nk=1\r\n[b]\r\n", set_section("a", std::nullopt), true, "[b]\r\n"},
        WriteCase{"[a]\r\nk=1\r\n", set_section(nullptr, "x=1\0"_b), false, "[a]\r\nk=1\r\n"}),
    kerfline::test::RowIndex());

TEST(IniWriteFails, WithoutAPlaceToWrite) {
  IniFile file;
  EXPECT_FALSE(ini::write_value("a", "k", "v", ""));
  file.dir().write("plain", "not a directory");
  EXPECT_FALSE(ini::write_value("a", "k", "v", file.dir().str() + "plain/test.ini"));
  EXPECT_FALSE(ini::write_value("a", "k", "v", file.dir().str() + "missing/test.ini"));
  std::filesystem::create_directory(file.path());
  EXPECT_FALSE(ini::write_value("a", "k", "v", file.path())) << "a directory in the file's place";
  EXPECT_EQ(ini::read_string("a", "k", "dflt", file.path()), "dflt") << "and read as missing";
  char buffer[8];
  EXPECT_EQ(ini::get_section_names(buffer, sizeof buffer, file.path()), 0u);
}

TEST(IniCache, ParsesAnUnchangedFileOnce) {
  if (ini::uses_system_engine())
    GTEST_SKIP() << "the system's profile functions keep their cache to themselves";
  IniFile file;
  file.put("[a]\r\nk=1\r\n");
  file.age();
  const auto before = ini::cache_stats();
  for (int i = 0; i < 10; ++i) EXPECT_EQ(ini::read_int("a", "k", 0, file.path()), 1);
  const auto after = ini::cache_stats();
  EXPECT_EQ(after.loads - before.loads, 1u);
  EXPECT_EQ(after.hits - before.hits, 9u);

  ASSERT_TRUE(ini::write_value("a", "k", "2", file.path()));
  EXPECT_EQ(ini::read_int("a", "k", 0, file.path()), 2);
  EXPECT_EQ(ini::cache_stats().loads, after.loads) << "our own write needs no parse of the file again";
}

TEST(IniCache, SeesChangesMadeBehindItsBack) {
  IniFile file;
  file.put("[a]\r\nk=1\r\n");
  EXPECT_EQ(ini::read_int("a", "k", 0, file.path()), 1);
  // Same size, same inode, most likely the same clock tick.
  file.put("[a]\r\nk=2\r\n");
  EXPECT_EQ(ini::read_int("a", "k", 0, file.path()), 2);
  file.put("[a]\r\nk=3\r\nj=4\r\n");
  file.age();
  EXPECT_EQ(ini::read_int("a", "k", 0, file.path()), 3);
  // Replaced by another writer: a new inode.
  const std::string other = file.dir().str() + "other.ini";
  file.dir().write("other.ini", "[a]\r\nk=5\r\n");
  std::filesystem::rename(other, file.path());
  EXPECT_EQ(ini::read_int("a", "k", 0, file.path()), 5);
  std::filesystem::remove(file.path());
  EXPECT_EQ(ini::read_int("a", "k", 0, file.path()), 0);
}

TEST(IniCache, IsBoundedAndKeepsServingEveryFile) {
  kerfline::test::TempDir dir;
  for (int i = 0; i < 20; ++i) {
    dir.write("f" + std::to_string(i) + ".ini", "[a]\r\nk=" + std::to_string(i) + "\r\n");
  }
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 20; ++i)
      EXPECT_EQ(ini::read_int("a", "k", -1, dir.str() + "f" + std::to_string(i) + ".ini"), i);
  }
  ini::clear_cache();
  EXPECT_EQ(ini::read_int("a", "k", -1, dir.str() + "f3.ini"), 3);
}

}  // namespace
