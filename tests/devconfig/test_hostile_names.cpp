// Device names and planted links that try to make the library create or
// delete something outside SPOOLER/SL_*.
#include <cstring>
#include <filesystem>
#include <set>

#include "devconfig/suite_fixture.hpp"
#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "kerfline/device_settings.hpp"
#include "kerfline/kerfline.h"

namespace {

namespace fs = std::filesystem;
using kerfline::test::TempDir;
const bool kWindows = kerfline::platform::path_separator() == '\\';
// Wine makes no junction or symbolic link (CreateSymbolicLinkA creates nothing,
// FSCTL_SET_REPARSE_POINT and mklink fail), nor does mingw's libstdc++.
constexpr const char* kNoLinks = "no way to plant a junction or symbolic link here";

// Every path below root, except those below the spool directories.
std::set<std::string> tree_outside_spool(const fs::path& root) {
  std::set<std::string> seen;
  for (auto it = fs::recursive_directory_iterator(root); it != fs::recursive_directory_iterator(); ++it) {
    const std::string rel = fs::relative(it->path(), root).generic_string();
    if (rel.rfind("suite/SPOOLER/SL_", 0) == 0) {
      it.disable_recursion_pending();
      continue;
    }
    if (rel != "suite/plotman.ini") seen.insert(rel);  // the one file outside the spool a device may change
  }
  return seen;
}

// Adds (a port) or removes (none) the device.
int32_t write_device(const std::string& name, const std::string& port) {
  const CUTDEVICE d = kerfline::test::record(name, port);
  return WriteCutDevice(&d);
}

// The suite lives in <root>/suite, with victims beside and above it.
class Hostile : public ::testing::Test {
 protected:
  Hostile() {
    root_.write("victim/keep.txt", "precious");
    root_.write("suite/keep.txt", "precious");
    root_.write("suite/SPOOLER/keep.txt", "precious");
    kerfline::platform::set_home_dir((root_.path() / "suite").string() + "/");
  }
  ~Hostile() override { kerfline::platform::set_home_dir(""); }
  [[nodiscard]] fs::path suite() const { return root_.path() / "suite"; }

  TempDir root_;
  kerfline::test::HostRecorder host_;
};

const char* const kHostileNames[] = {
    "..", "../..", "../victim", "../../victim", "/",     "/tmp",     "\\..\\..",     "SPOOLER/../..",
    ".",  "...",   "a/b",       "C:\\victim",   "a[..]", "\xE4/../", "SL_/../../..", "*",
    "~",  "con",
};

class HostileNames : public Hostile, public ::testing::WithParamInterface<const char*> {};

TEST_P(HostileNames, AddAndRemoveStayInsideTheSpoolRoot) {
  const auto before = tree_outside_spool(root_.path());
  EXPECT_EQ(write_device(GetParam(), "/dev/null"), 1);
  EXPECT_EQ(tree_outside_spool(root_.path()), before);
  // Everything made is one directory directly below SPOOLER (none for a name Windows forbids).
  std::size_t spool_dirs = 0;
  for (const auto& e : fs::directory_iterator(suite() / "SPOOLER")) {
    if (e.is_directory()) {
      ++spool_dirs;
      EXPECT_EQ(e.path().filename().string().rfind("SL_", 0), 0u);
    }
  }
  EXPECT_EQ(spool_dirs, kWindows && std::strpbrk(GetParam(), "*?\"<>|") != nullptr ? 0u : 1u);

  EXPECT_EQ(write_device(GetParam(), ""), 1);
  EXPECT_EQ(tree_outside_spool(root_.path()), before);
  CBaseDeviceSettings().DeleteDir(GetParam());
  EXPECT_EQ(tree_outside_spool(root_.path()).count("victim/keep.txt"), 1u);
}

INSTANTIATE_TEST_SUITE_P(Names, HostileNames, ::testing::ValuesIn(kHostileNames), kerfline::test::RowIndex());

const char* const kUnusableNames[] = {"a\nb", "a=b", "[x]", ";x", " x", "x ", "\x7F", "a\rb"};

class UnusableNames : public Hostile, public ::testing::WithParamInterface<const char*> {};

TEST_P(UnusableNames, ChangeNothing) {
  EXPECT_EQ(write_device(GetParam(), "/dev/null"), 0);
  EXPECT_FALSE(fs::exists(suite() / "plotman.ini"));
  EXPECT_TRUE(host_.broadcasts.empty());
}

INSTANTIATE_TEST_SUITE_P(Names, UnusableNames, ::testing::ValuesIn(kUnusableNames),
                         kerfline::test::RowIndex());

TEST_F(Hostile, UnterminatedFieldsAreCutAtTheirWidth) {
  CUTDEVICE d;
  std::memset(&d, 'A', sizeof d);
  EXPECT_EQ(WriteCutDevice(&d), 1);
  const std::string name(sizeof d.szName, 'A');
  EXPECT_EQ(kerfline::platform::ini::read_string(name, "DevOut", "", (suite() / "plotman.ini").string()),
            std::string(sizeof d.szPort, 'A'));
}

TEST_F(Hostile, LinkedSpoolDirectoryIsNeitherFilledNorEmptied) {
  if (kWindows) GTEST_SKIP() << kNoLinks;
  fs::create_directory_symlink(root_.path() / "victim", suite() / "SPOOLER" / "SL_EVIL");
  write_device("evil", "/dev/null");
  EXPECT_FALSE(fs::exists(root_.path() / "victim" / "saved"));
  EXPECT_FALSE(fs::exists(root_.path() / "victim" / "index.hot"));
  write_device("evil", "");
  EXPECT_TRUE(fs::exists(root_.path() / "victim" / "keep.txt"));
  EXPECT_TRUE(fs::is_symlink(suite() / "SPOOLER" / "SL_EVIL"));
}

TEST_F(Hostile, LinksInsideTheSpoolAreRemovedNotFollowed) {
  if (kWindows) GTEST_SKIP() << kNoLinks;
  write_device("dev", "/dev/null");
  const fs::path spool = suite() / "SPOOLER" / "SL_DEV";
  fs::create_symlink(root_.path() / "victim" / "keep.txt", spool / "job.plt");
  fs::create_directory_symlink(root_.path() / "victim", spool / "other");
  fs::remove_all(spool / "saved");
  fs::create_directory_symlink(root_.path() / "victim", spool / "saved");
  write_device("dev", "");
  EXPECT_TRUE(fs::exists(root_.path() / "victim" / "keep.txt"));
  // The planted "saved" link stops the removal: it is reported, not followed.
  EXPECT_TRUE(fs::is_symlink(spool / "saved"));
}

TEST_F(Hostile, ForeignSubdirectoriesKeepTheSpoolDirectory) {
  write_device("dev", "/dev/null");
  const fs::path spool = suite() / "SPOOLER" / "SL_DEV";
  root_.write("suite/SPOOLER/SL_DEV/user/notes.txt", "mine");
  root_.write("suite/SPOOLER/SL_DEV/saved/old.plt", "PU;");
  write_device("dev", "");
  EXPECT_TRUE(fs::exists(spool / "user" / "notes.txt"));
  EXPECT_FALSE(fs::exists(spool / "saved"));
  EXPECT_FALSE(fs::exists(spool / "index.hot"));
}

}  // namespace
