// File-system behaviour of INI writes that only POSIX file systems have:
// permission bits, read-only directories and symbolic links.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "ini_fixture.hpp"
#include "platform/ini.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::test::IniFile;

TEST(IniWriteFails, OnReadOnlyFileOrDirectory) {
  if (::geteuid() == 0) GTEST_SKIP() << "root writes anywhere";
  IniFile file;
  file.put("[a]\r\nk=1\r\n");
  ::chmod(file.path().c_str(), 0444);
  EXPECT_FALSE(ini::write_value("a", "k", "2", file.path()));
  EXPECT_EQ(file.bytes(), "[a]\r\nk=1\r\n");
  ::chmod(file.path().c_str(), 0644);
  ::chmod(file.dir().path().c_str(), 0555);
  EXPECT_FALSE(ini::write_value("a", "k", "2", file.path()));
  ::chmod(file.dir().path().c_str(), 0755);
}

TEST(IniWrite, KeepsPermissionsAndLeavesNoTemporaryFiles) {
  IniFile file;
  file.put("[a]\r\n");
  ::chmod(file.path().c_str(), 0640);
  ASSERT_TRUE(ini::write_value("a", "k", "1", file.path()));
  struct stat st {};
  ASSERT_EQ(::stat(file.path().c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 07777, 0640u);
  int entries = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(file.dir().path())) ++entries;
  EXPECT_EQ(entries, 1);
}

TEST(IniWrite, FollowsASymbolicLink) {
  IniFile file;
  file.put("[a]\r\n");
  const std::string link = file.dir().str() + "link.ini";
  std::filesystem::create_symlink(file.path(), link);
  ASSERT_TRUE(ini::write_value("a", "k", "1", link));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(file.bytes(), "[a]\r\nk=1\r\n");
}
