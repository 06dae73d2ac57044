#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"

#include <cstring>

#include "kerfline/kerfline.h"
#include "registration/probe_sets.hpp"

using kerfline::test::job_with;
using kerfline::test::mark;
using kerfline::test::OwnedSet;

// Added jobs keep their order and words; a copy is an empty set with the
// source's flags.
TEST(ProbeData, AddKeepsJobsInOrderWithAllTheirWordsAndCopyTakesOnlyTheFlags) {
  OwnedSet s;
  for (int j = 0; j < 3; ++j) {
    PROBEJOB job = job_with({mark(j, 1), mark(j, 2)}, 100 + j);
    for (int w = 0; w < 66; ++w) job.dwJobData[w] = static_cast<uint32_t>(j * 1000 + w);
    s.add(job);  // the set takes the mark array over
  }
  ASSERT_EQ(s.set.nJobCount, 3);
  for (int j = 0; j < 3; ++j) {
    PROBEJOB got{};
    ASSERT_EQ(ProbeDataGetAt(&s.set, j, &got), 1);
    EXPECT_EQ(got.nFlags, 100 + j);
    EXPECT_EQ(+got.dRotation, 90.0);
    EXPECT_EQ(got.pMarks, s.job(j).pMarks);
    EXPECT_EQ(got.dwJobData[65], static_cast<uint32_t>(j * 1000 + 65));
  }
  OwnedSet dst;
  s.set.dwFlags = 0x80000011u;
  dst.set.dwReserved2[2] = 99;
  EXPECT_EQ(ProbeDataCopy(&dst.set, &s.set), 1);
  EXPECT_EQ(dst.set.dwFlags, 0x80000011u);
  EXPECT_EQ(dst.set.nJobCount, 0);
  EXPECT_EQ(dst.set.pJobs, nullptr);
  EXPECT_EQ(dst.set.dwReserved2[2], 0u);
  EXPECT_EQ(s.set.nJobCount, 3);
}

struct IndexCase {
  int32_t index;
  int32_t job_result;   // over two jobs
  int32_t mark_result;  // over three marks
};

class IndexChecks : public ::testing::TestWithParam<IndexCase> {};

// Out-of-range indices answer 0 and leave the output exactly as it was.
TEST_P(IndexChecks, GetAndSetStayInsideTheArrays) {
  const IndexCase& c = GetParam();
  OwnedSet s;
  s.add(job_with({mark(1, 2), mark(3, 4), mark(5, 6)}));
  s.add(job_with({}));
  PROBEJOB job, job_before;
  std::memset(&job, 0x5A, sizeof(job));
  std::memcpy(&job_before, &job, sizeof(job));  // padding too: the whole image is compared
  EXPECT_EQ(ProbeDataGetAt(&s.set, c.index, &job), c.job_result);
  EXPECT_EQ(std::memcmp(&job, &job_before, sizeof(job)) == 0, c.job_result == 0);

  PROBEPOS pos = mark(-1, -1, -1);
  EXPECT_EQ(ProbeDataGetPosAt(&s.job(0), c.index, &pos), c.mark_result);
  EXPECT_EQ(+pos.x, c.mark_result == 1 ? 1.0 + 2 * c.index : -1.0);
  const PROBEPOS replacement = mark(-7, -8, 16);
  EXPECT_EQ(ProbeDataSetPosAt(&s.job(0), c.index, &replacement), c.mark_result);
  int flagged = 0;
  for (int i = 0; i < 3; ++i) flagged += s.job(0).pMarks[i].nFlag == 16;
  EXPECT_EQ(flagged, c.mark_result);
}

INSTANTIATE_TEST_SUITE_P(Table, IndexChecks,
                         ::testing::Values(IndexCase{-1, 0, 0}, IndexCase{0, 1, 1}, IndexCase{1, 1, 1},
                                           IndexCase{2, 0, 1}, IndexCase{3, 0, 0},
                                           IndexCase{-2147483647 - 1, 0, 0}, IndexCase{2147483647, 0, 0}),
                         kerfline::test::RowIndex());

class Offsets : public ::testing::TestWithParam<int> {};

// ProbeDataOffsetJobMarks moves the measured half (count / 2), ProbeDataOffsetJob every mark.
TEST_P(Offsets, JobMarksMovesOnlyTheMeasuredHalf) {
  const int count = GetParam();
  OwnedSet s;
  s.add(job_with({}));
  for (int i = 0; i < count; ++i) {
    const PROBEPOS m = mark(10.0 * i, 250.0);
    ProbeDataAddPos(&s.job(0), &m);
  }
  EXPECT_EQ(ProbeDataOffsetJobMarks(&s.job(0), 3.0, -1.0), 1);
  EXPECT_EQ(ProbeDataOffsetJob(&s.job(0), 1.0, 1.0), 1);
  for (int i = 0; i < count; ++i) {
    const bool measured = i < count / 2;
    EXPECT_EQ(+s.job(0).pMarks[i].x, 10.0 * i + (measured ? 4.0 : 1.0)) << i;
    EXPECT_EQ(+s.job(0).pMarks[i].y, measured ? 250.0 : 251.0) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, Offsets, ::testing::Values(0, 1, 2, 5, 6), kerfline::test::RowIndex());

TEST(ProbeData, XeneMirrorsEveryMarkOfEveryJob) {
  OwnedSet s;
  s.add(job_with({mark(1, 250), mark(2, 250), mark(3, 250)}));
  s.add(job_with({mark(4, 250)}));
  EXPECT_EQ(ProbeDataTransformXene(&s.set, 1000.0), 1);
  for (int j = 0; j < 2; ++j) {
    for (int i = 0; i < s.job(j).nMarkCount; ++i) EXPECT_EQ(+s.job(j).pMarks[i].y, 750.0);
  }
  PROBEPOS pos{};
  EXPECT_EQ(ProbeDataXeneTecGetPosAt(&s.job(0), 1, &pos, 800.0), 1);
  EXPECT_EQ(+pos.y, 50.0);
  EXPECT_EQ(+s.job(0).pMarks[1].y, 750.0);  // only the copy is mirrored
  EXPECT_EQ(ProbeDataXeneTecGetPosAt(&s.job(0), 3, &pos, 800.0), 0);
  EXPECT_EQ(+pos.y, 50.0);
}

// Counts that do not fit their arrays are read as no entries.
TEST(ProbeData, InconsistentHostRecordsReadNothing) {
  PROBEJOB job{};
  job.nMarkCount = 5;  // but no array
  PROBEPOS pos{};
  EXPECT_EQ(ProbeDataGetPosAt(&job, 0, &pos), 0);
  EXPECT_EQ(ProbeDataOffsetJob(&job, 1, 1), 1);
  ProbeDataAddPos(&job, &pos);  // starts a fresh array
  EXPECT_EQ(job.nMarkCount, 1);
  std::free(job.pMarks);

  PROBEDATA set{};
  set.nJobCount = -4;
  EXPECT_EQ(ProbeDataTransformXene(&set, 1.0), 1);
  EXPECT_EQ(ProbeDataFree(&set), 1);
  EXPECT_EQ(set.nJobCount, 0);
  EXPECT_EQ(ProbeDataGetAt(nullptr, 0, nullptr), -2);
}

struct CellCase {
  int32_t index, rows, columns;
  int32_t result, row, column;
};

class Cells : public ::testing::TestWithParam<CellCase> {};

TEST_P(Cells, RowMajorOrNothing) {
  const CellCase& c = GetParam();
  int32_t row = -99, column = -99;
  EXPECT_EQ(GetCellFromArray(c.index, c.rows, c.columns, &row, &column), c.result);
  EXPECT_EQ(row, c.result == 1 ? c.row : -99);
  EXPECT_EQ(column, c.result == 1 ? c.column : -99);
}

INSTANTIATE_TEST_SUITE_P(Table, Cells,
                         ::testing::Values(CellCase{7, 3, 4, 1, 1, 3}, CellCase{11, 3, 4, 1, 2, 3},
                                           CellCase{12, 3, 4, -1, 0, 0}, CellCase{-1, 3, 4, -1, 0, 0},
                                           CellCase{0, 3, 0, -1, 0, 0},
                                           // 65536 x 65536 cells: the product does not fit 32 bits
                                           CellCase{2147483647, 65536, 65536, 1, 32767, 65535},
                                           CellCase{5, 65536, -65536, -1, 0, 0}),
                         kerfline::test::RowIndex());
