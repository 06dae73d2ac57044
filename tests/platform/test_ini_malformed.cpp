#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "ini_fixture.hpp"
#include "platform/ini.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::test::IniFile;

namespace {

// Reads everything there is to read, with buffers of every awkward size.
void read_everything(const std::string& path) {
  std::vector<char> buffer(4096);
  for (std::uint32_t size : {0u, 1u, 2u, 3u, 17u, 4096u}) {
    const std::uint32_t names = ini::get_section_names(buffer.data(), size, path);
    EXPECT_LE(names, size > 0 ? size - 1 : 0);
  }
  for (const std::string& section : ini::read_section_names(path)) {
    for (std::uint32_t size : {1u, 2u, 64u, 4096u}) {
      EXPECT_LE(ini::get_section(section.c_str(), buffer.data(), size, path), size - 1);
      EXPECT_LE(ini::get_string(section.c_str(), nullptr, "", buffer.data(), size, path), size - 1);
    }
    for (const std::string& key : ini::read_key_names(section, path)) {
      (void)ini::get_int(section.c_str(), key.c_str(), 0, path);
      EXPECT_TRUE(ini::find_string(section, key, path).has_value()) << "a listed key is found";
    }
  }
}

TEST(IniMalformed, BinaryFileReadsAndWritesSafely) {
  if (ini::uses_system_engine())
    GTEST_SKIP() << "Wine's profile functions: a write re-encodes bytes of a binary file it did not touch";
  IniFile file;
  std::mt19937 random(7);
  std::string bytes(std::size_t{64} * 1024, '\0');
  for (char& c : bytes) c = static_cast<char>(random() % 256);
  // Enough structure that sections and keys exist among the noise.
  for (std::size_t at = 0; at + 16 < bytes.size(); at += 997) bytes.replace(at, 10, "\r\n[s]\r\nk=v");
  file.put(bytes);
  read_everything(file.path());
  ASSERT_TRUE(ini::write_value("added", "key", "value", file.path()));
  EXPECT_EQ(ini::read_string("added", "key", "", file.path()), "value");
  const std::string after = file.bytes();
  EXPECT_EQ(after.compare(0, bytes.size(), bytes), 0) << "the binary bytes stay as they were";
}

TEST(IniMalformed, MegabyteLines) {
  if (ini::uses_system_engine())
    GTEST_SKIP() << "Wine's profile functions: a section name of a megabyte is not found";
  IniFile file;
  const std::string big(1 << 20, 'x');
  file.put("[s]\r\nbig=" + big + "\r\n" + big + "\r\n[" + big +
           "]\r\nk=in big section\r\n[t]\r\nafter=1\r\n");
  EXPECT_EQ(ini::read_string("s", "big", "", file.path()), big);
  std::vector<char> buffer(100);
  EXPECT_EQ(ini::get_string("s", "big", "", buffer.data(), 100, file.path()), 99u);
  EXPECT_EQ(ini::get_section("s", buffer.data(), 100, file.path()), 98u);
  EXPECT_EQ(ini::read_string(big, "k", "", file.path()), "in big section");
  EXPECT_EQ(ini::read_int("t", "after", 0, file.path()), 1);
  ASSERT_TRUE(ini::write_value("s", "big", "small", file.path()));
  EXPECT_EQ(ini::read_string("s", "big", "", file.path()), "small");
  EXPECT_EQ(ini::read_section("s", file.path()).at(1), big);
}

TEST(IniMalformed, HundredThousandSections) {
  IniFile file;
  constexpr int kSections = 100000;
  std::string text;
  for (int i = 0; i < kSections; ++i)
    text += "[s" + std::to_string(i) + "]\r\nk=" + std::to_string(i) + "\r\n";
  file.put(text);
  const auto names = ini::read_section_names(file.path());
  ASSERT_EQ(names.size(), static_cast<std::size_t>(kSections));
  EXPECT_EQ(names.back(), "s99999");
  for (int i = 0; i < kSections; i += 997)
    EXPECT_EQ(ini::read_int("S" + std::to_string(i), "K", -1, file.path()), i);
  std::vector<char> buffer(16);
  EXPECT_EQ(ini::get_section_names(buffer.data(), 16, file.path()), 14u);
  ASSERT_TRUE(ini::write_value("s50000", "new", "1", file.path()));
  const std::string after = file.bytes();
  EXPECT_EQ(after.size(), text.size() + 7);
  EXPECT_NE(after.find("[s50000]\r\nk=50000\r\nnew=1\r\n[s50001]"), std::string::npos);
  ASSERT_TRUE(ini::delete_section("s0", file.path()));
  EXPECT_EQ(file.bytes().rfind("[s1]\r\nk=1\r\n", 0), 0u);
}

TEST(IniMalformed, DegenerateFiles) {
  if (ini::uses_system_engine()) {
    GTEST_SKIP() << "Wine's GetPrivateProfileSection faults (PROFILE_GetSection) on some of these files";
  }
  const std::string cases[] = {
      std::string(1 << 20, '\n'),
      std::string(1 << 16, '\r'),
      std::string(1 << 16, '\0'),
      std::string(1 << 16, '['),
      std::string(1 << 16, ']'),
      std::string(1 << 16, '='),
      std::string("[") + std::string(1 << 16, ']'),
      "\xEF\xBB\xBF[s]\r\nk=1\r\n",
      "[\r\n]\r\n[]\r\n=\r\n",
  };
  for (const std::string& bytes : cases) {
    IniFile file;
    file.put(bytes);
    read_everything(file.path());
    ASSERT_TRUE(ini::write_value("s", "k", "2", file.path()));
    EXPECT_EQ(ini::read_string("s", "k", "", file.path()), "2");
    ASSERT_TRUE(ini::delete_key("s", "k", file.path()));
    EXPECT_EQ(ini::find_string("s", "k", file.path()), std::nullopt);
  }
}

}  // namespace
