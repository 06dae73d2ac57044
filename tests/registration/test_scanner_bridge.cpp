// The scanner bridge against fake "lumaprobe.dll" plug-ins copied into a
// temporary suite directory.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "devconfig/registration_run.hpp"
#include "devconfig/spool_paths.hpp"
#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "platform/dynlib.hpp"
#include "platform/paths.hpp"
#include "registration/scanner_bridge.hpp"

namespace kerfline::registration {
namespace {

namespace fs = std::filesystem;
using test::TempDir;

enum class Plugin { none, full, some, zero, broken };

// Installs the plug-in variant in the suite directory and opens it a second
// time to read what the bridge made it do.
class ScannerSuite {
 public:
  explicit ScannerSuite(Plugin plugin) {
    platform::set_home_dir(dir_.str());
    const char* variant = plugin == Plugin::full ? "full" : plugin == Plugin::some ? "some" : "zero";
    if (plugin == Plugin::broken) {
      dir_.write(KERFLINE_TEST_LUMAPROBE_FILE, "not a shared library");
    } else if (plugin != Plugin::none) {
      const fs::path built = fs::path(KERFLINE_TEST_LUMAPROBE_DIR) / (std::string("lumaprobe_") + variant) /
                             KERFLINE_TEST_LUMAPROBE_FILE;
      fs::copy_file(built, dir_.path() / KERFLINE_TEST_LUMAPROBE_FILE);
      auto lib = platform::DynamicLibrary::open((dir_.path() / KERFLINE_TEST_LUMAPROBE_FILE).string());
      EXPECT_TRUE(lib) << lib.error().message;
      if (lib) probe_.emplace(std::move(lib.value()));
    }
  }
  ~ScannerSuite() {
    reset_scanner_bridge();
    platform::set_home_dir("");
  }
  ScannerSuite(const ScannerSuite&) = delete;
  ScannerSuite& operator=(const ScannerSuite&) = delete;

  [[nodiscard]] std::string log() const {
    return probe_ ? probe_->function<const char*()>("FakeProbeLog")() : "";
  }
  void reset(int positions, int filled) const {
    if (probe_) probe_->function<void(int, int)>("FakeProbeReset")(positions, filled);
  }
  void set_active_jobs(const char* device, int count) const {
    const std::string index = devconfig::index_file_of(devconfig::spool_dir(dir_.str(), device));
    fs::create_directories(fs::path(index).parent_path());
    dir_.write(fs::relative(index, dir_.path()).string(),
               "[ActiveJobs]\nCount=" + std::to_string(count) + "\n");
  }

 private:
  TempDir dir_;
  std::optional<platform::DynamicLibrary> probe_;
};

std::int32_t g_record = 42;
void* const kWindow = reinterpret_cast<void*>(0x1234);  // NOLINT

std::int32_t positions_call() {
  std::int32_t count = -9;
  DIGITIZERPOS* positions = nullptr;
  const std::int32_t result = LumaProbeGetDigitizerPos(&count, &positions);
  LumaProbeFreeDigitizerPos(&positions);
  return result;
}

using Entry = std::int32_t (*)();
const Entry kInitDigitizer = [] { return LumaProbeInitDigitizer(5); };
const Entry kInit = [] { return LumaProbeInit(&g_record); };
const Entry kCommand = [] { return LumaProbeDoCommand(1, 20, 300); };
const Entry kRead = [] { return LumaProbeRead(&g_record); };
const Entry kUi = [] { return LumaProbeHandleUI(kWindow, 2, 3, 4); };

struct BridgeRow {
  Plugin plugin;
  bool initialised;  // LumaProbeInit called first
  Entry call;
  std::int32_t result;
  const char* log;  // what the plug-in saw from the call
};

class ScannerBridge : public ::testing::TestWithParam<BridgeRow> {};

TEST_P(ScannerBridge, ForwardsOrRefusesAsTheTableSays) {
  const BridgeRow& row = GetParam();
  const ScannerSuite suite(row.plugin);
  if (row.initialised) LumaProbeInit(nullptr);
  const int positions = row.plugin == Plugin::zero ? 0 : 3;
  suite.reset(positions, positions);
  EXPECT_EQ(row.call(), row.result);
  EXPECT_EQ(suite.log(), row.log);
}

// The forwarding calls without a plug-in are in FindNoPluginAfterUnloading.
INSTANTIATE_TEST_SUITE_P(
    Table, ScannerBridge,
    ::testing::Values(
        // Nothing loaded yet, no plug-in, or one that cannot load.
        BridgeRow{Plugin::full, false, LumaProbeFreeDigitizer, -4, ""},
        BridgeRow{Plugin::full, false, LumaProbeExit, 0, ""},
        BridgeRow{Plugin::none, false, kInitDigitizer, -4, ""},
        BridgeRow{Plugin::broken, false, kInit, -4, ""},
        // Every entry present.
        BridgeRow{Plugin::full, false, kInitDigitizer, 105, "ProbeInitDigitizer(5,0,0);"},
        BridgeRow{Plugin::full, false, kInit, 7, "ProbeInit(42,0,0);"},
        BridgeRow{Plugin::full, true, kCommand, 321, "ProbeDoCommand(1,20,300);"},
        BridgeRow{Plugin::full, true, kRead, 9, "ProbeRead(42,0,0);"},
        BridgeRow{Plugin::full, true, LumaProbeProcess, 11, "Process(0,0,0);"},
        BridgeRow{Plugin::full, true, kUi, 24, "HandleUI(4660,2,3);"},
        BridgeRow{Plugin::full, true, LumaProbeFreeDigitizer, 5, "ProbeFreeDigitizer(0,0,0);"},
        BridgeRow{Plugin::full, true, LumaProbeExit, 1, "ProbeExit(0,0,0);"},
        BridgeRow{Plugin::full, true, positions_call, 3,
                  "ProbeGetDigitizerPos(0,0,0);ProbeGetDigitizerPos(3,1,0);"},
        // Entries missing: the loaded plug-in lacks all but ProbeDoCommand and ProbeExit.
        BridgeRow{Plugin::some, false, kInitDigitizer, 1, ""}, BridgeRow{Plugin::some, false, kInit, 1, ""},
        BridgeRow{Plugin::some, true, kCommand, 321, "ProbeDoCommand(1,20,300);"},
        BridgeRow{Plugin::some, true, positions_call, 0, ""},
        BridgeRow{Plugin::some, true, LumaProbeFreeDigitizer, 1, ""},
        BridgeRow{Plugin::some, true, kRead, 0, ""}, BridgeRow{Plugin::some, true, LumaProbeProcess, 0, ""},
        BridgeRow{Plugin::some, true, kUi, 0, ""},
        BridgeRow{Plugin::some, true, LumaProbeExit, 1, "ProbeExit(0,0,0);"},
        // No positions: nothing is allocated.
        BridgeRow{Plugin::zero, true, positions_call, 0, "ProbeGetDigitizerPos(0,0,0);"}),
    test::RowIndex{});

// After unloading, every forwarding call finds no plug-in, even one whose
// entry was looked up before.
TEST(ScannerBridgeUnload, FindNoPluginAfterUnloading) {
  for (const Entry unload : {&LumaProbeExit, &LumaProbeFreeDigitizer}) {
    const ScannerSuite suite(Plugin::full);
    ASSERT_EQ(LumaProbeInit(nullptr), 7);
    ASSERT_EQ(LumaProbeProcess(), 11);
    unload();
    for (const Entry forwarded : {Entry{LumaProbeProcess}, kUi, kRead, kCommand}) EXPECT_EQ(forwarded(), 0);
    EXPECT_EQ(positions_call(), -4);
  }
}

struct CountRow {
  int reported;  // the plug-in's answer to "how many"
  int filled;    // its answer when filling
  int result;
  int count;
  bool array;
};

class ScannerPositionCounts : public ::testing::TestWithParam<CountRow> {};

TEST_P(ScannerPositionCounts, NeverHandOutMoreThanWasAllocated) {
  const CountRow& row = GetParam();
  const ScannerSuite suite(Plugin::full);
  ASSERT_EQ(LumaProbeInit(nullptr), 7);
  suite.reset(row.reported, row.filled);
  std::int32_t count = -9;
  DIGITIZERPOS* positions = nullptr;
  EXPECT_EQ(LumaProbeGetDigitizerPos(&count, &positions), row.result);
  EXPECT_EQ(count, row.count);
  ASSERT_EQ(positions != nullptr, row.array);
  for (int i = 0; i < count; ++i) {
    EXPECT_EQ(positions[i].x, i + 0.5);
    EXPECT_EQ(positions[i].y, -i * 2.0);
  }
  EXPECT_EQ(LumaProbeFreeDigitizerPos(&positions), 1);
  EXPECT_EQ(positions, nullptr);
  EXPECT_EQ(LumaProbeGetDigitizerPos(nullptr, &positions), -2);
}

INSTANTIATE_TEST_SUITE_P(Table, ScannerPositionCounts,
                         ::testing::Values(CountRow{2, 2, 2, 2, true}, CountRow{2, 50, 2, 2, true},
                                           CountRow{4, 1, 1, 1, true}, CountRow{2, 0, 0, 0, false},
                                           CountRow{-3, 0, -3, -3, false}, CountRow{2, -1, -1, -1, false},
                                           CountRow{0x7fffffff, 1, -3, 0, false}),
                         test::RowIndex{});

TEST(ScannerBusyDevice, InitRefusesWhileTheRunsDeviceHasJobs) {
  const ScannerSuite suite(Plugin::full);
  suite.set_active_jobs("Cut:1", 2);
  // Without a run the argument is asked; spool names are upper-cased.
  EXPECT_EQ(IsJobRunning("cut:1"), 2);
  EXPECT_EQ(IsJobRunning("Other"), 0);
  EXPECT_EQ(IsJobRunning(nullptr), 0);
  devconfig::set_registration_run_device("Cut:1");
  EXPECT_EQ(LumaProbeInit(&g_record), -4);
  EXPECT_EQ(LumaProbeDoCommand(1, 1, 1), 0);  // nothing was loaded
  EXPECT_EQ(IsJobRunning("Other"), 2);        // the run's device is asked instead
  suite.set_active_jobs("Cut:1", 0);
  EXPECT_EQ(LumaProbeInit(&g_record), 7);
  devconfig::set_registration_run_device(std::nullopt);
}

// The host's pump empties the spool; the read goes ahead after the next
// check and a further 100 ms of pumping.
TEST(ScannerBusyDevice, ReadWaitsWithPumpingUntilTheSpoolIsEmpty) {
  const ScannerSuite suite(Plugin::full);
  ASSERT_EQ(LumaProbeInit(nullptr), 7);
  suite.reset(3, 3);
  suite.set_active_jobs("Cut:1", 1);
  devconfig::set_registration_run_device("Cut:1");
  test::HostRecorder host;
  host.after_pump = [&] {
    if (host.pumps == 1) suite.set_active_jobs("Cut:1", 0);
  };
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(LumaProbeRead(&g_record), 9);
  const auto waited = std::chrono::steady_clock::now() - start;
  devconfig::set_registration_run_device(std::nullopt);
  EXPECT_GE(waited, std::chrono::milliseconds(600));
  EXPECT_GE(host.pumps, 3);  // the first and the settling ones
  EXPECT_EQ(suite.log(), "ProbeRead(42,0,0);");
}

}  // namespace
}  // namespace kerfline::registration
