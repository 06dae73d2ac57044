#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"
#include "platform/environment.hpp"

#include <filesystem>

#include "fixtures/temp_dir.hpp"
#include "platform/paths.hpp"

namespace kp = kerfline::platform;
using kerfline::test::TempDir;

struct JoinCase {
  const char* base;
  const char* leaf;
  const char* expected;
};

class JoinPath : public ::testing::TestWithParam<JoinCase> {};

TEST_P(JoinPath, PutsExactlyOneSeparatorBetweenParts) {
  const JoinCase& c = GetParam();
  // The rows are written with '/'; on Windows the separator is '\\'.
  const auto native = [](const std::string& p) {
    return kp::path_separator() == '/' ? p : kp::native_separators(p);
  };
  EXPECT_EQ(native(kp::join_path(c.base, c.leaf)), native(c.expected));
}

INSTANTIATE_TEST_SUITE_P(Table, JoinPath,
                         ::testing::Values(JoinCase{"/suite", "plotman.ini", "/suite/plotman.ini"},
                                           JoinCase{"/suite/", "plotman.ini", "/suite/plotman.ini"},
                                           JoinCase{"/suite//", "/Res", "/suite/Res"},
                                           JoinCase{"/", "Res", "/Res"}, JoinCase{"", "Res", "Res"},
                                           JoinCase{"/suite/", "", "/suite/"},
                                           JoinCase{"rel", "a/b", "rel/a/b"}),
                         kerfline::test::RowIndex());

TEST(NativeSeparators, TurnsWindowsPathsIntoThisOsPaths) {
  const std::string sep(1, kp::path_separator());
  EXPECT_EQ(kp::native_separators("Lang\\GER\\kerflineGER.TRA"),
            "Lang" + sep + "GER" + sep + "kerflineGER.TRA");
  EXPECT_EQ(kp::native_separators("a/b\\c"), "a" + sep + "b" + sep + "c");
}

TEST(HomeDir, OverrideBeatsEnvironmentBeatsExecutableDir) {
  TempDir a;
  TempDir b;
  kp::set_home_dir("");
  kerfline::platform::unset_environment("KERFLINE_HOME");
  EXPECT_EQ(kp::home_dir(), kp::executable_dir());
  EXPECT_EQ(kp::home_dir().back(), kp::path_separator());

  kerfline::platform::set_environment("KERFLINE_HOME", a.path().string());
  EXPECT_EQ(kp::home_dir(), kp::native_separators(a.str()));

  const auto before = kp::home_dir_generation();
  kp::set_home_dir(b.path().string());
  EXPECT_EQ(kp::home_dir(), kp::native_separators(b.str()));
  EXPECT_GT(kp::home_dir_generation(), before);

  kp::set_home_dir("");
  EXPECT_EQ(kp::home_dir(), kp::native_separators(a.str()));
  kerfline::platform::unset_environment("KERFLINE_HOME");
}

class ResolveNoCase : public ::testing::Test {
 protected:
  void SetUp() override {
    dir.write("Lang/lang.ini", "[Default]\n");
    dir.write("lang/GER/kerflineGER.TRA", "");
    dir.write("Res/Kerfline.dlx", "");
  }
  std::string under(const std::string& rel) const {
    return kp::native_separators(dir.path().string() + "/" + rel);
  }
  TempDir dir;
};

TEST_F(ResolveNoCase, FindsEachComponentIgnoringCase) {
  if (!std::filesystem::exists(dir.path() / "lang" / "GER") ||
      !std::filesystem::exists(dir.path() / "Lang" / "lang.ini") ||
      std::filesystem::equivalent(dir.path() / "Lang", dir.path() / "lang")) {
    GTEST_SKIP() << "names that differ only in case cannot both exist on this file system";
  }
  struct Case {
    const char* asked;
    const char* found;  // nullptr: does not exist
  } cases[] = {
      // Two directories differ only in case ("Lang", "lang"): the exact spelling wins.
      {"Lang/lang.ini", "Lang/lang.ini"},
      {"lang/GER", "lang/GER"},
      {"LANG/LANG.INI", "Lang/lang.ini"},
      {"lang/GER/KERFLINEger.tra", "lang/GER/kerflineGER.TRA"},
      {"res/kerfline.dlx", "Res/Kerfline.dlx"},
      {"Res//kerfline.DLX", "Res/Kerfline.dlx"},
      {"Res", "Res"},
      {"Res/cutterx.dlx", nullptr},
      {"Nope/lang.ini", nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.asked);
    const auto got = kp::resolve_case_insensitive(under(c.asked));
    if (c.found == nullptr) {
      EXPECT_FALSE(got.has_value());
    } else {
      ASSERT_TRUE(got.has_value());
      EXPECT_EQ(*got, under(c.found));
    }
  }
}

TEST_F(ResolveNoCase, AcceptsWindowsSeparators) {
  EXPECT_EQ(*kp::resolve_case_insensitive(dir.path().string() + "\\res\\KERFLINE.dlx"),
            under("Res/Kerfline.dlx"));
}

TEST(PathExists, TellsFilesFromDirectories) {
  TempDir dir;
  dir.write("f.txt", "x");
  EXPECT_TRUE(kp::path_exists(dir.str() + "f.txt"));
  EXPECT_FALSE(kp::is_directory(dir.str() + "f.txt"));
  EXPECT_TRUE(kp::is_directory(dir.str()));
  EXPECT_FALSE(kp::path_exists(dir.str() + "g.txt"));
  EXPECT_FALSE(kp::path_exists(""));
}
