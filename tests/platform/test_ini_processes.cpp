// Several processes writing one file, and a writer killed mid-write. The
// children are this test binary again, told their role by the environment
// before any test runs.
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "fixtures/self_spawn.hpp"
#include "ini_fixture.hpp"
#include "platform/ini.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::test::IniFile;
using kerfline::test::wait_status;

namespace {

constexpr int kWriters = 4;
constexpr int kKeysPerWriter = 500;

std::string key_name(int writer, int i) { return "w" + std::to_string(writer) + "k" + std::to_string(i); }

// Child: writes its keys into the shared section; exit status 0 when every
// write returned true.
int run_writer(const std::string& file, int writer) {
  for (int i = 0; i < kKeysPerWriter; ++i) {
    if (!ini::write_value("Shared", key_name(writer, i), std::to_string(writer * 100000 + i), file)) return 1;
  }
  // A section of its own, added while the others still write.
  return ini::write_value("Writer" + std::to_string(writer), "count", std::to_string(kKeysPerWriter), file)
             ? 0
             : 1;
}

// Child: writes keys until killed, telling the parent through the pipe
// after each write that returned.
int run_crasher(const std::string& file, int first, int fd) {
  for (int i = first;; ++i) {
    if (!ini::write_value("Crash", "k" + std::to_string(i), "v" + std::to_string(i), file)) return 1;
    if (::write(fd, &i, sizeof i) != static_cast<ssize_t>(sizeof i)) return 2;
  }
}

const int kChildStatus = [] {
  const char* role = std::getenv("KERFLINE_INI_CHILD");
  if (role == nullptr) return 0;
  const std::string file = std::getenv("KERFLINE_INI_FILE");
  const int arg = std::atoi(std::getenv("KERFLINE_INI_ARG"));
  const int status = std::string(role) == "writer"
                         ? run_writer(file, arg)
                         : run_crasher(file, arg, std::atoi(std::getenv("KERFLINE_INI_FD")));
  std::_Exit(status);
}();

pid_t spawn_child(const std::string& role, const std::string& file, int arg, int fd = -1) {
  return kerfline::test::spawn_self({"KERFLINE_INI_CHILD=" + role, "KERFLINE_INI_FILE=" + file,
                                     "KERFLINE_INI_ARG=" + std::to_string(arg),
                                     "KERFLINE_INI_FD=" + std::to_string(fd)});
}

TEST(IniConcurrency, FourProcessesLoseNoKey) {
  ASSERT_EQ(kChildStatus, 0);
  IniFile file;
  file.put("; shared by four writers\r\n[Shared]\r\n");
  std::vector<pid_t> children;
  for (int w = 0; w < kWriters; ++w) {
    children.push_back(spawn_child("writer", file.path(), w));
    ASSERT_GT(children.back(), 0);
  }
  for (pid_t pid : children) {
    const int status = wait_status(pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "writer status " << status;
  }

  const auto keys = ini::read_key_names("Shared", file.path());
  EXPECT_EQ(keys.size(), static_cast<std::size_t>(kWriters * kKeysPerWriter));
  EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()).size(), keys.size()) << "no key twice";
  for (int w = 0; w < kWriters; ++w) {
    for (int i = 0; i < kKeysPerWriter; ++i) {
      ASSERT_EQ(ini::read_int("Shared", key_name(w, i), -1, file.path()), w * 100000 + i) << key_name(w, i);
    }
    EXPECT_EQ(ini::read_int("Writer" + std::to_string(w), "count", -1, file.path()), kKeysPerWriter);
  }
  EXPECT_EQ(file.bytes().rfind("; shared by four writers\r\n[Shared]\r\nw", 0), 0u);
}

TEST(IniConcurrency, ThreadsOfOneProcessWriteAndReadTogether) {
  IniFile file;
  constexpr int kThreads = 4;
  constexpr int kKeys = 40;
  std::vector<std::thread> threads;
  std::atomic<bool> torn{false};
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kKeys; ++i) {
        ini::write_value("T", key_name(t, i), std::to_string(i), file.path());
        // Whatever another thread did meanwhile, our own keys are all there.
        for (int j = 0; j <= i; ++j) {
          if (ini::read_int("T", key_name(t, j), -1, file.path()) != j) torn = true;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_FALSE(torn);
  EXPECT_EQ(ini::read_key_names("T", file.path()).size(), static_cast<std::size_t>(kThreads * kKeys));
}

TEST(IniCrash, KilledWriterLeavesAWholeFileWithEveryReturnedWrite) {
  ASSERT_EQ(kChildStatus, 0);
  IniFile file;
  std::mt19937 random(12345);
  int next = 0;
  for (int round = 0; round < 8; ++round) {
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    const pid_t pid = spawn_child("crasher", file.path(), next, fds[1]);
    ::close(fds[1]);
    ASSERT_GT(pid, 0);
    // Let it write a while (a random number of returned writes), then kill
    // it wherever it is.
    const int wanted = 5 + static_cast<int>(random() % 40);
    int reported = 0;
    int last = next - 1;
    int value = 0;
    while (reported < wanted && ::read(fds[0], &value, sizeof value) == static_cast<ssize_t>(sizeof value)) {
      last = value;
      ++reported;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
    ::kill(pid, SIGKILL);
    const int status = wait_status(pid);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the writer stopped on its own: " << status;
    while (::read(fds[0], &value, sizeof value) == static_cast<ssize_t>(sizeof value)) last = value;
    ::close(fds[0]);

    // Every write that returned is there, and nothing but whole lines.
    const auto lines = ini::read_section("Crash", file.path());
    ASSERT_GE(static_cast<int>(lines.size()), last + 1) << "round " << round;
    for (int i = 0; i <= last; ++i) {
      ASSERT_EQ(ini::read_string("Crash", "k" + std::to_string(i), "", file.path()), "v" + std::to_string(i));
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
      ASSERT_EQ(lines[i], "k" + std::to_string(i) + "=v" + std::to_string(i));
    }
    next = static_cast<int>(lines.size());
  }
  EXPECT_EQ(ini::read_section_names(file.path()), std::vector<std::string>{"Crash"});
}

}  // namespace
