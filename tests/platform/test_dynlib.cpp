#include <gtest/gtest.h>

#include "platform/dynlib.hpp"
#include "platform/paths.hpp"

namespace kp = kerfline::platform;

TEST(LibraryCandidates, MapWindowsNamesToSharedObjects) {
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
  EXPECT_EQ(lib->path(), kp::join_path(KERFLINE_TEST_PLUGIN_DIR, "libtestplug.so"));
}

// The suite directory is elsewhere; the plug-in sits beside the code that
// loads it.
TEST_F(DynamicLibraryTest, LoadsAPlugInBesideTheLibraryFirst) {
  EXPECT_EQ(kp::module_dir() + "/", kp::executable_dir());
  auto lib = kp::DynamicLibrary::open("BesidePlug.dll");
  ASSERT_TRUE(lib.ok()) << lib.error().message;
  EXPECT_EQ(lib->path(), kp::join_path(kp::module_dir(), "libbesideplug.so"));
  ASSERT_NE(lib->function<int(int)>("TestPlugAnswer"), nullptr);
  EXPECT_EQ(lib->function<int(int)>("TestPlugAnswer")(1), 3);
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
  EXPECT_NE(lib.error().message.find("nosuchvendor.so"), std::string::npos);
  EXPECT_NE(lib.error().message.find("libnosuchvendor.so"), std::string::npos);
  EXPECT_FALSE(kp::DynamicLibrary::open("").ok());
}

TEST_F(DynamicLibraryTest, AFileThatIsNoLibraryReportsTheLoaderError) {
  auto lib = kp::DynamicLibrary::open(std::string(__FILE__));
  ASSERT_FALSE(lib.ok());
  EXPECT_FALSE(lib.error().message.empty());
}
