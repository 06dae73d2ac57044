#include <gtest/gtest.h>

#include "platform/dynlib.hpp"
#include "platform/paths.hpp"

namespace kp = kerfline::platform;

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

TEST_F(DynamicLibraryTest, LoadsByWindowsNameFromTheSuiteDirectory) {
  auto lib = kp::DynamicLibrary::open("TestPlug.dll");
  ASSERT_TRUE(lib.ok()) << lib.error().message;
  auto* answer = lib->function<int(int)>("TestPlugAnswer");
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer(20), 41);
  EXPECT_EQ(lib->path(),
            kp::join_path(kp::native_separators(KERFLINE_TEST_PLUGIN_DIR), KERFLINE_TEST_PLUGIN_FILE));
}

TEST_F(DynamicLibraryTest, MissingSymbolIsNull) {
  auto lib = kp::DynamicLibrary::open("testplug.dll");
  ASSERT_TRUE(lib.ok());
  EXPECT_EQ(lib->symbol("DelaunayInit"), nullptr);
  EXPECT_EQ(lib->symbol(nullptr), nullptr);
}

TEST_F(DynamicLibraryTest, AbsentLibraryNamesWhatWasTried) {
  auto lib = kp::DynamicLibrary::open("nosuchvendor.dll");
  ASSERT_FALSE(lib.ok());
  for (const auto& name : kp::library_file_candidates("nosuchvendor.dll")) {
    EXPECT_NE(lib.error().message.find(name), std::string::npos) << name;
  }
  EXPECT_FALSE(kp::DynamicLibrary::open("").ok());
}

TEST_F(DynamicLibraryTest, AFileThatIsNoLibraryReportsTheLoaderError) {
  auto lib = kp::DynamicLibrary::open(std::string(__FILE__));
  ASSERT_FALSE(lib.ok());
  EXPECT_FALSE(lib.error().message.empty());
}

// Vendor libraries without names export by ordinal; elsewhere the documented
// name stands in. Either way the same function must come back.
TEST_F(DynamicLibraryTest, OrdinalFindsTheSameFunctionAsItsName) {
  auto lib = kp::DynamicLibrary::open("testplug.dll");
  ASSERT_TRUE(lib.ok()) << lib.error().message;
  void* by_name = lib->symbol("TestPlugAnswer");
  ASSERT_NE(by_name, nullptr);
  EXPECT_EQ(lib->symbol_by_ordinal(7, "TestPlugAnswer"), by_name);
  EXPECT_EQ(lib->symbol_by_ordinal(0, "NoSuchExport"), nullptr);
  EXPECT_EQ(lib->symbol_by_ordinal(4000, "NoSuchExport"), nullptr);
}
