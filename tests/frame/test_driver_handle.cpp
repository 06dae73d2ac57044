#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "fixtures/host_recorder.hpp"
#include "fixtures/temp_dir.hpp"
#include "frame/driver_handle.hpp"
#include "kerfline/kerfline.h"
#include "platform/os_error.hpp"
#include "sample_driver.hpp"

namespace drv = kerfline::driver;
using kerfline::frame::document_of;
using kerfline::test::all_zero;
using kerfline::test::HostRecorder;
using kerfline::test::named;
using kerfline::test::record_for;
using kerfline::test::TempDir;
using kerfline::test::write_driver;

namespace {

class DriverHandle : public ::testing::Test {
 protected:
  std::string sample() {
    return write_driver(dir, "sample.drv", [](drv::CVm6Drv& doc) {
      doc.Root().AddChild(named("%DriverName%", "Sample Cutter"));
      doc.Root().AddChild(named("%Speed%", "40"));
    });
  }
  TempDir dir;
  HostRecorder host;
};

}  // namespace

TEST_F(DriverHandle, OpenChangeStoreFreeAndReopen) {
  VMV6DRV drv = record_for(sample(), 1);
  ASSERT_EQ(InitDrv(&drv), 1);
  drv::CVm6Drv* doc = document_of(&drv);
  ASSERT_NE(doc, nullptr);
  EXPECT_TRUE(doc->AppMode);
  EXPECT_EQ(doc->PendingState, 0u);
  ASSERT_NE(doc->FindItem("%Speed%"), nullptr);
  EXPECT_EQ(doc->FindItem("%Speed%")->GetValue(), "40");

  doc->FindItem("%Speed%")->SetValue("75");
  doc->Root().AddChild(named("%Added%", "yes"));
  EXPECT_EQ(StoreDrv(&drv), 1);
  EXPECT_EQ(FreeDrv(&drv), 1);
  EXPECT_EQ(drv.pDrv, nullptr);
  EXPECT_STREQ(drv.szFileName, (dir.str() + "sample.drv").c_str()) << "the file name stays";

  ASSERT_EQ(InitDrv(&drv), 1);
  EXPECT_EQ(document_of(&drv)->FindItem("%Speed%")->GetValue(), "75");
  ASSERT_NE(document_of(&drv)->FindItem("%Added%"), nullptr);
  EXPECT_EQ(FreeDrv(&drv), 1);
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(DriverHandle, ApplicationModeZeroOpensInLibraryMode) {
  VMV6DRV drv = record_for(sample(), 0);
  ASSERT_EQ(InitDrv(&drv), 1);
  EXPECT_FALSE(document_of(&drv)->AppMode);
  EXPECT_EQ(FreeDrv(&drv), 1);

  drv.nAppMode = 7;
  ASSERT_EQ(InitDrvS(&drv), 1);
  EXPECT_TRUE(document_of(&drv)->AppMode);
  EXPECT_EQ(SetDllMode(&drv), 1);
  EXPECT_FALSE(document_of(&drv)->AppMode);
  EXPECT_EQ(FreeDrv(&drv), 1);
}

// A missing file is shown; InitDrv clears the record, InitDrvS leaves it as it was.
TEST_F(DriverHandle, MissingFileIsShownAndFailsTheRecord) {
  const std::string path = dir.str() + "absent.drv";
  VMV6DRV drv = record_for(path, 1);
  EXPECT_EQ(InitDrv(&drv), -4);
  EXPECT_TRUE(all_zero(&drv, sizeof drv));
  drv = record_for(path, 3);
  drv.pDrv = &drv;
  const VMV6DRV before = drv;
  EXPECT_EQ(InitDrvS(&drv), -4);
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): every byte, padding included, stays as it was
  EXPECT_EQ(std::memcmp(&drv, &before, sizeof(drv)), 0);
  ASSERT_EQ(host.boxes.size(), 2u);
  EXPECT_EQ(host.boxes[0].caption + "|" + host.boxes[0].text,
            "Kerfline error:|Can not open driver:\n" + path + "\n\nCode = (2)\n\n" +
                kerfline::platform::os_error(2, "").message);
}

TEST_F(DriverHandle, UnreadableFilesFailWithoutABoxForTheContents) {
  using namespace std::string_literals;
  for (const std::string& bytes : {""s, "VM6DRV"s, "not a driver at all"s, "VM6DRV\0\0\xff\xff"s}) {
    VMV6DRV drv = record_for(dir.write("broken.drv", bytes).string(), 1);
    EXPECT_EQ(InitDrv(&drv), -4) << bytes;
    EXPECT_TRUE(all_zero(&drv, sizeof drv)) << bytes;
  }
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(DriverHandle, BadRecordsAreRefusedWithoutChange) {
  VMV6DRV empty{};
  std::memset(&empty, 0x5A, sizeof(empty));
  empty.szFileName[0] = '\0';
  const VMV6DRV before = empty;
  EXPECT_EQ(InitDrv(&empty), -2);
  EXPECT_EQ(InitDrvS(&empty), -2);
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): every byte, padding included, stays as it was
  EXPECT_EQ(std::memcmp(&empty, &before, sizeof(empty)), 0);

  VMV6DRV closed = record_for(sample());
  ASSERT_EQ(InitDrv(&closed), 1);
  void* freed = closed.pDrv;
  ASSERT_EQ(FreeDrv(&closed), 1);
  for (void* gone : std::initializer_list<void*>{nullptr, freed, &closed}) {  // closed, stale copy, forged
    closed.pDrv = gone;
    EXPECT_EQ(FreeDrv(&closed), -2);
    EXPECT_EQ(StoreDrv(&closed), -2);
    EXPECT_EQ(SetDllMode(&closed), -2);
  }
  EXPECT_TRUE(host.boxes.empty());
}

TEST_F(DriverHandle, FreeDrvNeedsTheFileNameAndKeepsTheDocumentWithout) {
  VMV6DRV drv = record_for(sample());
  ASSERT_EQ(InitDrv(&drv), 1);
  void* doc = drv.pDrv;
  drv.szFileName[0] = '\0';
  EXPECT_EQ(FreeDrv(&drv), -2);
  EXPECT_EQ(StoreDrv(&drv), -2);
  EXPECT_EQ(drv.pDrv, doc);
  drv.szFileName[0] = '/';
  EXPECT_EQ(FreeDrv(&drv), 1);
}

TEST_F(DriverHandle, InitDrvQuickCreatesAnEmptyDocumentWithoutReading) {
  VMV6DRV drv = record_for(dir.str() + "never-read.drv", 0);
  ASSERT_EQ(InitDrvQuick(&drv), 1);
  ASSERT_NE(document_of(&drv), nullptr);
  EXPECT_FALSE(document_of(&drv)->AppMode);
  EXPECT_TRUE(document_of(&drv)->Root().GetChildren().empty());
  EXPECT_TRUE(host.boxes.empty());

  document_of(&drv)->Root().AddChild(named("%DriverName%", "Fresh"));  // stored, then opened
  EXPECT_EQ(StoreDrv(&drv), 1);
  EXPECT_EQ(FreeDrv(&drv), 1);
  ASSERT_EQ(InitDrv(&drv), 1);
  EXPECT_EQ(document_of(&drv)->Title, "Fresh");
  EXPECT_EQ(FreeDrv(&drv), 1);

  VMV6DRV nameless{};
  ASSERT_EQ(InitDrvQuick(&nameless), 1);
  delete document_of(&nameless);  // FreeDrv refuses a record without a file name
}

TEST_F(DriverHandle, FailedStoreIsShownButReportsSuccess) {
  VMV6DRV drv = record_for(dir.str() + "no-such-dir/driver.drv");
  ASSERT_EQ(InitDrvQuick(&drv), 1);
  EXPECT_EQ(StoreDrv(&drv), 1);
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0].text.rfind("Can not write driver:\n" + dir.str() + "no-such-dir/driver.drv", 0),
            0u);
  EXPECT_EQ(FreeDrv(&drv), 1);
}
