// A host's view of start-up and translation: the shared library as a program
// loads it, reached only through its C exports.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "fixtures/self_spawn.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"

namespace fs = std::filesystem;
using kerfline::test::TempDir;

namespace {

// A path the library hands out ("" when it gives none).
std::string path_of(int32_t (*get)(char*, uint32_t)) {
  char buf[4096];
  return get(buf, sizeof(buf)) > 0 ? std::string(buf) : std::string();
}
std::string home_dir() { return path_of(KerflineGetHomeDir); }
std::string help_file() { return path_of(KerflineGetHelpFile); }

// A suite as an installation lays it out: the shipped string tables and the
// sample German translation.
void install_suite(const TempDir& suite) {
  for (const char* file : {"kerfline.dlx", "cutterx.dlx", "lang/GER/kerflineGER.TRA"}) {
    // The string tables go to Res/, the translation keeps its place.
    const fs::path to =
        suite.path() / (fs::path(file).has_parent_path() ? fs::path(file) : "Res" / fs::path(file));
    fs::create_directories(to.parent_path());
    fs::copy_file(fs::path(KERFLINE_RES_DIR) / file, to);
  }
}

std::string translated(const char* text) {
  const std::unique_ptr<char, void (*)(void*)> out(TranslateDrvString(text, std::malloc), std::free);
  return out ? std::string(out.get()) : "(none)";
}

TEST(HostLanguage, HostThatSetsTheSuiteDirectoryGetsGermanToolTexts) {
  // Loaded from the test's own directory, which has no tables: the start made
  // at load failed, and the language paths point there.
  EXPECT_EQ(help_file(), home_dir() + kerfline::platform::native_separators("Lang/Ger/plotman.hlp"));

  TempDir suite;
  install_suite(suite);
  suite.write("Lang/lang.ini", "[Languages]\r\nGER=Deutsch\r\n[Default]\r\nActual=GER\r\n");
  fs::create_directories(suite.path() / "Lang/GER");
  ASSERT_EQ(KerflineSetHomeDir(suite.str().c_str()), 1);

  EXPECT_EQ(InitKerflineDll(), 1);
  // Windows has one directory for "lang" and "Lang": the one made first.
  const bool windows = kerfline::platform::path_separator() == '\\';
  EXPECT_EQ(help_file(), suite.str(windows ? "lang/GER/plotman.hlp" : "Lang/GER/plotman.hlp"));
  EXPECT_EQ(translated("Knife"), "(none)");  // not started yet
  EXPECT_GT(InitKerflineDll2(), 0);

  EXPECT_EQ(translated("Knife"), "Messer");
  EXPECT_EQ(translated("Pressure (%)"), "Druck (%)");
  EXPECT_EQ(translated("Cutting mat"), "(none)");

  char text[32] = "Drag knife";
  EXPECT_EQ(TranslateString(text, sizeof(text)), 1);
  EXPECT_STREQ(text, "Schleppmesser");
  KerflineSetHomeDir(nullptr);
}

// Started with a suite in its environment, the library read its tables when
// the program loaded it: taking them away now must not matter.
int loaded_with_suite() {
  fs::remove_all(fs::path(home_dir()) / "Res");
  return InitKerflineDll() == 1 ? 0 : 1;
}

[[maybe_unused]] const bool kChild = kerfline::test::run_role("loaded", loaded_with_suite);

TEST(HostLanguage, StartsItselfWhenLoaded) {
  TempDir suite;
  install_suite(suite);
  const auto run = [&] {
    auto child = kerfline::test::spawn_self("loaded", {{"KERFLINE_HOME", suite.path().string()}});
    return child ? kerfline::test::exit_code(*child) : -1;
  };
  EXPECT_EQ(run(), 0);
  // The same child without tables in its suite fails the check.
  fs::remove_all(suite.path() / "Res");
  EXPECT_EQ(run(), 1);
}

}  // namespace
