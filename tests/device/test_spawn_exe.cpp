// SpawnExe with real children: this test binary started again in a role
// named on its command line.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "platform/host_hooks.hpp"

namespace {

namespace fs = std::filesystem;
using kerfline::test::HostRecorder;
using kerfline::test::TempDir;

std::vector<std::string> own_arguments() {
  std::ifstream in("/proc/self/cmdline", std::ios::binary);
  const std::string all((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::vector<std::string> args;
  std::string cur;
  for (const char c : all) {
    if (c == '\0') {
      args.push_back(cur);
      cur.clear();
    } else {
      cur += c;
    }
  }
  return args;
}

// Child roles: "sleep <ms>", "exit <code>", "args <file> ...": writes its
// arguments one a line, "fds <file>": writes its open descriptors.
int run_child(const std::vector<std::string>& a) {
  const std::string& role = a[2];
  if (role == "sleep") std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(a.at(3).c_str())));
  if (role == "exit") return std::atoi(a.at(3).c_str());
  if (role == "args" || role == "fds") {
    std::ofstream out(a.at(3));
    if (role == "args") {
      for (std::size_t i = 4; i < a.size(); ++i) out << a[i] << '\n';
    } else {
      for (const auto& e : fs::directory_iterator("/proc/self/fd"))
        out << e.path().filename().string() << '\n';
    }
  }
  return 0;
}

const int kChildRole = [] {
  const auto args = own_arguments();
  if (args.size() >= 3 && args[1] == "--spawn-child") std::_Exit(run_child(args));
  return 0;
}();

std::string child_line(const std::string& role) {
  return "\"" + fs::read_symlink("/proc/self/exe").string() + "\" --spawn-child " + role;
}

int spawn(const std::string& line, void* mode) {
  std::string copy = line;
  return SpawnExe(copy.data(), 1, mode);
}

std::size_t count_entries(const char* dir) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(dir), fs::directory_iterator()));
}

bool no_child_left() {
  int status = 0;
  return ::waitpid(-1, &status, WNOHANG) < 0 && errno == ECHILD;
}

int g_polling = 0;
constexpr int kHeldFd = 100;

struct BadLineRow {
  const char* line;
};

class SpawnExeBadLine : public ::testing::TestWithParam<std::tuple<BadLineRow, bool>> {};

TEST_P(SpawnExeBadLine, GivesZeroAndLeavesTheHostAlone) {
  const HostRecorder host;
  void* mode = std::get<1>(GetParam()) ? &g_polling : nullptr;
  EXPECT_EQ(spawn(std::get<0>(GetParam()).line, mode), 0);
  EXPECT_EQ(host.pumps, 0);
  EXPECT_TRUE(host.cursor_changes.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, SpawnExeBadLine,
    ::testing::Combine(::testing::Values(BadLineRow{""}, BadLineRow{"  \t"}, BadLineRow{"\"\" arg"},
                                         BadLineRow{"kerfline-no-such-program"},
                                         BadLineRow{"\"/no/such/dir/prog with blank"}, BadLineRow{"/etc"}),
                       ::testing::Bool()),
    kerfline::test::RowIndex{});

TEST(SpawnExe, NullCommandLineGivesZero) {
  const HostRecorder host;
  EXPECT_EQ(SpawnExe(nullptr, 1, nullptr), 0);
  EXPECT_EQ(SpawnExe(nullptr, 1, &g_polling), 0);
  EXPECT_EQ(host.pumps, 0);
}

class SpawnExeWaits : public ::testing::TestWithParam<bool> {
 protected:
  void* mode() const { return GetParam() ? &g_polling : nullptr; }
};

TEST_P(SpawnExeWaits, PumpsWhileASleepingChildRunsAndLeavesNothingBehind) {
  const std::size_t fds = count_entries("/proc/self/fd");
  const std::size_t threads = count_entries("/proc/self/task");
  const HostRecorder host;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(spawn(child_line("sleep 400"), mode()), 1);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(400));
  EXPECT_GE(host.pumps, 5);
  EXPECT_EQ(host.cursor_changes, (std::vector<int>{1, 0}));
  EXPECT_TRUE(no_child_left());
  EXPECT_EQ(count_entries("/proc/self/fd"), fds);
  EXPECT_EQ(count_entries("/proc/self/task"), threads);
}

TEST_P(SpawnExeWaits, AChildThatFailsStillCountsAsRun) {
  EXPECT_EQ(spawn(child_line("exit 3"), mode()), 1);
  EXPECT_TRUE(no_child_left());
}

TEST_P(SpawnExeWaits, ArgumentsReachTheChildWithoutAShell) {
  const TempDir dir;
  const std::string out = (dir.path() / "args.txt").string();
  EXPECT_EQ(spawn(child_line("args \"" + out + "\" \"two words\" say\\\"hi $HOME;x |y"), mode()), 1);
  EXPECT_EQ(dir.read("args.txt"), "two words\nsay\"hi\n$HOME;x\n|y\n");
}

TEST_P(SpawnExeWaits, TheChildInheritsNoDescriptor) {
  const TempDir dir;
  // A descriptor open in the parent without close-on-exec, at a number the
  // child would not reach by itself.
  const int held = ::open((dir.path() / "held.txt").c_str(), O_WRONLY | O_CREAT, 0600);
  ASSERT_GE(held, 0);
  ASSERT_EQ(::dup2(held, kHeldFd), kHeldFd);
  ::close(held);
  EXPECT_EQ(spawn(child_line("fds \"" + (dir.path() / "fds.txt").string() + "\""), mode()), 1);
  ::close(kHeldFd);
  std::ifstream in(dir.path() / "fds.txt");
  std::vector<int> seen;
  for (std::string line; std::getline(in, line);) seen.push_back(std::atoi(line.c_str()));
  ASSERT_FALSE(seen.empty());
  for (const int fd : seen) {
    EXPECT_LT(fd, 10);
  }
}

// A host cancels from its pump hook: the child that would sleep a minute is
// ended and collected.
struct CancelHost {
  int pumps = 0;
  std::thread::id pump_thread;
  static void pump(void* ctx) {
    auto* self = static_cast<CancelHost*>(ctx);
    self->pump_thread = std::this_thread::get_id();
    if (++self->pumps == 3) {
      EXPECT_EQ(KerflineCancelSpawnExe(), 1);
    }
  }
};

TEST_P(SpawnExeWaits, EndsWhenTheHostCancels) {
  CancelHost state;
  KERFLINE_HOST_HOOKS hooks{};
  hooks.cbSize = sizeof hooks;
  hooks.pContext = &state;
  hooks.pfnPumpMessages = &CancelHost::pump;
  ASSERT_TRUE(kerfline::platform::host::install(&hooks));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(spawn(child_line("sleep 60000"), mode()), 1);
  kerfline::platform::host::install(nullptr);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
  EXPECT_EQ(state.pump_thread, std::this_thread::get_id());
  EXPECT_TRUE(no_child_left());
}

INSTANTIATE_TEST_SUITE_P(ModalAndPolling, SpawnExeWaits, ::testing::Bool());

TEST(SpawnExe, ACancelFromAnotherThreadEndsTheWait) {
  std::atomic<bool> stop{false};
  std::thread canceller([&] {
    while (!stop.load()) {
      if (KerflineCancelSpawnExe() > 0) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  });
  EXPECT_EQ(spawn(child_line("sleep 60000"), nullptr), 1);
  stop = true;
  canceller.join();
  EXPECT_TRUE(no_child_left());
}

TEST(SpawnExe, ACancelBeforeTheCallDoesNotEndIt) {
  EXPECT_EQ(KerflineCancelSpawnExe(), 0);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(spawn(child_line("sleep 200"), nullptr), 1);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
}

// A modal wait started from the pump hook of another modal wait is refused
// without starting a child; a polling one is allowed.
struct NestingHost {
  std::string modal_line;
  std::string polling_line;
  int nested_modal = -1;
  int nested_polling = -1;
  static void pump(void* ctx) {
    auto* self = static_cast<NestingHost*>(ctx);
    if (self->nested_modal != -1) return;
    self->nested_modal = spawn(self->modal_line, nullptr);
    self->nested_polling = spawn(self->polling_line, &g_polling);
  }
};

TEST(SpawnExe, OverlappingModalWaitsAreRefused) {
  const TempDir dir;
  NestingHost state;
  state.modal_line = child_line("args \"" + (dir.path() / "modal.txt").string() + "\" ran");
  state.polling_line = child_line("args \"" + (dir.path() / "polling.txt").string() + "\" ran");
  KERFLINE_HOST_HOOKS hooks{};
  hooks.cbSize = sizeof hooks;
  hooks.pContext = &state;
  hooks.pfnPumpMessages = &NestingHost::pump;
  ASSERT_TRUE(kerfline::platform::host::install(&hooks));
  EXPECT_EQ(spawn(child_line("sleep 300"), nullptr), 1);
  kerfline::platform::host::install(nullptr);
  EXPECT_EQ(state.nested_modal, 0);
  EXPECT_EQ(state.nested_polling, 1);
  EXPECT_FALSE(fs::exists(dir.path() / "modal.txt"));
  EXPECT_EQ(dir.read("polling.txt"), "ran\n");
  // The refusal ended with the outer wait.
  EXPECT_EQ(spawn(child_line("exit 0"), nullptr), 1);
}

}  // namespace
