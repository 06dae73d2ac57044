#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/clock.hpp"
#include "platform/paths.hpp"
#include "platform/shared_memory.hpp"

namespace kerfline::platform {
namespace {

class SharedMemoryTest : public ::testing::Test {
 protected:
  void TearDown() override { SharedMemory::remove(name_); }
  const std::string name_ = "kerfline-shm-test-" + std::to_string(kerfline::platform::tick_ms64());
};

bool all_zero(const SharedMemory& m) {
  const auto* p = static_cast<const unsigned char*>(m.data());
  return std::all_of(p, p + m.size(), [](unsigned char b) { return b == 0; });
}

// Two opens share the bytes while either is open; once nobody has the block
// open it starts zeroed again.
TEST_F(SharedMemoryTest, OpensShareTheBytesUntilTheLastCloses) {
  {
    auto a = SharedMemory::open(name_, 4096);
    ASSERT_TRUE(a) << a.error().message;
    EXPECT_TRUE(all_zero(*a));
    std::memset(a->data(), 0x5A, a->size());
    auto b = SharedMemory::open("/" + name_, 4096);
    ASSERT_TRUE(b) << b.error().message;
    EXPECT_NE(a->data(), b->data());
    const auto* seen = static_cast<const unsigned char*>(b->data());
    EXPECT_EQ(seen[0], 0x5A);
    EXPECT_EQ(seen[4095], 0x5A);
  }
  auto c = SharedMemory::open(name_, 4096);
  ASSERT_TRUE(c);
  EXPECT_TRUE(all_zero(*c));
}

TEST_F(SharedMemoryTest, RemoveForgetsTheName) {
  if (path_separator() == '\\')
    GTEST_SKIP() << "Windows drops a mapping's name with its last handle, never before";
  ASSERT_TRUE(SharedMemory::open(name_, 64));
  EXPECT_TRUE(SharedMemory::remove(name_));
  EXPECT_FALSE(SharedMemory::remove(name_));
}

TEST(SharedMemory, RefusesBadNamesAndSizes) {
  for (const char* bad : {"", "/", "a/b", "..", "with space", "tab\tname"}) {
    EXPECT_FALSE(SharedMemory::open(bad, 64)) << '"' << bad << '"';
    EXPECT_FALSE(SharedMemory::remove(bad));
  }
  EXPECT_FALSE(SharedMemory::open("kerfline-size-zero", 0));
}

}  // namespace
}  // namespace kerfline::platform
