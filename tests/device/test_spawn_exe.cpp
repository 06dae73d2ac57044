// SpawnExe with real children: this test binary started again in a role
// named on its command line.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "fixtures/host_recorder.hpp"
#include "fixtures/self_spawn.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"

namespace {

namespace fs = std::filesystem;
using kerfline::test::HostRecorder;
using kerfline::test::no_child_left;
using kerfline::test::TempDir;
using Clock = std::chrono::steady_clock;

// Child roles: "sleep <ms>"; "report <file> <args>...": writes its
// arguments, then "fd <n>" for each open descriptor, one a line.
const int kChildRole = [] {
  std::ifstream in("/proc/self/cmdline", std::ios::binary);
  std::vector<std::string> a;
  for (std::string arg; std::getline(in, arg, '\0');) a.push_back(arg);
  if (a.size() < 4 || a[1] != "--spawn-child") return 0;
  if (a[2] == "sleep") std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(a[3])));
  if (a[2] == "report") {
    std::ofstream out(a[3]);
    for (std::size_t i = 4; i < a.size(); ++i) out << a[i] << '\n';
    for (const auto& e : fs::directory_iterator("/proc/self/fd"))
      out << "fd " << e.path().filename().string() << '\n';
  }
  std::_Exit(0);
}();

std::string child_line(const std::string& role) {
  return "\"" + fs::read_symlink("/proc/self/exe").string() + "\" --spawn-child " + role;
}

int g_polling = 0;

int spawn(const char* line, void* mode) {
  if (line == nullptr) return SpawnExe(nullptr, 1, mode);
  std::string copy = line;  // SpawnExe takes a writable line, as CreateProcess does
  return SpawnExe(copy.data(), 1, mode);
}
int spawn(const std::string& line, void* mode) { return spawn(line.c_str(), mode); }

std::size_t count_entries(const char* dir) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(dir), fs::directory_iterator()));
}

class SpawnExeBadLine : public ::testing::TestWithParam<std::tuple<const char*, bool>> {};

TEST_P(SpawnExeBadLine, GivesZeroAndLeavesTheHostAlone) {
  const HostRecorder host;
  EXPECT_EQ(spawn(std::get<0>(GetParam()), std::get<1>(GetParam()) ? &g_polling : nullptr), 0);
  EXPECT_EQ(host.pumps, 0);
  EXPECT_TRUE(host.cursor_changes.empty());
}

INSTANTIATE_TEST_SUITE_P(Table, SpawnExeBadLine,
                         ::testing::Combine(::testing::Values(nullptr, "", "  \t", "\"\" arg",
                                                              "kerfline-no-such-program",
                                                              "\"/no/such/dir/prog with blank", "/etc"),
                                            ::testing::Bool()),
                         kerfline::test::RowIndex{});

class SpawnExeWaits : public ::testing::TestWithParam<bool> {
 protected:
  [[nodiscard]] void* mode() const { return GetParam() ? &g_polling : nullptr; }
};

TEST_P(SpawnExeWaits, PumpsWhileASleepingChildRunsAndLeavesNothingBehind) {
  // A first wait lets sanitizer run-times start their own helper threads.
  ASSERT_EQ(spawn(child_line("sleep 0"), mode()), 1);
  const std::size_t fds = count_entries("/proc/self/fd");
  const std::size_t threads = count_entries("/proc/self/task");
  const HostRecorder host;
  const auto start = Clock::now();
  EXPECT_EQ(spawn(child_line("sleep 400"), mode()), 1);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(400));
  EXPECT_GE(host.pumps, 5);
  EXPECT_EQ(host.cursor_changes, (std::vector<int>{1, 0}));
  EXPECT_TRUE(no_child_left());
  EXPECT_EQ(count_entries("/proc/self/fd"), fds);
  // A joined thread can linger in /proc for a moment while the kernel
  // finishes its exit; give it up to a second.
  for (int i = 0; i < 100 && count_entries("/proc/self/task") != threads; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(count_entries("/proc/self/task"), threads);
}

// Shell syntax stays text; a descriptor the parent holds open (without
// close-on-exec, at a number the child would not reach) is not inherited.
TEST_P(SpawnExeWaits, ArgumentsArriveAsSplitAndNoDescriptorIsInherited) {
  const TempDir dir;
  const int held = ::open((dir.path() / "held").c_str(), O_WRONLY | O_CREAT, 0600);
  ASSERT_EQ(::dup2(held, 100), 100);
  ::close(held);
  const std::string out = (dir.path() / "out").string();
  EXPECT_EQ(spawn(child_line("report \"" + out + "\" \"two words\" say\\\"hi $HOME;x |y"), mode()), 1);
  ::close(100);
  const std::string report = dir.read("out");
  EXPECT_EQ(report.substr(0, report.find("fd ")), "two words\nsay\"hi\n$HOME;x\n|y\n");
  EXPECT_NE(report.find("fd 2\n"), std::string::npos);
  EXPECT_EQ(report.find("fd 100\n"), std::string::npos);
}

TEST_P(SpawnExeWaits, EndsWhenTheHostCancelsFromItsPump) {
  std::thread::id pump_thread;
  HostRecorder host;
  host.after_pump = [&] {
    pump_thread = std::this_thread::get_id();
    if (host.pumps == 3) {
      EXPECT_EQ(KerflineCancelSpawnExe(), 1);
    }
  };
  const auto start = Clock::now();
  EXPECT_EQ(spawn(child_line("sleep 60000"), mode()), 1);
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(30));
  EXPECT_EQ(pump_thread, std::this_thread::get_id());
  EXPECT_TRUE(no_child_left());
}

INSTANTIATE_TEST_SUITE_P(ModalAndPolling, SpawnExeWaits, ::testing::Bool());

TEST(SpawnExe, ACancelFromAnotherThreadEndsTheWait) {
  std::thread canceller([] {
    while (KerflineCancelSpawnExe() == 0) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  });
  EXPECT_EQ(spawn(child_line("sleep 60000"), nullptr), 1);
  canceller.join();
  EXPECT_TRUE(no_child_left());
}

TEST(SpawnExe, ACancelBeforeTheCallDoesNotEndIt) {
  EXPECT_EQ(KerflineCancelSpawnExe(), 0);
  const auto start = Clock::now();
  EXPECT_EQ(spawn(child_line("sleep 200"), nullptr), 1);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(200));
}

// From the pump hook of a modal wait, another modal wait is refused without
// starting its child; a polling one runs.
TEST(SpawnExe, OverlappingModalWaitsAreRefused) {
  const TempDir dir;
  int nested_modal = -1;
  int nested_polling = -1;
  HostRecorder host;
  host.after_pump = [&] {
    if (nested_modal != -1) return;
    nested_modal = spawn(child_line("report \"" + (dir.path() / "modal").string() + "\""), nullptr);
    nested_polling = spawn(child_line("report \"" + (dir.path() / "polling").string() + "\""), &g_polling);
  };
  EXPECT_EQ(spawn(child_line("sleep 300"), nullptr), 1);
  EXPECT_EQ(nested_modal, 0);
  EXPECT_EQ(nested_polling, 1);
  EXPECT_FALSE(fs::exists(dir.path() / "modal"));
  EXPECT_TRUE(fs::exists(dir.path() / "polling"));
  EXPECT_EQ(spawn(child_line("sleep 0"), nullptr), 1);  // the slot is free again
}

}  // namespace
