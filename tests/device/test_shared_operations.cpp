// SharedDataMan's operations on a fresh block: each code touches exactly the
// field it names, refuses a null pointer, and never writes outside the block.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "device/shared_block.hpp"
#include "fixtures/table_names.hpp"

namespace kerfline::device {
namespace {

// A zeroed block with guard bytes behind it, so that a write past its end shows.
struct Guarded {
  SharedBlock block{};
  unsigned char guard[64];
  Guarded() { std::memset(guard, 0xA5, sizeof guard); }
  [[nodiscard]] std::vector<unsigned char> bytes() const {
    const auto* p = reinterpret_cast<const unsigned char*>(this);
    return {p, p + sizeof *this};
  }
  [[nodiscard]] bool guard_intact() const { return std::count(guard, std::end(guard), 0xA5) == sizeof guard; }
  std::int32_t run(int code, const void* argument) {
    return run_shared_operation(block, code, reinterpret_cast<std::uintptr_t>(argument));
  }
};

struct FieldRow {
  int set, get;        // the two codes of a field
  std::size_t offset;  // of the field in the block
  std::size_t width = 8;
};

class FieldCode : public ::testing::TestWithParam<FieldRow> {};

TEST_P(FieldCode, SetAndGetTouchOnlyTheirField) {
  const FieldRow row = GetParam();
  Guarded g;
  const double d = -1234.5625;
  const std::int32_t i = -77;
  const void* value = row.width == 8 ? static_cast<const void*>(&d) : &i;
  std::vector<unsigned char> expected = g.bytes();
  std::memcpy(expected.data() + row.offset, value, row.width);
  EXPECT_EQ(g.run(row.set, nullptr), KERFLINE_BAD_ARGUMENT);
  EXPECT_EQ(g.run(row.get, nullptr), KERFLINE_BAD_ARGUMENT);
  EXPECT_EQ(g.run(row.set, value), 1);
  EXPECT_EQ(g.bytes(), expected);
  unsigned char out[8] = {};
  EXPECT_EQ(g.run(row.get, out), 1);
  EXPECT_EQ(std::memcmp(out, value, row.width), 0);
  EXPECT_EQ(g.bytes(), expected);
}

// Coordinate entries 0 to 5 (first, second, third value each), then values D to I.
INSTANTIATE_TEST_SUITE_P(AllCodes, FieldCode,
                         ::testing::Values(FieldRow{6, 9, 8}, FieldRow{7, 10, 56}, FieldRow{8, 11, 104},
                                           FieldRow{14, 17, 16}, FieldRow{15, 18, 64}, FieldRow{16, 19, 112},
                                           FieldRow{20, 23, 24}, FieldRow{21, 24, 72}, FieldRow{22, 25, 120},
                                           FieldRow{26, 29, 32}, FieldRow{27, 30, 80}, FieldRow{28, 31, 128},
                                           FieldRow{32, 35, 40}, FieldRow{33, 36, 88}, FieldRow{34, 37, 136},
                                           FieldRow{38, 41, 48}, FieldRow{39, 42, 96}, FieldRow{40, 43, 144},
                                           FieldRow{44, 45, 152}, FieldRow{46, 47, 160},
                                           FieldRow{48, 49, 168}, FieldRow{50, 51, 176, 4},
                                           FieldRow{52, 54, 184}, FieldRow{53, 55, 192}),
                         test::RowIndex());

struct FlagRow {
  std::uint32_t set, clear, mask;  // codes 1, 2, then 3
  int expected;
  std::uint32_t flags;  // afterwards
};

class FlagCode : public ::testing::TestWithParam<FlagRow> {};

TEST_P(FlagCode, SetsClearsAndTests) {
  const FlagRow row = GetParam();
  SharedBlock block{};
  EXPECT_EQ(run_shared_operation(block, 1, row.set), 1);
  EXPECT_EQ(run_shared_operation(block, 2, row.clear), 1);
  EXPECT_EQ(run_shared_operation(block, 3, row.mask), row.expected);
  EXPECT_EQ(block.flags, row.flags);
}

// Mask 0 always passes; a mask fails when one bit is missing; clearing drops
// only bits that were set.
INSTANTIATE_TEST_SUITE_P(Masks, FlagCode,
                         ::testing::Values(FlagRow{0, 0, 0, 1, 0}, FlagRow{0x1C, 0, 0x0C, 1, 0x1C},
                                           FlagRow{0x1C, 0, 0x0E, 0, 0x1C},
                                           FlagRow{0x1C, 0x10, 0x10, 0, 0x0C},
                                           FlagRow{0x0F, 0x33, 0x0C, 1, 0x0C},
                                           FlagRow{0xFFFFFFFF, 0, 0xFFFFFFFF, 1, 0xFFFFFFFF},
                                           FlagRow{0xFFFFFFFF, 0x80000000, 0xFFFFFFFF, 0, 0x7FFFFFFF}),
                         test::RowIndex());

struct BlobRow {
  std::uint32_t stored;     // size handed to code 4
  std::uint32_t requested;  // descriptor size for code 5
  std::uint32_t kept;       // bytes in the block afterwards
  std::uint32_t copied;     // bytes code 5 writes to the caller
};

class BlobCode : public ::testing::TestWithParam<BlobRow> {};

TEST_P(BlobCode, KeepsAtMost512BytesAndReportsTheStoredSize) {
  const BlobRow row = GetParam();
  Guarded g;
  std::memset(g.block.text, 'T', sizeof g.block.text);
  std::vector<unsigned char> source(row.stored);
  for (std::size_t k = 0; k < source.size(); ++k) source[k] = static_cast<unsigned char>(k * 7 + 1);

  SHAREDBLOB in{row.stored, source.data()};
  EXPECT_EQ(g.run(4, &in), 1);
  EXPECT_EQ(g.block.blob_size, row.kept);
  EXPECT_EQ(g.block.text[0], 'T') << "blob ran into the text buffer";

  std::vector<unsigned char> out(row.requested + 16, 0xEE);
  SHAREDBLOB back{row.requested, out.data()};
  EXPECT_EQ(g.run(5, &back), 1);
  EXPECT_EQ(back.nSize, row.kept);
  for (std::size_t k = 0; k < out.size(); ++k) {
    const unsigned char want = k < row.copied ? (k < row.kept ? source[k] : 0) : 0xEE;
    ASSERT_EQ(out[k], want) << "byte " << k;
  }
  EXPECT_TRUE(g.guard_intact());
}

// A short read still reports the full size; a read past the blob stays inside the buffer.
INSTANTIATE_TEST_SUITE_P(Sizes, BlobCode,
                         ::testing::Values(BlobRow{10, 4, 10, 4}, BlobRow{10, 20, 10, 20},
                                           BlobRow{0, 8, 0, 8}, BlobRow{512, 512, 512, 512},
                                           BlobRow{513, 513, 512, 512}, BlobRow{600, 1000, 512, 512}),
                         test::RowIndex());

TEST(SharedOperations, BlobWithoutBytes) {
  Guarded g;
  SHAREDBLOB none{0, nullptr};  // an empty blob needs no bytes
  EXPECT_EQ(g.run(4, &none), 1);
  EXPECT_EQ(g.block.blob_size, 0u);
  SHAREDBLOB bad{3, nullptr};
  for (const void* argument : {static_cast<const void*>(&bad), static_cast<const void*>(nullptr)}) {
    EXPECT_EQ(g.run(4, argument), KERFLINE_BAD_ARGUMENT);
    EXPECT_EQ(g.run(5, argument), KERFLINE_BAD_ARGUMENT);
  }
}

class TextCode : public ::testing::TestWithParam<std::size_t> {};

// Texts are cut to the buffer less its NUL.
TEST_P(TextCode, RoundTripsAndCutsToTheBuffer) {
  Guarded g;
  std::string text(GetParam(), 'n');
  for (std::size_t k = 0; k < text.size(); ++k) text[k] = static_cast<char>('a' + k % 26);
  EXPECT_EQ(g.run(12, nullptr), KERFLINE_BAD_ARGUMENT);
  EXPECT_EQ(g.run(13, nullptr), KERFLINE_BAD_ARGUMENT);
  EXPECT_EQ(g.run(12, text.c_str()), 1);
  EXPECT_TRUE(g.guard_intact());

  std::vector<char> out(KERFLINE_SHARED_TEXT_SIZE + 16, '#');
  EXPECT_EQ(g.run(13, out.data()), 1);
  const std::size_t kept = std::min<std::size_t>(text.size(), 3383);
  EXPECT_EQ(std::string(out.data()), text.substr(0, kept));
  EXPECT_EQ(out[kept + 1], '#') << "wrote past the terminating NUL";
}

INSTANTIATE_TEST_SUITE_P(Lengths, TextCode, ::testing::Values(0, 9, 3383, 3384, 5000), test::RowIndex());

}  // namespace
}  // namespace kerfline::device
