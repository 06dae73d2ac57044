// Several processes writing one file, and a writer killed mid-write. The
// children are this test binary again, in a role.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "fixtures/self_spawn.hpp"
#include "ini_fixture.hpp"
#include "platform/ini.hpp"
#include "platform/tcp_socket.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::test::child_int;
using kerfline::test::IniFile;
using kerfline::test::spawn_self;

namespace {

constexpr int kWriters = 4;
constexpr int kKeysPerWriter = 500;

std::string key_name(int writer, int i) { return "w" + std::to_string(writer) + "k" + std::to_string(i); }
std::string child_file() { return std::getenv("KERFLINE_INI_FILE"); }

// Writes its keys into the shared section, then a section of its own while
// the others still write; 0 when every write returned true.
int run_writer() {
  const int writer = child_int("KERFLINE_INI_ARG");
  bool ok = true;
  for (int i = 0; i < kKeysPerWriter; ++i) {
    ok = ok &&
         ini::write_value("Shared", key_name(writer, i), std::to_string(writer * 100000 + i), child_file());
  }
  ok = ok && ini::write_value("Writer" + std::to_string(writer), "count", std::to_string(kKeysPerWriter),
                              child_file());
  return ok ? 0 : 3;
}

// Writes keys until it is ended, telling the parent over loopback TCP after
// each write that returned.
int run_crasher() {
  auto link = kerfline::platform::tcp_connect(
      "127.0.0.1", static_cast<std::uint16_t>(child_int("KERFLINE_INI_PORT")), 30000);
  for (int i = child_int("KERFLINE_INI_ARG"); link; ++i) {
    if (!ini::write_value("Crash", "k" + std::to_string(i), "v" + std::to_string(i), child_file())) return 3;
    auto sent = link->write(reinterpret_cast<const char*>(&i), sizeof i, 10000);
    if (!sent || *sent != sizeof i) return 4;
  }
  return 4;
}

[[maybe_unused]] const bool kChild = kerfline::test::run_role("ini-writer", run_writer) ||
                                     kerfline::test::run_role("ini-crasher", run_crasher);

TEST(IniConcurrency, FourProcessesLoseNoKey) {
  IniFile file;
  file.put("; shared by four writers\r\n[Shared]\r\n");
  std::vector<kerfline::platform::ChildProcess> children;
  for (int w = 0; w < kWriters; ++w) {
    auto child = spawn_self("ini-writer",
                            {{"KERFLINE_INI_FILE", file.path()}, {"KERFLINE_INI_ARG", std::to_string(w)}});
    ASSERT_TRUE(child) << child.error().message;
    children.push_back(std::move(*child));
  }
  for (auto& child : children) EXPECT_EQ(kerfline::test::exit_code(child), 0);

  const auto keys = ini::read_key_names("Shared", file.path());
  EXPECT_EQ(keys.size(), static_cast<std::size_t>(kWriters * kKeysPerWriter));
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
  if (ini::uses_system_engine())
    GTEST_SKIP() << "Wine's profile functions: a writer ended mid-write can empty the file";
  IniFile file;
  auto listener = kerfline::platform::TcpListener::listen("127.0.0.1", 0);
  ASSERT_TRUE(listener) << listener.error().message;
  std::mt19937 random(12345);
  int next = 0;
  for (int round = 0; round < 8; ++round) {
    auto child = spawn_self("ini-crasher", {{"KERFLINE_INI_FILE", file.path()},
                                            {"KERFLINE_INI_ARG", std::to_string(next)},
                                            {"KERFLINE_INI_PORT", std::to_string(listener->port())}});
    auto link = listener->accept(30000);
    ASSERT_TRUE(child && link && *link) << "the writer never called";
    // Let it report a random number of returned writes, then end it wherever it is.
    int last = next - 1;
    const auto take = [&](int timeout_ms) {
      int value = 0;
      auto got = (*link)->read(reinterpret_cast<char*>(&value), sizeof value, timeout_ms);
      if (got && got->count == sizeof value) last = value;
      return got && got->count == sizeof value;
    };
    for (int wanted = 5 + static_cast<int>(random() % 40); wanted > 0 && take(10000); --wanted) {
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
    EXPECT_FALSE(child->has_ended()) << "the writer stopped on its own: " << child->exit_code().value_or(-1);
    child->terminate();
    while (take(1000)) {
    }

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
