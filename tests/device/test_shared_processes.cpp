// SharedDataMan between real processes: the test binary runs itself again as
// a child in a role. Every process of one run uses the private block named in
// KERFLINE_SHM_NAME.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <thread>

#include "fixtures/self_spawn.hpp"
#include "kerfline/kerfline.h"
#include "platform/shared_memory.hpp"

namespace {

constexpr auto kPatience = std::chrono::seconds(30);

std::uintptr_t arg(const void* p) { return reinterpret_cast<std::uintptr_t>(p); }
bool has(std::uint32_t mask) { return SharedDataMan(3, mask) == 1; }

bool wait_until(const std::function<bool()>& done) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
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
  if (!has(KERFLINE_SHARED_COORDS)) return 3;
  double x = 0;
  double y = 0;
  double z = 0;
  SharedDataMan(9, arg(&x));
  SharedDataMan(10, arg(&y));
  SharedDataMan(11, arg(&z));
  if (z != 7.0) return 4;
  const double ax = x + 100;
  const double ay = y * 2;
  SharedDataMan(6, arg(&ax));
  SharedDataMan(7, arg(&ay));
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
  if (!wait_until([] {
        std::int32_t go = 0;
        SharedDataMan(51, arg(&go));
        return go == 1;
      })) {
    return 2;
  }
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

[[maybe_unused]] const bool kChild = kerfline::test::run_role({
    {"server", serve_one_request},
    {"low", [] { return hammer_flags(0); }},
    {"high", [] { return hammer_flags(16); }},
});

// --- Parent side -------------------------------------------------------------

// One private block per test process, removed when the run ends.
class PrivateBlock : public ::testing::Environment {
 public:
  PrivateBlock() : name_("kerfline-test-" + std::to_string(std::random_device{}())) {
    kerfline::platform::set_environment("KERFLINE_SHM_NAME", name_);
  }
  void TearDown() override { kerfline::platform::SharedMemory::remove(name_); }

 private:
  std::string name_;
};

[[maybe_unused]] auto* const kPrivateBlock = ::testing::AddGlobalTestEnvironment(new PrivateBlock);

void reset_block() {
  SharedDataMan(2, 0xFFFFFFFFu);
  const std::int32_t zero = 0;
  SharedDataMan(50, arg(&zero));
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

  const double x = 12.5;
  const double y = -3.25;
  const double z = 7.0;
  SharedDataMan(6, arg(&x));
  SharedDataMan(7, arg(&y));
  SharedDataMan(8, arg(&z));
  SharedDataMan(1, KERFLINE_SHARED_REQUEST | KERFLINE_SHARED_COORDS);
  ASSERT_TRUE(wait_until([] { return !has(KERFLINE_SHARED_REQUEST); })) << "request never served";

  ASSERT_TRUE(has(KERFLINE_SHARED_ANSWER));
  double ax = 0;
  double ay = 0;
  SharedDataMan(9, arg(&ax));
  SharedDataMan(10, arg(&ay));
  char device[KERFLINE_SHARED_TEXT_SIZE] = {};
  SharedDataMan(13, arg(device));
  char port[64] = {};
  SHAREDBLOB blob{sizeof port, port};
  SharedDataMan(5, arg(&blob));
  SharedDataMan(2, KERFLINE_SHARED_ANSWER);

  EXPECT_EQ(ax, 112.5);
  EXPECT_EQ(ay, -6.5);
  EXPECT_STREQ(device, "Cutter 60");
  EXPECT_EQ(blob.nSize, std::strlen("/dev/ttyUSB3"));
  EXPECT_STREQ(port, "/dev/ttyUSB3");
  EXPECT_EQ(kerfline::test::exit_code(*server), 0);
  EXPECT_FALSE(has(KERFLINE_SHARED_SERVER)) << "the server's leaving was not seen";
}

TEST(SharedDataMan, ConcurrentFlagChangesLoseNoBit) {
  reset_block();
  auto low = kerfline::test::spawn_self("low");
  auto high = kerfline::test::spawn_self("high");
  ASSERT_TRUE(low && high);
  const std::int32_t go = 1;
  SharedDataMan(50, arg(&go));
  EXPECT_EQ(kerfline::test::exit_code(*low), 0) << "a bit of the low half was lost";
  EXPECT_EQ(kerfline::test::exit_code(*high), 0) << "a bit of the high half was lost";
  EXPECT_EQ(SharedDataMan(3, 0xFFFFFFFFu), 1);
}

}  // namespace
