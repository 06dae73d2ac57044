// SharedDataMan between real processes: the test binary runs itself again as
// a child in a role. Every process of one run uses the private block named in
// KERFLINE_SHM_NAME.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <thread>

#include "fixtures/self_spawn.hpp"
#include "kerfline/kerfline.h"
#include "platform/shared_memory.hpp"

namespace {

using kerfline::test::run_role;

std::uintptr_t arg(const void* p) { return reinterpret_cast<std::uintptr_t>(p); }
bool has(std::uint32_t mask) { return SharedDataMan(3, mask) == 1; }
// Entries read into or written from a value of the entry's type.
template <typename T>
T get(int code) {
  T value{};
  SharedDataMan(code, arg(&value));
  return value;
}
template <typename T>
void put(int code, T value) {
  SharedDataMan(code, arg(&value));
}

bool wait_until(const std::function<bool()>& done) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!done()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

// --- Child roles -----------------------------------------------------------

// Serves one position request: answers entry 1 with (x + 100, y * 2), and
// publishes the device name and port path it "used".
int serve_one_request() {
  SharedDataMan(1, KERFLINE_SHARED_SERVER);
  if (!wait_until([] { return has(KERFLINE_SHARED_REQUEST); })) return 2;
  if (!has(KERFLINE_SHARED_COORDS) || get<double>(11) != 7.0) return 3;
  put(6, get<double>(9) + 100);
  put(7, get<double>(10) * 2);
  SharedDataMan(12, arg("Cutter 60"));
  char port[] = "/dev/ttyUSB3";
  SHAREDBLOB blob{static_cast<std::uint32_t>(std::strlen(port)), port};
  SharedDataMan(4, arg(&blob));
  SharedDataMan(1, KERFLINE_SHARED_ANSWER);
  SharedDataMan(2, KERFLINE_SHARED_REQUEST);
  // The requester takes the answer by clearing its bit.
  if (!wait_until([] { return !has(KERFLINE_SHARED_ANSWER); })) return 5;
  SharedDataMan(2, KERFLINE_SHARED_SERVER);
  return 0;
}

// Sets and clears each of its 16 bits many times while another process does
// the same with the other 16; every change must stay visible to its owner.
int hammer_flags(std::uint32_t first_bit) {
  if (!wait_until([] { return get<std::int32_t>(51) == 1; })) return 2;
  int lost = 0;
  for (int round = 0; round < 3000; ++round) {
    for (std::uint32_t b = first_bit; b < first_bit + 16; ++b) {
      const std::uint32_t bit = 1u << b;
      SharedDataMan(1, bit);
      if (!has(bit)) ++lost;
      SharedDataMan(2, bit);
      if (has(bit)) ++lost;
    }
  }
  SharedDataMan(1, 0xFFFFu << first_bit);
  return lost == 0 ? 0 : 1;
}

[[maybe_unused]] const bool kChild = run_role("server", serve_one_request) ||
                                     run_role("low", [] { return hammer_flags(0); }) ||
                                     run_role("high", [] { return hammer_flags(16); });

// --- Parent side -------------------------------------------------------------

// One private block per test process, removed when the run ends.
class PrivateBlock : public ::testing::Environment {
 public:
  PrivateBlock() { kerfline::platform::set_environment("KERFLINE_SHM_NAME", name_); }
  void TearDown() override { kerfline::platform::SharedMemory::remove(name_); }

 private:
  std::string name_ = "kerfline-test-" + std::to_string(std::random_device{}());
};

[[maybe_unused]] auto* const kPrivateBlock = ::testing::AddGlobalTestEnvironment(new PrivateBlock);

void reset_block() {
  SharedDataMan(2, 0xFFFFFFFFu);
  put<std::int32_t>(50, 0);
}

TEST(SharedDataMan, CodesOutsideTheTableReturnZeroAndChangeNothing) {
  reset_block();
  SharedDataMan(1, 0x21);
  for (const int code : {0, 56, -1, 100, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(SharedDataMan(code, 0xFFFFFFFFu), 0) << code;
  }
  EXPECT_EQ(SharedDataMan(3, 0x21), 1);
  EXPECT_EQ(SharedDataMan(3, 0x22), 0);
}

TEST(SharedDataMan, RequestAndAnswerBetweenTwoProcesses) {
  reset_block();
  auto server = kerfline::test::spawn_self("server");
  ASSERT_TRUE(server) << server.error().message;
  ASSERT_TRUE(wait_until([] { return has(KERFLINE_SHARED_SERVER); })) << "no server appeared";

  put(6, 12.5);
  put(7, -3.25);
  put(8, 7.0);
  SharedDataMan(1, KERFLINE_SHARED_REQUEST | KERFLINE_SHARED_COORDS);
  ASSERT_TRUE(wait_until([] { return !has(KERFLINE_SHARED_REQUEST); })) << "request never served";

  ASSERT_TRUE(has(KERFLINE_SHARED_ANSWER));
  EXPECT_EQ(get<double>(9), 112.5);
  EXPECT_EQ(get<double>(10), -6.5);
  char device[KERFLINE_SHARED_TEXT_SIZE] = {};
  SharedDataMan(13, arg(device));
  EXPECT_STREQ(device, "Cutter 60");
  char port[64] = {};
  SHAREDBLOB blob{sizeof port, port};
  SharedDataMan(5, arg(&blob));
  EXPECT_EQ(blob.nSize, std::strlen("/dev/ttyUSB3"));
  EXPECT_STREQ(port, "/dev/ttyUSB3");
  SharedDataMan(2, KERFLINE_SHARED_ANSWER);

  EXPECT_EQ(kerfline::test::exit_code(*server), 0);
  EXPECT_FALSE(has(KERFLINE_SHARED_SERVER)) << "the server's leaving was not seen";
}

TEST(SharedDataMan, ConcurrentFlagChangesLoseNoBit) {
  reset_block();
  auto low = kerfline::test::spawn_self("low");
  auto high = kerfline::test::spawn_self("high");
  ASSERT_TRUE(low && high);
  put<std::int32_t>(50, 1);
  EXPECT_EQ(kerfline::test::exit_code(*low), 0) << "a bit of the low half was lost";
  EXPECT_EQ(kerfline::test::exit_code(*high), 0) << "a bit of the high half was lost";
  EXPECT_EQ(SharedDataMan(3, 0xFFFFFFFFu), 1);
}

}  // namespace
