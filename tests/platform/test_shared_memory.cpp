#include <gtest/gtest.h>

#include <cstring>
#include <optional>
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
  for (std::size_t k = 0; k < m.size(); ++k) {
    if (p[k] != 0) return false;
  }
  return true;
}

TEST_F(SharedMemoryTest, TwoOpensShareTheBytes) {
  auto a = SharedMemory::open(name_, 4096);
  ASSERT_TRUE(a) << a.error().message;
  EXPECT_TRUE(all_zero(*a));
  std::memcpy(a->data(), "shared", 7);
  auto b = SharedMemory::open("/" + name_, 4096);
  ASSERT_TRUE(b) << b.error().message;
  EXPECT_NE(a->data(), b->data());
  EXPECT_STREQ(static_cast<const char*>(b->data()), "shared");
}

TEST_F(SharedMemoryTest, StartsZeroAgainOnceNobodyHasItOpen) {
  {
    auto a = SharedMemory::open(name_, 4096);
    ASSERT_TRUE(a);
    std::memset(a->data(), 0x5A, a->size());
    auto b = SharedMemory::open(name_, 4096);  // a still open: contents kept
    ASSERT_TRUE(b);
    EXPECT_EQ(static_cast<const unsigned char*>(b->data())[4095], 0x5A);
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
    auto m = SharedMemory::open(bad, 64);
    EXPECT_FALSE(m) << '"' << bad << '"';
    EXPECT_FALSE(SharedMemory::remove(bad));
  }
  auto empty = SharedMemory::open("kerfline-size-zero", 0);
  EXPECT_FALSE(empty);
}

}  // namespace
}  // namespace kerfline::platform
