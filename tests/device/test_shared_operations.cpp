// SharedDataMan's operations on a fresh block: each code touches exactly the
// field it names, and nothing is ever written outside the block.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <ostream>
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

struct FieldRow {
  int code;
  bool set;            // else get
  std::size_t offset;  // of the field in the block
  std::size_t width;   // 8 for a double, 4 for value G
};

void PrintTo(const FieldRow& r, std::ostream* os) { *os << "code " << r.code; }

std::vector<FieldRow> field_rows() {
  // Coordinate entry e (0 to 5) has six consecutive codes from 6, 14, 20, ...:
  // set first, second, third, then get first, second, third.
  std::vector<FieldRow> rows;
  for (std::size_t e = 0; e < 6; ++e) {
    const int base = e == 0 ? 6 : 8 + 6 * static_cast<int>(e);
    for (int k = 0; k < 6; ++k)
      rows.push_back({base + k, k < 3, 8 + 48 * static_cast<std::size_t>(k % 3) + 8 * e, 8});
  }
  const FieldRow values[] = {
      {44, true, 152, 8}, {45, false, 152, 8},  // D
      {46, true, 160, 8}, {47, false, 160, 8},  // E
      {48, true, 168, 8}, {49, false, 168, 8},  // F
      {50, true, 176, 4}, {51, false, 176, 4},  // G
      {52, true, 184, 8}, {54, false, 184, 8},  // H
      {53, true, 192, 8}, {55, false, 192, 8},  // I
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
  const void* value = row.width == 8 ? static_cast<const void*>(&d) : &i;
  auto* raw = reinterpret_cast<unsigned char*>(&g->block);
  if (row.set) {
    std::vector<unsigned char> expected = bytes(g->block);
    std::memcpy(expected.data() + row.offset, value, row.width);
    EXPECT_EQ(run_shared_operation(g->block, row.code, arg(value)), 1);
    EXPECT_EQ(bytes(g->block), expected);
  } else {
    std::memcpy(raw + row.offset, value, row.width);
    const std::vector<unsigned char> before = bytes(g->block);
    unsigned char out[8] = {};
    EXPECT_EQ(run_shared_operation(g->block, row.code, arg(out)), 1);
    EXPECT_EQ(std::memcmp(out, value, row.width), 0);
    EXPECT_EQ(bytes(g->block), before);
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

void PrintTo(const FlagRow& r, std::ostream* os) {
  *os << std::hex << "set " << r.set << " clear " << r.clear << " mask " << r.mask;
}

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

struct BlobRow {
  std::uint32_t stored;     // size handed to code 4
  std::uint32_t requested;  // descriptor size for code 5
  std::uint32_t kept;       // bytes in the block afterwards
  std::uint32_t copied;     // bytes code 5 writes to the caller
};

void PrintTo(const BlobRow& r, std::ostream* os) { *os << "store " << r.stored << " read " << r.requested; }

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

TEST(SharedOperations, BlobEdgeCases) {
  auto g = fresh();
  SHAREDBLOB none{0, nullptr};  // an empty blob needs no bytes
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

void PrintTo(const TextRow& r, std::ostream* os) { *os << "length " << r.length; }

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

}  // namespace
}  // namespace kerfline::device
