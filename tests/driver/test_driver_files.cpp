#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>

#include "driver/vm6drv.hpp"
#include "driver_samples.hpp"
#include "fixtures/host_recorder.hpp"
#include "fixtures/temp_dir.hpp"
#include "platform/os_error.hpp"

namespace drv = kerfline::driver;
namespace fs = std::filesystem;
using kerfline::test::named;
using kerfline::test::sample_lookup;

namespace {

std::string base_driver() {
  return kerfline::test::driver_bytes([](drv::CVm6Drv& doc) {
    auto group = named<drv::CDrvItemList>("%G%", "base group");
    group->AddChild(named<drv::CDrvItemDlgVar>("%Dlg%", "base dialog"));
    doc.Root().AddChild(named<drv::CDrvItem>("%Speed%", "50"));
    doc.Root().AddChild(group);
  });
}

// A driver that builds on `base_name` and links %Speed%, %G% and %Dlg%.
std::string derived_driver(const std::string& base_name) {
  const auto linked = [](auto item) {
    item->Linked = 1;
    return item;
  };
  return kerfline::test::driver_bytes([&](drv::CVm6Drv& doc) {
    doc.BaseDriverFlag = 1;
    auto group = linked(named<drv::CDrvItemList>("%G%", "own group"));
    group->AddChild(linked(named<drv::CDrvItemDlgVar>("%Dlg%", "own dialog")));
    doc.Root().AddChild(linked(named<drv::CDrvItem>("%BaseDrv%", base_name)));
    doc.Root().AddChild(linked(named<drv::CDrvItem>("%Speed%", "stale")));
    doc.Root().AddChild(group);
    doc.Root().AddChild(named<drv::CDrvItem>("%Local%", "mine"));
  });
}

// A missing or self-named base is no error: the items keep their own values.
TEST(BaseDriver, LinkedItemsReportTheBaseDriversValuesWhenThereIsOne) {
  kerfline::test::HostRecorder host;
  kerfline::test::TempDir dir;
  dir.write("sub/base.vmd", base_driver());
  for (const std::string base : {"sub\\base.vmd", "absent.vmd", "", "self.vmd", "."}) {
    const auto path = dir.write("self.vmd", derived_driver(base));
    drv::CVm6Drv doc(sample_lookup());
    ASSERT_TRUE(doc.LoadDriver(path.string())) << base << ": " << doc.LastError();
    const bool found = base == "sub\\base.vmd";
    std::string values = std::to_string(doc.FindItem("%BaseDrv%")->Linked);
    for (const char* name : {"%Speed%", "%G%", "%Dlg%", "%Local%"})
      values += "|" + doc.FindItem(name)->GetValue();
    EXPECT_EQ(values, found ? "0|50|base group|base dialog|mine" : "0|stale|own group|own dialog|mine")
        << base;
  }
  EXPECT_TRUE(host.boxes.empty());
}

TEST(LoadDriver, AFileThatCannotBeOpenedIsShownAndKeepsTheDocument) {
  kerfline::test::HostRecorder host;
  kerfline::test::TempDir dir;
  const std::string path = (dir.path() / "missing.vmd").string();
  drv::CVm6Drv doc(sample_lookup());
  doc.Root().AddChild(named<drv::CDrvItem>("%A%", "1"));
  EXPECT_FALSE(doc.LoadDriver(path));
  EXPECT_EQ(doc.Path, path);
  EXPECT_NE(doc.Root().FindChild("%A%"), nullptr);
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0].caption + "|" + host.boxes[0].text,  // the system's own text
            "Kerfline error:|Can not open driver:\n" + path + "\n\nCode = (2)\n\n" +
                kerfline::platform::os_error(2, "").message);
}

TEST(LoadDriver, BrokenAndLegacyFilesFailQuietlyWithAReason) {
  kerfline::test::HostRecorder host;
  kerfline::test::TempDir dir;
  const std::tuple<const char*, std::string, const char*> files[] = {
      // name, contents, reason
      {"legacy.vdv", std::string(10209, '\0'), "legacy"},
      {"empty.vmd", "", "legacy"},
      {"cut.vmd", std::string("\x06VM6DRV\x00", 8), "invalid driver file"}};
  for (const auto& [name, contents, reason] : files) {
    drv::CVm6Drv doc(sample_lookup());
    EXPECT_FALSE(doc.LoadDriver(dir.write(name, contents).string())) << name;
    EXPECT_NE(doc.LastError().find(reason), std::string::npos) << doc.LastError();
  }
  EXPECT_TRUE(host.boxes.empty());
}

TEST(ReadDriverTitle, ReadsOnlyTheTitle) {
  kerfline::test::TempDir dir;
  const std::tuple<const char*, std::string, bool, const char*> files[] = {
      // name, contents, read, title
      {"plain.vmd", std::string("\x06VM6DRV\x05Title", 13), true, "Title"},
      {"ext.vmd", std::string("\x07VM6DRV$\x02xy\x01n\003Abc", 17), true, "Abc"},
      {"ext-dword.vmd", kerfline::test::driver_bytes([](drv::CVm6Drv& d) {
         d.Header = {true, "enc", "note", true};
         d.Title = "With dword";
       }),
       true, "With dword"},
      {"other.vmd", std::string("\x06VM7DRV\x05Title", 13), false, ""},
      {"short.vmd", std::string("\x06VM6DRV\x05Ti", 10), false, ""},
  };
  for (const auto& [name, contents, ok, expected] : files) {
    std::string title = "untouched";
    EXPECT_EQ(drv::CVm6Drv::ReadDriverTitle(dir.write(name, contents).string(), title), ok) << name;
    EXPECT_EQ(title, ok ? expected : "untouched") << name;
  }
  std::string title = "untouched";
  EXPECT_FALSE(drv::CVm6Drv::ReadDriverTitle((dir.path() / "none.vmd").string(), title));
  EXPECT_EQ(title, "untouched");
}

TEST(StoreDriver, ReplacesTheFileWholeOrLeavesWhatWasThere) {
  kerfline::test::HostRecorder host;
  kerfline::test::TempDir dir;
  const auto path = dir.write("d.vmd", "old contents");
  dir.write("busy.vmd/keep", "x");  // a directory where the file should go
  drv::CVm6Drv doc(sample_lookup());
  kerfline::test::fill_sample_document(doc);
  doc.WriteToBytes();  // the root group completes its cut instructions
  ASSERT_TRUE(doc.StoreDriver(path.string()));
  EXPECT_TRUE(dir.read("d.vmd") == doc.WriteToBytes());
  EXPECT_TRUE(host.boxes.empty());
  const std::string busy = (dir.path() / "busy.vmd").string();
  EXPECT_FALSE(doc.StoreDriver(busy));
  EXPECT_FALSE(doc.StoreDriver((dir.path() / "no-such-dir" / "d.vmd").string()));
  EXPECT_EQ(dir.read("busy.vmd/keep"), "x");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 2)
      << "no temporary file is left";
  ASSERT_EQ(host.boxes.size(), 2u);
  EXPECT_EQ(host.boxes[0].caption, "Kerfline error:");
  EXPECT_EQ(host.boxes[0].text.rfind("Can not write driver:\n" + busy + "\n\nCode = (", 0), 0u);
}

}  // namespace
