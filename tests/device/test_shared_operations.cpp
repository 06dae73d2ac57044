// SharedDataMan's operations on a fresh block: each code touches exactly the
// field it names, and nothing is ever written outside the block.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "device/shared_block.hpp"
#include "fixtures/table_names.hpp"

namespace kerfline::device {
namespace {

// A block with guard bytes behind it, so that a write past its end shows.
struct Guarded {
  SharedBlock block;
  unsigned char guard[64];
};

std::unique_ptr<Guarded> fresh() {
  auto g = std::make_unique<Guarded>();
  std::memset(g->guard, 0xA5, sizeof g->guard);
  return g;
}

bool guard_intact(const Guarded& g) {
  for (const unsigned char b : g.guard) {
    if (b != 0xA5) return false;
  }
  return true;
}

std::vector<unsigned char> bytes(const SharedBlock& b) {
  const auto* p = reinterpret_cast<const unsigned char*>(&b);
  return {p, p + sizeof b};
}

std::uintptr_t arg(const void* p) { return reinterpret_cast<std::uintptr_t>(p); }

enum class Kind { SetDouble, GetDouble, SetInt, GetInt };

struct FieldRow {
  int code;
  Kind kind;
  std::size_t offset;  // of the field in the block
};

// The coordinate codes as the operation table lists them, entry 1 to 6.
constexpr int kSetFirst[] = {6, 14, 20, 26, 32, 38};
constexpr int kSetSecond[] = {7, 15, 21, 27, 33, 39};
constexpr int kSetThird[] = {8, 16, 22, 28, 34, 40};
constexpr int kGetFirst[] = {9, 17, 23, 29, 35, 41};
constexpr int kGetSecond[] = {10, 18, 24, 30, 36, 42};
constexpr int kGetThird[] = {11, 19, 25, 31, 37, 43};

std::vector<FieldRow> field_rows() {
  std::vector<FieldRow> rows;
  for (std::size_t e = 0; e < 6; ++e) {
    rows.push_back({kSetFirst[e], Kind::SetDouble, 8 + 8 * e});
    rows.push_back({kSetSecond[e], Kind::SetDouble, 56 + 8 * e});
    rows.push_back({kSetThird[e], Kind::SetDouble, 104 + 8 * e});
    rows.push_back({kGetFirst[e], Kind::GetDouble, 8 + 8 * e});
    rows.push_back({kGetSecond[e], Kind::GetDouble, 56 + 8 * e});
    rows.push_back({kGetThird[e], Kind::GetDouble, 104 + 8 * e});
  }
  const FieldRow values[] = {
      {44, Kind::SetDouble, 152}, {45, Kind::GetDouble, 152},  // D
      {46, Kind::SetDouble, 160}, {47, Kind::GetDouble, 160},  // E
      {48, Kind::SetDouble, 168}, {49, Kind::GetDouble, 168},  // F
      {50, Kind::SetInt, 176},    {51, Kind::GetInt, 176},     // G
      {52, Kind::SetDouble, 184}, {54, Kind::GetDouble, 184},  // H
      {53, Kind::SetDouble, 192}, {55, Kind::GetDouble, 192},  // I
  };
  rows.insert(rows.end(), std::begin(values), std::end(values));
  return rows;
}

class FieldCode : public ::testing::TestWithParam<FieldRow> {};

TEST_P(FieldCode, TouchesOnlyItsField) {
  const FieldRow row = GetParam();
  auto g = fresh();
  const double d = -1234.5625;
  const std::int32_t i = -77;
  switch (row.kind) {
    case Kind::SetDouble:
    case Kind::SetInt: {
      std::vector<unsigned char> expected = bytes(g->block);
      const void* value = row.kind == Kind::SetDouble ? static_cast<const void*>(&d) : &i;
      const std::size_t width = row.kind == Kind::SetDouble ? sizeof d : sizeof i;
      std::memcpy(expected.data() + row.offset, value, width);
      EXPECT_EQ(run_shared_operation(g->block, row.code, arg(value)), 1);
      EXPECT_EQ(bytes(g->block), expected);
      break;
    }
    case Kind::GetDouble: {
      auto* raw = reinterpret_cast<unsigned char*>(&g->block);
      std::memcpy(raw + row.offset, &d, sizeof d);
      const std::vector<unsigned char> before = bytes(g->block);
      double out = 0;
      EXPECT_EQ(run_shared_operation(g->block, row.code, arg(&out)), 1);
      EXPECT_EQ(out, d);
      EXPECT_EQ(bytes(g->block), before);
      break;
    }
    case Kind::GetInt: {
      auto* raw = reinterpret_cast<unsigned char*>(&g->block);
      std::memcpy(raw + row.offset, &i, sizeof i);
      std::int32_t out = 0;
      EXPECT_EQ(run_shared_operation(g->block, row.code, arg(&out)), 1);
      EXPECT_EQ(out, i);
      break;
    }
  }
  EXPECT_TRUE(guard_intact(*g));
}

INSTANTIATE_TEST_SUITE_P(AllCodes, FieldCode, ::testing::ValuesIn(field_rows()), test::RowIndex());

TEST(SharedOperations, EveryPointerCodeRefusesNull) {
  auto g = fresh();
  const std::vector<unsigned char> before = bytes(g->block);
  for (int code = 4; code <= 55; ++code) {
    EXPECT_EQ(run_shared_operation(g->block, code, 0), -2) << "code " << code;
  }
  EXPECT_EQ(bytes(g->block), before);
}

struct FlagRow {
  std::uint32_t set;    // code 1
  std::uint32_t clear;  // then code 2
  std::uint32_t mask;   // then code 3
  int expected;
  std::uint32_t flags;  // afterwards
};

class FlagCode : public ::testing::TestWithParam<FlagRow> {};

TEST_P(FlagCode, SetsClearsAndTests) {
  const FlagRow row = GetParam();
  auto g = fresh();
  EXPECT_EQ(run_shared_operation(g->block, 1, row.set), 1);
  EXPECT_EQ(run_shared_operation(g->block, 2, row.clear), 1);
  EXPECT_EQ(run_shared_operation(g->block, 3, row.mask), row.expected);
  EXPECT_EQ(g->block.flags, row.flags);
}

INSTANTIATE_TEST_SUITE_P(Masks, FlagCode,
                         ::testing::Values(FlagRow{0, 0, 0, 1, 0},  // mask 0 always passes
                                           FlagRow{0x1C, 0, 0x0C, 1, 0x1C},
                                           FlagRow{0x1C, 0, 0x0E, 0, 0x1C},  // one bit missing
                                           FlagRow{0x1C, 0x10, 0x10, 0, 0x0C},
                                           FlagRow{0x0F, 0x33, 0x0C, 1, 0x0C},  // clears only set bits
                                           FlagRow{0xFFFFFFFF, 0, 0xFFFFFFFF, 1, 0xFFFFFFFF},
                                           FlagRow{0xFFFFFFFF, 0x80000000, 0xFFFFFFFF, 0, 0x7FFFFFFF}),
                         test::RowIndex());

TEST(SharedOperations, FlagMaskIgnoresBitsAbove32) {
  auto g = fresh();
  run_shared_operation(g->block, 1, 0x4);
  const std::uintptr_t wide = sizeof(std::uintptr_t) > 4 ? ~std::uintptr_t{0xFFFFFFFF} | 0x4 : 0x4;
  EXPECT_EQ(run_shared_operation(g->block, 3, wide), 1);
}

struct BlobRow {
  std::uint32_t stored;     // size handed to code 4
  std::uint32_t requested;  // descriptor size for code 5
  std::uint32_t kept;       // bytes in the block afterwards
  std::uint32_t copied;     // bytes code 5 writes to the caller
};

class BlobCode : public ::testing::TestWithParam<BlobRow> {};

TEST_P(BlobCode, KeepsAtMost512BytesAndReportsTheStoredSize) {
  const BlobRow row = GetParam();
  auto g = fresh();
  std::memset(g->block.text, 'T', sizeof g->block.text);
  std::vector<unsigned char> source(row.stored);
  for (std::size_t k = 0; k < source.size(); ++k) source[k] = static_cast<unsigned char>(k * 7 + 1);

  SHAREDBLOB in{row.stored, source.data()};
  EXPECT_EQ(run_shared_operation(g->block, 4, arg(&in)), 1);
  EXPECT_EQ(g->block.blob_size, row.kept);
  EXPECT_EQ(g->block.text[0], 'T') << "blob ran into the text buffer";

  std::vector<unsigned char> out(row.requested + 16, 0xEE);
  SHAREDBLOB back{row.requested, out.data()};
  EXPECT_EQ(run_shared_operation(g->block, 5, arg(&back)), 1);
  EXPECT_EQ(back.nSize, row.kept);
  for (std::size_t k = 0; k < out.size(); ++k) {
    const unsigned char want = k < row.copied ? (k < row.kept ? source[k] : 0) : 0xEE;
    ASSERT_EQ(out[k], want) << "byte " << k;
  }
  EXPECT_TRUE(guard_intact(*g));
}

INSTANTIATE_TEST_SUITE_P(Sizes, BlobCode,
                         ::testing::Values(BlobRow{10, 4, 10, 4},    // short read, full size reported
                                           BlobRow{10, 20, 10, 20},  // reads past the blob, inside the buffer
                                           BlobRow{0, 8, 0, 8}, BlobRow{512, 512, 512, 512},
                                           BlobRow{513, 513, 512, 512}, BlobRow{600, 1000, 512, 512}),
                         test::RowIndex());

TEST(SharedOperations, BlobSizeFromAnotherWriterIsCapped) {
  auto g = fresh();
  g->block.blob_size = 70000;
  unsigned char out[4] = {};
  SHAREDBLOB back{sizeof out, out};
  EXPECT_EQ(run_shared_operation(g->block, 5, arg(&back)), 1);
  EXPECT_EQ(back.nSize, 512u);
}

TEST(SharedOperations, EmptyBlobWithoutBytesIsAccepted) {
  auto g = fresh();
  g->block.blob_size = 9;
  SHAREDBLOB none{0, nullptr};
  EXPECT_EQ(run_shared_operation(g->block, 4, arg(&none)), 1);
  EXPECT_EQ(g->block.blob_size, 0u);
  SHAREDBLOB bad{3, nullptr};
  EXPECT_EQ(run_shared_operation(g->block, 4, arg(&bad)), -2);
  EXPECT_EQ(run_shared_operation(g->block, 5, arg(&bad)), -2);
}

struct TextRow {
  std::size_t length;
  std::size_t kept;
};

class TextCode : public ::testing::TestWithParam<TextRow> {};

TEST_P(TextCode, RoundTripsAndCutsToTheBuffer) {
  const TextRow row = GetParam();
  auto g = fresh();
  std::string text(row.length, 'n');
  for (std::size_t k = 0; k < text.size(); ++k) text[k] = static_cast<char>('a' + k % 26);
  EXPECT_EQ(run_shared_operation(g->block, 12, arg(text.c_str())), 1);
  EXPECT_TRUE(guard_intact(*g));

  std::vector<char> out(KERFLINE_SHARED_TEXT_SIZE + 16, '#');
  EXPECT_EQ(run_shared_operation(g->block, 13, arg(out.data())), 1);
  EXPECT_EQ(std::string(out.data()), text.substr(0, row.kept));
  EXPECT_EQ(out[row.kept + 1], '#') << "wrote past the terminating NUL";
}

INSTANTIATE_TEST_SUITE_P(Lengths, TextCode,
                         ::testing::Values(TextRow{0, 0}, TextRow{9, 9}, TextRow{3383, 3383},
                                           TextRow{3384, 3383}, TextRow{5000, 3383}),
                         test::RowIndex());

TEST(SharedOperations, UnterminatedTextBufferIsCopiedOutTerminated) {
  auto g = fresh();
  std::memset(g->block.text, 'x', sizeof g->block.text);  // as a foreign writer could leave it
  std::vector<char> out(KERFLINE_SHARED_TEXT_SIZE, '#');
  EXPECT_EQ(run_shared_operation(g->block, 13, arg(out.data())), 1);
  EXPECT_EQ(std::string(out.data()).size(), KERFLINE_SHARED_TEXT_SIZE - 1);
}

TEST(SharedOperations, TextIsCopiedNotReferenced) {
  auto g = fresh();
  char name[] = "Plotter A";
  run_shared_operation(g->block, 12, arg(name));
  name[0] = 'X';
  char out[KERFLINE_SHARED_TEXT_SIZE];
  run_shared_operation(g->block, 13, arg(out));
  EXPECT_STREQ(out, "Plotter A");
}

}  // namespace
}  // namespace kerfline::device
