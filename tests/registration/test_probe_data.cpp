#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"

#include <cstring>
#include <vector>

#include "kerfline/kerfline.h"
#include "registration/probe_sets.hpp"

using kerfline::test::job_with;
using kerfline::test::mark;
using kerfline::test::OwnedSet;

namespace {

std::vector<double> xs(const PROBEJOB& job) {
  std::vector<double> out;
  for (int i = 0; i < job.nMarkCount; ++i) out.push_back(+job.pMarks[i].x);
  return out;
}

PROBEJOB job_of(int marks) {
  PROBEJOB job{};
  for (int i = 0; i < marks; ++i) {
    const PROBEPOS m = mark(10.0 * i, 250.0);
    ProbeDataAddPos(&job, &m);
  }
  return job;
}

}  // namespace

TEST(ProbeData, InitZeroesEveryWord) {
  PROBEDATA set;
  std::memset(&set, 0xA5, sizeof(set));
  EXPECT_EQ(ProbeDataInit(&set), 1);
  const PROBEDATA zero{};
  EXPECT_EQ(std::memcmp(&set, &zero, sizeof(set)), 0);
}

TEST(ProbeData, AddKeepsJobsInOrderWithAllTheirWords) {
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
    EXPECT_EQ(got.nMarkCount, 2);
    EXPECT_EQ(got.pMarks, s.job(j).pMarks);
    EXPECT_EQ(got.dwJobData[0], static_cast<uint32_t>(j * 1000));
    EXPECT_EQ(got.dwJobData[65], static_cast<uint32_t>(j * 1000 + 65));
  }
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

  PROBEJOB job;
  std::memset(&job, 0x5A, sizeof(job));
  const PROBEJOB job_before = job;
  EXPECT_EQ(ProbeDataGetAt(&s.set, c.index, &job), c.job_result);
  if (c.job_result == 0) {
    EXPECT_EQ(std::memcmp(&job, &job_before, sizeof(job)), 0);
  }

  PROBEPOS pos;
  std::memset(&pos, 0x5A, sizeof(pos));
  const PROBEPOS pos_before = pos;
  EXPECT_EQ(ProbeDataGetPosAt(&s.job(0), c.index, &pos), c.mark_result);
  if (c.mark_result == 1) {
    EXPECT_EQ(+pos.x, 1 + 2 * c.index);
  } else {
    EXPECT_EQ(std::memcmp(&pos, &pos_before, sizeof(pos)), 0);
  }
  const PROBEPOS replacement = mark(-7, -8, 16);
  EXPECT_EQ(ProbeDataSetPosAt(&s.job(0), c.index, &replacement), c.mark_result);
  EXPECT_EQ(s.job(0).nMarkCount, 3);
  if (c.mark_result == 1) {
    EXPECT_EQ(s.job(0).pMarks[c.index].nFlag, 16);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, IndexChecks,
                         ::testing::Values(IndexCase{-1, 0, 0}, IndexCase{0, 1, 1}, IndexCase{1, 1, 1},
                                           IndexCase{2, 0, 1}, IndexCase{3, 0, 0},
                                           IndexCase{-2147483647 - 1, 0, 0}, IndexCase{2147483647, 0, 0}),
                         kerfline::test::RowIndex());

TEST(ProbeData, CopyGivesAnEmptySetWithTheSourceFlags) {
  OwnedSet src;
  src.set.dwFlags = 0x80000011u;
  src.add(job_with({mark(1, 1), mark(2, 2)}));
  src.add(job_with({mark(3, 3)}));

  OwnedSet dst;
  dst.set.dwReserved2[2] = 99;
  EXPECT_EQ(ProbeDataCopy(&dst.set, &src.set), 1);
  EXPECT_EQ(dst.set.dwFlags, 0x80000011u);
  EXPECT_EQ(dst.set.nJobCount, 0);
  EXPECT_EQ(dst.set.pJobs, nullptr);
  EXPECT_EQ(dst.set.dwReserved2[2], 0u);
  EXPECT_EQ(src.set.nJobCount, 2);  // the source is untouched
}

struct OffsetCase {
  int marks;
  int moved_by_marks_offset;  // the measured half
};

class Offsets : public ::testing::TestWithParam<OffsetCase> {};

TEST_P(Offsets, JobMovesAllMarksJobMarksOnlyTheMeasuredHalf) {
  const OffsetCase& c = GetParam();
  PROBEJOB job = job_of(c.marks);
  const std::vector<double> before = xs(job);

  EXPECT_EQ(ProbeDataOffsetJobMarks(&job, 3.0, -1.0), 1);
  for (int i = 0; i < c.marks; ++i) {
    const bool moved = i < c.moved_by_marks_offset;
    EXPECT_EQ(+job.pMarks[i].x, before[i] + (moved ? 3.0 : 0.0)) << i;
    EXPECT_EQ(+job.pMarks[i].y, moved ? 249.0 : 250.0) << i;
  }

  EXPECT_EQ(ProbeDataOffsetJob(&job, -3.0, 1.0), 1);
  for (int i = 0; i < c.marks; ++i) {
    const bool moved = i < c.moved_by_marks_offset;
    EXPECT_EQ(+job.pMarks[i].x, before[i] + (moved ? 0.0 : -3.0)) << i;
  }
  std::free(job.pMarks);
}

INSTANTIATE_TEST_SUITE_P(Table, Offsets,
                         ::testing::Values(OffsetCase{0, 0}, OffsetCase{1, 0}, OffsetCase{2, 1},
                                           OffsetCase{5, 2}, OffsetCase{6, 3}),
                         kerfline::test::RowIndex());

TEST(ProbeData, XeneMirrorsEveryMarkOfEveryJob) {
  OwnedSet s;
  s.add(job_with({mark(1, 250), mark(2, 250), mark(3, 250)}));
  s.add(job_with({mark(4, 250)}));
  s.add(job_with({}));
  EXPECT_EQ(ProbeDataTransformXene(&s.set, 1000.0), 1);
  for (int j = 0; j < 2; ++j) {
    for (int i = 0; i < s.job(j).nMarkCount; ++i) EXPECT_EQ(+s.job(j).pMarks[i].y, 750.0);
  }

  PROBEPOS pos{};
  EXPECT_EQ(ProbeDataXeneTecGetPosAt(&s.job(0), 1, &pos, 800.0), 1);
  EXPECT_EQ(+pos.x, 2.0);
  EXPECT_EQ(+pos.y, 50.0);
  EXPECT_EQ(+s.job(0).pMarks[1].y, 750.0);  // only the copy is mirrored
  pos.y = 12.0;
  EXPECT_EQ(ProbeDataXeneTecGetPosAt(&s.job(0), 3, &pos, 800.0), 0);
  EXPECT_EQ(+pos.y, 12.0);

  OwnedSet empty;
  EXPECT_EQ(ProbeDataTransformXene(&empty.set, 1000.0), 1);
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
  EXPECT_EQ(ProbeDataTrace(&set), 1);
  EXPECT_EQ(ProbeDataFree(&set), 1);
  EXPECT_EQ(set.nJobCount, 0);

  EXPECT_EQ(ProbeDataInit(nullptr), -2);
  EXPECT_EQ(ProbeDataGetAt(nullptr, 0, nullptr), -2);
  ProbeDataAdd(nullptr, nullptr);
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

INSTANTIATE_TEST_SUITE_P(
    Table, Cells,
    ::testing::Values(CellCase{7, 3, 4, 1, 1, 3}, CellCase{0, 3, 4, 1, 0, 0}, CellCase{11, 3, 4, 1, 2, 3},
                      CellCase{12, 3, 4, -1, 0, 0}, CellCase{-1, 3, 4, -1, 0, 0}, CellCase{0, 0, 4, -1, 0, 0},
                      CellCase{0, 3, 0, -1, 0, 0},
                      // 65536 x 65536 cells: the product does not fit 32 bits
                      CellCase{2147483647, 65536, 65536, 1, 32767, 65535},
                      CellCase{5, 65536, -65536, -1, 0, 0}),
    kerfline::test::RowIndex());
