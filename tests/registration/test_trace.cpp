#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "registration/probe_sets.hpp"
#include "registration/trace_text.hpp"

using kerfline::test::job_with;
using kerfline::test::mark;
using kerfline::test::OwnedSet;
using kerfline::test::TempDir;

namespace {

std::string circle(double x, double y, double size) {
  std::vector<char> buf(1024);
  const int32_t n = FrmtHpglCircle(x, y, size, buf.data());
  EXPECT_EQ(n, static_cast<int32_t>(std::string(buf.data()).size()));
  return buf.data();
}

std::vector<std::filesystem::path> plot_files(const TempDir& dir) {
  std::vector<std::filesystem::path> files;
  for (const auto& e : std::filesystem::directory_iterator(dir.path())) files.push_back(e.path());
  return files;
}

}  // namespace

// Pen up on the circle, then a full arc; the numbers read exactly as the C
// library's "%f" writes them.
TEST(FrmtHpglCircle, PenUpOnTheCircleThenAFullArc) {
  EXPECT_EQ(circle(-2.5, 1.25, 10), "PU 1.000000,0.500000;\r\nAA -1.000000,0.500000,360;\r\n");
  const double values[] = {0.0, -0.0, 1.23456789, -1.0000005, 2.5e-7, -4e-7, 123456789.125, 1e20, 3.0e-300};
  for (const double x : values) {
    for (const double size : {0.0, 1.0, -3.3}) {
      char expected[1024];
      std::snprintf(expected, sizeof expected, "PU %f,%f;\r\nAA %f,%f,360;\r\n", x * 0.4 + size * 0.2,
                    x * 0.4, x * 0.4, x * 0.4);
      EXPECT_EQ(circle(x, x, size), expected) << x << " " << size;
    }
  }
  EXPECT_EQ(FrmtHpglCircle(1, 1, 1, nullptr), -2);
}

TEST(ProbeDataTrace2PLT, WritesBothHalvesThenAppendsTheMeasuredOnes) {
  OwnedSet s;
  s.add(job_with({mark(250, 500, 16), mark(1000, 2000, 8), mark(10, -25, 1), mark(0.5, 0.25, 4)}));
  s.add(job_with({mark(5, 5, 4)}));  // one mark: no measured half
  TempDir dir;

  ASSERT_EQ(ProbeDataTrace2PLT(&s.set, dir.str().c_str(), 1), 1);
  ASSERT_EQ(ProbeDataTrace2PLT(&s.set, "ignored in mode 0", 0), 1);

  const auto files = plot_files(dir);
  ASSERT_EQ(files.size(), 1u);
  const std::string name = files[0].filename().string();
  EXPECT_EQ(name.rfind("IN_", 0), 0u) << name;
  EXPECT_EQ(files[0].extension(), ".plt");
  const std::string both_halves =
      "IN;\r\nPA;\r\nSP6;"
      "PU 200.000000,200.000000;\r\nAA 100.000000,200.000000,360;\r\n"
      "PU 500.000000,800.000000;\r\nAA 400.000000,800.000000,360;\r\n"
      "PU;\r\nSP8;"
      "PU 104.000000,-10.000000;\r\nAA 4.000000,-10.000000,360;\r\n"
      "PU 100.200000,0.100000;\r\nAA 0.200000,0.100000,360;\r\n"
      "IN;\r\nPA;\r\nSP6;PU;\r\nSP8;"
      "PU 102.000000,2.000000;\r\nAA 2.000000,2.000000,360;\r\n";
  const std::string measured_only =
      "IN;\r\nPA;\r\nSP7;"
      "PU;\r\nSP9;PU 200.000000,200.000000;\r\nAA 100.000000,200.000000,360;\r\n"
      "PU;\r\nSP7;PU 500.000000,800.000000;\r\nAA 400.000000,800.000000,360;\r\n"
      "IN;\r\nPA;\r\nSP7;";
  EXPECT_EQ(dir.read(name), both_halves + measured_only);
}

// A failed mode-1 call forgets the file, so mode 0 has none to append to.
TEST(ProbeDataTrace2PLT, EveryModeOneCallStartsANewFile) {
  OwnedSet s;
  s.add(job_with({mark(1, 1), mark(2, 2)}));
  TempDir dir;
  for (const int32_t mode : {1, 2, -1}) ASSERT_EQ(ProbeDataTrace2PLT(&s.set, dir.str().c_str(), mode), 1);
  EXPECT_EQ(plot_files(dir).size(), 3u);
  ASSERT_EQ(ProbeDataTrace2PLT(&s.set, "/nonexistent/kerfline/dir", 1), 0);
  EXPECT_EQ(ProbeDataTrace2PLT(&s.set, nullptr, 0), 0);
  EXPECT_EQ(ProbeDataTrace2PLT(&s.set, nullptr, 1), 0);
  EXPECT_EQ(ProbeDataTrace2PLT(nullptr, "/tmp", 1), -2);
}

struct PenCase {
  int32_t flag;
  const char* pen;
};

class PenByFlag : public ::testing::TestWithParam<PenCase> {};

TEST_P(PenByFlag, ModeZeroSelectsThePenBeforeEachMeasuredMark) {
  OwnedSet first, s;
  s.add(job_with({mark(10, 20, GetParam().flag), mark(30, 40, 8)}));
  TempDir dir;
  ASSERT_EQ(ProbeDataTrace2PLT(&first.set, dir.str().c_str(), 1), 1);  // an empty set: an empty file
  ASSERT_EQ(ProbeDataTrace2PLT(&s.set, nullptr, 0), 1);
  const auto files = plot_files(dir);
  ASSERT_EQ(files.size(), 1u);
  EXPECT_EQ(dir.read(files[0].filename().string()),
            std::string("IN;\r\nPA;\r\nSP7;") + GetParam().pen +
                "PU 104.000000,8.000000;\r\nAA 4.000000,8.000000,360;\r\n");
}

INSTANTIATE_TEST_SUITE_P(Table, PenByFlag,
                         ::testing::Values(PenCase{8, "PU;\r\nSP7;"}, PenCase{16, "PU;\r\nSP9;"},
                                           PenCase{4, "PU;\r\nSP5;"}, PenCase{1, "PU;\r\nSP10;"},
                                           PenCase{0, ""}, PenCase{2, ""}, PenCase{24, ""}, PenCase{-8, ""}),
                         kerfline::test::RowIndex());

TEST(ProbeDataTrace, DumpCountsMarksAcrossBothHalves) {
  OwnedSet s;
  s.set.dwFlags = 3;
  PROBEJOB job = job_with({mark(1, 2, 4, 0.5), mark(3, 4, 1), mark(5, 6, 0)}, 7);
  job.dRotation = 1.5;
  s.add(job);
  EXPECT_EQ(kerfline::registration::format_trace(s.set),
            "JobCount: 1\nFlags:3\n"
            "Eintrag: 0\nMarkCount: 3\nMarkSize: 5.000000\nRotation: 1.500000\nFlags: 7\n"
            "Act: x(0): 1.000000\nAct: y(0): 2.000000 Size: 0.500000 Flag: 4\n"
            "Org: x(1): 3.000000\nOrg: y(1):4.000000 Size: 5.000000 Flag: 1\n"
            "Org: x(2): 5.000000\nOrg: y(2):6.000000 Size: 5.000000 Flag: 0\n");
  EXPECT_EQ(ProbeDataTrace(&s.set), 1);
}
