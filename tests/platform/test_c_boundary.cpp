// The exception boundary of the exports: what each kind of failure becomes.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>

#include "fixtures/table_names.hpp"
#include "platform/c_boundary.hpp"

namespace {

struct BoundaryRow {
  std::function<std::int32_t()> body;
  std::int32_t failure;
  std::int32_t expected;
};

class Boundary : public ::testing::TestWithParam<BoundaryRow> {};

TEST_P(Boundary, MapsEveryOutcome) {
  const BoundaryRow& row = GetParam();
  static_assert(noexcept(kerfline::platform::guarded(0, row.body)));
  EXPECT_EQ(kerfline::platform::guarded(row.failure, row.body), row.expected);
}

// A value passes; out of memory has its own code; anything else thrown is the caller's failure.
INSTANTIATE_TEST_SUITE_P(Rows, Boundary,
                         ::testing::Values(BoundaryRow{[] { return 7; }, KERFLINE_BAD_ARGUMENT, 7},
                                           BoundaryRow{[]() -> std::int32_t { throw std::bad_alloc(); },
                                                       KERFLINE_BAD_ARGUMENT, KERFLINE_OUT_OF_MEMORY},
                                           BoundaryRow{
                                               []() -> std::int32_t { throw std::length_error("long"); },
                                               KERFLINE_FILE_UNREADABLE, KERFLINE_FILE_UNREADABLE},
                                           BoundaryRow{[]() -> std::int32_t { throw 42; },
                                                       KERFLINE_NOTHING_FOUND, KERFLINE_NOTHING_FOUND}),
                         kerfline::test::RowIndex());

TEST(BoundaryPointer, NullForAnyException) {
  int value = 3;
  EXPECT_EQ(kerfline::platform::guarded_pointer([&value] { return &value; }), &value);
  EXPECT_EQ(kerfline::platform::guarded_pointer([]() -> char* { throw std::bad_alloc(); }), nullptr);
  EXPECT_EQ(kerfline::platform::guarded_pointer([]() -> char* { throw std::string("x"); }), nullptr);
}

}  // namespace
