// The exported functions as a host calls them, with the device's settings
// in a real "plotman.ini", and the vendor bridges against fake libraries.
#include <gtest/gtest.h>
#ifndef _WIN32
#  include <termios.h>
#endif

#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "platform/environment.hpp"
#include "port_fixture.hpp"

namespace dev = kerfline::device;
namespace port = kerfline::platform::port;
using kerfline::platform::set_environment;
using kerfline::test::DriverVars;
using kerfline::test::HostRecorder;
using kerfline::test::Line;
using kerfline::test::open_descriptors;
using kerfline::test::RowIndex;
using kerfline::test::TempDir;
using namespace std::chrono_literals;

namespace {

class Exports : public ::testing::Test {
 protected:
  Exports() { kerfline::platform::set_home_dir(dir.str()); }
  ~Exports() override { kerfline::platform::set_home_dir(""); }
  void device(const std::string& port_type, const std::string& out) {
    dir.write("plotman.ini",
              "[Cutter]\r\nDevType=2\r\nDevPortType=" + port_type + "\r\nDevOut=" + out + "\r\n");
  }
  TempDir dir;
  HostRecorder host;
  DriverVars vars{{}};
};

TEST_F(Exports, ConnectWriteAndCloseALine) {
  const int before = open_descriptors();
  {
    Line line;
    device("2", line.path());
    dir.write("win.ini", "[ports]\r\n" + line.path() + ":=19200,n,8,1,x\r\n");
    void* read = KERFLINE_INVALID_DEVICE_HANDLE;
    void* write = KERFLINE_INVALID_DEVICE_HANDLE;
    EXPECT_EQ(ConnectToDevice(vars.drv(), "Cutter", &read, &write), 1);
    ASSERT_NE(read, KERFLINE_INVALID_DEVICE_HANDLE);
    EXPECT_EQ(read, write);
#ifndef _WIN32  // a pipe, Windows' line, has no line settings
    termios t{};
    ASSERT_EQ(::tcgetattr(static_cast<int>(reinterpret_cast<intptr_t>(read)), &t), 0);
    EXPECT_EQ(::cfgetospeed(&t), B19200);
    EXPECT_NE(t.c_iflag & IXON, 0u);
#endif
    line.serve();
    const char plot[] = "IN;PU0,0;PD100,100;OS;";
    EXPECT_EQ(WriteToDevice(&write, plot, sizeof plot - 1), 1);
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(CloseDevice(&read, &write), 1);
    EXPECT_EQ(line.stop(), plot);
  }
  EXPECT_EQ(open_descriptors(), before);
}

struct WriteStringRow {
  const char* port_type;
  bool file_exists;
  int32_t result;
  const char* written;
};
class WriteString : public Exports, public ::testing::WithParamInterface<WriteStringRow> {};

TEST_P(WriteString, WritesOnceOrReportsNothingOpened) {
  const WriteStringRow& row = GetParam();
  const std::string out = dir.str() + "out.plt";
  if (row.file_exists) dir.write("out.plt", "");
  device(row.port_type, out);
  const int before = open_descriptors();
  EXPECT_EQ(DeviceWriteString(vars.drv(), "Cutter", "PU0,0;"), row.result);
  EXPECT_EQ(dir.read("out.plt"), row.written);
  EXPECT_EQ(open_descriptors(), before);
  EXPECT_EQ(host.cursor_changes, (std::vector<int>{1, 0}));
}
INSTANTIATE_TEST_SUITE_P(Table, WriteString,
                         ::testing::Values(WriteStringRow{"2", true, 1, "PU0,0;"},
                                           WriteStringRow{"2", false, 0, ""},
                                           WriteStringRow{"3", true, 0, ""}, WriteStringRow{"0", true, 0, ""},
                                           WriteStringRow{"9", true, 0, ""}),
                         RowIndex());

TEST_F(Exports, WriteAndCloseIgnoreNullAndInvalidHandles) {
  void* null_handle = nullptr;
  void* invalid = KERFLINE_INVALID_DEVICE_HANDLE;
  EXPECT_EQ(WriteToDevice(&null_handle, "x", 1), 1);
  EXPECT_EQ(WriteToDevice(&invalid, "x", 1), 1);
  EXPECT_EQ(WriteToDevice(nullptr, "x", 1), 1);
  EXPECT_EQ(CloseDevice(&null_handle, &invalid), 1);
  EXPECT_EQ(CloseDevice(nullptr, nullptr), 1);
}

// Vendor libraries, by their Windows names, from the suite directory.
class Vendors : public Exports {
 protected:
  void install(const std::string& lib) {
    const std::string file = std::string(KERFLINE_FAKE_VENDOR_PREFIX) + lib + KERFLINE_FAKE_VENDOR_SUFFIX;
    std::filesystem::copy_file(std::string(KERFLINE_FAKE_VENDOR_DIR) + "/" + file, dir.path() / file);
    set_environment("FAKE_VENDOR_LOG", dir.str() + "calls.log");
    dev::set_wait_function([this](std::uint32_t ms) { waits.push_back(ms); });
  }
  ~Vendors() override { dev::set_wait_function(nullptr); }
  std::vector<std::uint32_t> waits;
};

TEST_F(Vendors, MissingLibrariesGiveNothing) {
  EXPECT_EQ(dev::UsbApiQuery("OS;"), std::nullopt);
  EXPECT_EQ(dev::RdgQuery("GX-24", "OS;"), std::nullopt);
  EXPECT_EQ(dev::SlotRead("GX-24"), std::nullopt);
}

TEST_F(Vendors, UsbApiSendsTheTerminatorAndReadsWhatWasAnnounced) {
  install("usbapi");
  set_environment("FAKE_VENDOR_ANSWER", "1,2,3");
  EXPECT_EQ(dev::UsbApiQuery("OS;"), "1,2,3");
  EXPECT_EQ(dir.read("calls.log"), "42 write OS; length 4\n42 close\n");
  EXPECT_EQ(waits, (std::vector<std::uint32_t>{100, 100}));
  set_environment("FAKE_VENDOR_ANNOUNCE", "0");  // announces less than it sends: no overrun
  set_environment("FAKE_VENDOR_ANSWER", std::string(5000, 'z'));
  EXPECT_EQ(dev::UsbApiQuery("OS;"), std::string(1024, 'z'));
}

struct RdgRow {
  const char* device;
  int fails;
  int empty;
  std::optional<std::string> expected;
  std::size_t reads;
};
class RdgBridge : public Vendors, public ::testing::WithParamInterface<RdgRow> {};
TEST_P(RdgBridge, CountsOnlyFailedReads) {
  const RdgRow& row = GetParam();
  install("rdg77001");
  set_environment("FAKE_VENDOR_FAILS", std::to_string(row.fails));
  set_environment("FAKE_VENDOR_EMPTY", std::to_string(row.empty));
  set_environment("FAKE_VENDOR_ANSWER", "2540,1800");
  EXPECT_EQ(dev::RdgQuery(row.device, "OS;X"), row.expected);
  EXPECT_EQ(waits.size(), row.reads);
  if (row.expected) {
    EXPECT_TRUE(dir.read("calls.log").starts_with(std::string("open ") + row.device + "\nwrite OS;X\n"));
    EXPECT_TRUE(dir.read("calls.log").ends_with("close\n"));
  }
}
INSTANTIATE_TEST_SUITE_P(Table, RdgBridge,
                         ::testing::Values(RdgRow{"GX-24", 0, 0, "2540,1800", 1},
                                           RdgRow{"GX-24", 9, 5, "2540,1800", 15},
                                           RdgRow{"GX-24", 10, 0, "", 10},
                                           RdgRow{"absent", 0, 0, std::nullopt, 0}),
                         RowIndex());

TEST_F(Vendors, SlotReaderFormatsFourNumbers) {
  install("rdupslt");
  set_environment("FAKE_VENDOR_ANSWER", "-5 0 123456 7");
  EXPECT_EQ(dev::SlotRead("GX-24"), "-5,0,123456,7");
  EXPECT_EQ(dir.read("calls.log"), "open GX-24 3221225472 3 128\nread 16 8\nclose\n");
  set_environment("FAKE_VENDOR_FAILS", "1");
  EXPECT_EQ(dev::SlotRead("GX-24"), std::nullopt);
  EXPECT_EQ(dev::SlotRead("absent"), std::nullopt);
}

TEST_F(Exports, ManualAnswerIsWhatTheUserTyped) {
  EXPECT_EQ(dev::ManualAnswer(), std::nullopt);  // cancelled
  host.prompt_answer = "";
  EXPECT_EQ(dev::ManualAnswer(), std::nullopt);
  host.prompt_answer = "0,0,47000,36000";
  EXPECT_EQ(dev::ManualAnswer(), "0,0,47000,36000");
  host.prompt_answer = std::string(1000, 'y');
  EXPECT_EQ(dev::ManualAnswer(), std::string(255, 'y'));
  EXPECT_EQ(host.prompts.size(), 4u);
}

TEST(ShortHostRecords, KeepWorkingWithoutAPrompt) {
  KERFLINE_HOST_HOOKS hooks{};
  hooks.cbSize = offsetof(KERFLINE_HOST_HOOKS, pfnPrompt);
  hooks.pfnPrompt = [](void*, const char*, char* buffer, uint32_t) {
    buffer[0] = 'x';
    buffer[1] = '\0';
    return 1;
  };
  ASSERT_EQ(KerflineSetHostHooks(&hooks), 1);
  EXPECT_EQ(dev::ManualAnswer(), std::nullopt);
  KerflineSetHostHooks(nullptr);
}

}  // namespace
