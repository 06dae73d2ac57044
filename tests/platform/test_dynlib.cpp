#include <gtest/gtest.h>

#include <filesystem>

#include "fixtures/temp_dir.hpp"

#include "platform/dynlib.hpp"
#include "platform/paths.hpp"

namespace kp = kerfline::platform;
using kerfline::test::TempDir;

TEST(LibraryCandidates, MapWindowsNamesToSharedObjects) {
  if (kp::path_separator() == '\\') {
    EXPECT_EQ(kp::library_file_candidates("GITKUSBP.DLL"), (std::vector<std::string>{"GITKUSBP.DLL"}));
    GTEST_SKIP() << "Windows loads a library by the name as given";
  }
  EXPECT_EQ(kp::library_file_candidates("ocv.dll"), (std::vector<std::string>{"ocv.so", "libocv.so"}));
  EXPECT_EQ(kp::library_file_candidates("GITKUSBP.DLL"),
            (std::vector<std::string>{"GITKUSBP.so", "libGITKUSBP.so", "gitkusbp.so", "libgitkusbp.so"}));
  EXPECT_EQ(kp::library_file_candidates("rdg77001"),
            (std::vector<std::string>{"rdg77001.so", "librdg77001.so"}));
}

class DynamicLibraryTest : public ::testing::Test {
 protected:
  void SetUp() override { kp::set_home_dir(KERFLINE_TEST_PLUGIN_DIR); }
  void TearDown() override { kp::set_home_dir(""); }
};

// The suite directory is elsewhere; the plug-in sits beside the code that
// loads it.
TEST_F(DynamicLibraryTest, LoadsAPlugInBesideTheLibraryFirst) {
  auto lib = kp::DynamicLibrary::open("BesidePlug.dll");
  ASSERT_TRUE(lib.ok()) << lib.error().message;
  EXPECT_EQ(lib->path(), kp::join_path(kp::library_dir(), KERFLINE_TEST_BESIDE_FILE));
  ASSERT_NE(lib->function<int(int)>("TestPlugAnswer"), nullptr);
  EXPECT_EQ(lib->function<int(int)>("TestPlugAnswer")(1), 3);
}

TEST_F(DynamicLibraryTest, FailuresSayWhyAndAbsentOnesNameWhatWasTried) {
  auto lib = kp::DynamicLibrary::open("nosuchvendor.dll");
  ASSERT_FALSE(lib.ok());
  for (const auto& name : kp::library_file_candidates("nosuchvendor.dll")) {
    EXPECT_NE(lib.error().message.find(name), std::string::npos) << name;
  }
  EXPECT_FALSE(kp::DynamicLibrary::open("").ok());
  auto not_a_library = kp::DynamicLibrary::open(std::string(__FILE__));
  ASSERT_FALSE(not_a_library.ok());
  EXPECT_FALSE(not_a_library.error().message.empty()) << "the loader's error";
}

// Installed plug-ins lie in kerfline/plugins/ beside the code that loads them:
// here the test program itself, which has the platform layer linked in.
class InstalledPluginTest : public ::testing::Test {
 protected:
  void SetUp() override {
    kp::set_home_dir(suite.path().string());
    std::filesystem::remove_all(installed_root());
  }
  void TearDown() override {
    kp::set_home_dir("");
    std::filesystem::remove_all(installed_root());
  }
  static std::filesystem::path installed_root() {
    return std::filesystem::path(kp::library_dir()) / "kerfline";
  }
  static void put(const std::filesystem::path& dir) {
    std::filesystem::create_directories(dir);
    std::filesystem::copy_file(std::filesystem::path(KERFLINE_TEST_PLUGIN_DIR) / KERFLINE_TEST_PLUGIN_FILE,
                               dir / KERFLINE_TEST_PLUGIN_FILE);
  }
  TempDir suite;
};

TEST_F(InstalledPluginTest, SuiteCopyWinsOverTheInstalledOne) {
  struct Case {
    bool in_suite;
    bool installed;
    const char* found_in;  // "suite", "installed", or null: not loaded from either
  } cases[] = {
      {true, true, "suite"}, {false, true, "installed"}, {true, false, "suite"}, {false, false, nullptr}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.in_suite ? "suite " : "") + (c.installed ? "installed" : ""));
    std::filesystem::remove_all(installed_root());
    std::filesystem::remove(suite.path() / KERFLINE_TEST_PLUGIN_FILE);
    if (c.in_suite) put(suite.path());
    if (c.installed) put(installed_root() / "plugins");
    EXPECT_EQ(kp::plugin_dir().empty(), !c.installed);
    auto lib = kp::DynamicLibrary::open("TestPlug.dll");  // found by its lower-case file name
    if (c.found_in == nullptr) {
      // The default search path does not hold the test plug-in.
      EXPECT_FALSE(lib.ok());
      continue;
    }
    ASSERT_TRUE(lib.ok()) << lib.error().message;
    const std::filesystem::path dir =
        std::string(c.found_in) == "suite" ? suite.path() : installed_root() / "plugins";
    EXPECT_EQ(lib->path(), kp::join_path(dir.string(), KERFLINE_TEST_PLUGIN_FILE));
    ASSERT_NE(lib->function<int(int)>("TestPlugAnswer"), nullptr);
    EXPECT_EQ(lib->function<int(int)>("TestPlugAnswer")(20), 41);
  }
}

// Vendor libraries without names export by ordinal; elsewhere the documented
// name stands in. Either way the same function must come back.
TEST_F(DynamicLibraryTest, OrdinalFindsTheSameFunctionAsItsNameAndMissingOnesAreNull) {
  auto lib = kp::DynamicLibrary::open("testplug.dll");
  ASSERT_TRUE(lib.ok()) << lib.error().message;
  void* by_name = lib->symbol("TestPlugAnswer");
  ASSERT_NE(by_name, nullptr);
  EXPECT_EQ(lib->symbol_by_ordinal(7, "TestPlugAnswer"), by_name);
  EXPECT_EQ(lib->symbol_by_ordinal(0, "NoSuchExport"), nullptr);
  EXPECT_EQ(lib->symbol_by_ordinal(4000, "NoSuchExport"), nullptr);
  EXPECT_EQ(lib->symbol("DelaunayInit"), nullptr);
  EXPECT_EQ(lib->symbol(nullptr), nullptr);
}
