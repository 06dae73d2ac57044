#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "answer_table.hpp"
#include "fixtures/table_names.hpp"
#include "options.hpp"
#include "plotter.hpp"

namespace kerfline::sim {
namespace {

std::string answers_of(Plotter& p, std::string_view bytes) {
  std::vector<std::string> answers;
  p.feed(bytes, answers);
  std::string all;
  for (auto& a : answers) all += a;
  return all;
}

class AnswerTable : public ::testing::TestWithParam<test::AnswerRow> {};

TEST_P(AnswerTable, AnswersAsAPlotterDoesWholeOrOneByteAtATime) {
  Plotter whole;
  EXPECT_EQ(answers_of(whole, GetParam().sent), GetParam().answer);
  Plotter bytewise;
  std::string all;
  for (char c : GetParam().sent) all += answers_of(bytewise, std::string_view(&c, 1));
  EXPECT_EQ(all, GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(Queries, AnswerTable, ::testing::ValuesIn(test::answer_table()), test::RowIndex{});

TEST(Plotter, FollowsPensSpeedsAndForces) {
  Plotter p;
  answers_of(p, "IN;VS20;FS80,2;SP2;VS35,2;");
  EXPECT_EQ(p.pen(), 2);
  EXPECT_EQ(p.velocity(1), 20);
  EXPECT_EQ(p.velocity(2), 35);
  EXPECT_EQ(p.force(2), 80);
  EXPECT_EQ(p.force(1), 0);
}

TEST(Plotter, SvgHasOneGroupPerPenAndEachPenDownRunAsAPolyline) {
  Plotter p;
  answers_of(p, "IN;SP1;PU100,100;PD1100,100,1100,1100,100,1100,100,100;PU;SP2;PA0,0;PD50,0;PU;PD;PA60,0;");
  ASSERT_EQ(p.strokes().size(), 3u);
  const std::string svg = render_svg(p);
  EXPECT_NE(svg.find("viewBox=\"0 0 24000 16000\""), std::string::npos);
  EXPECT_NE(svg.find("width=\"600mm\" height=\"400mm\""), std::string::npos);
  const auto pen1 = svg.find("<g id=\"pen-1\"");
  const auto pen2 = svg.find("<g id=\"pen-2\"");
  ASSERT_NE(pen1, std::string::npos);
  ASSERT_NE(pen2, std::string::npos);
  const auto square = svg.find("<polyline points=\"100,100 1100,100 1100,1100 100,1100 100,100\"/>");
  EXPECT_GT(square, pen1);
  EXPECT_LT(square, pen2);
  EXPECT_GT(svg.find("<polyline points=\"0,0 50,0\"/>"), pen2);
  EXPECT_GT(svg.find("<polyline points=\"50,0 60,0\"/>"), pen2);
}

TEST(Plotter, HostileInputStaysBounded) {
  Plotter p;
  std::string huge = "IN;PA";
  huge.append(100000, '1');
  huge += ";OE;";
  EXPECT_EQ(answers_of(p, huge), "7\r");
  // Position overflow and an endless label leave no trace in what was cut.
  EXPECT_EQ(answers_of(p, "PD1e300,0;OE;"), "3\r");
  EXPECT_EQ(answers_of(p, "LB" + std::string(100000, 'x')), "");
  EXPECT_TRUE(p.strokes().empty());
}

struct OptionRow {
  std::vector<std::string> args;
  std::string error;  // empty: accepted
};

class OptionTable : public ::testing::TestWithParam<OptionRow> {};

TEST_P(OptionTable, AcceptsOrNamesTheProblem) {
  std::string error;
  auto o = parse_options(GetParam().args, error);
  if (GetParam().error.empty()) {
    EXPECT_TRUE(o.has_value()) << error;
  } else {
    EXPECT_FALSE(o.has_value());
    EXPECT_NE(error.find(GetParam().error), std::string::npos) << error;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, OptionTable,
    ::testing::Values(OptionRow{{"--pty"}, ""}, OptionRow{{"--tcp", "0", "--flood=5", "--once"}, ""},
                      OptionRow{{"--fifo=/tmp", "--refuse", "2", "--clip", "100,50"}, ""},
                      OptionRow{{}, "choose one of"}, OptionRow{{"--pty", "--tcp", "1"}, "choose one of"},
                      OptionRow{{"--tcp", "70000"}, "bad value for --tcp"},
                      OptionRow{{"--pty", "--delay-ms", "-1"}, "bad value for --delay-ms"},
                      OptionRow{{"--pty", "--clip", "100"}, "bad value for --clip"},
                      OptionRow{{"--pty", "--refuse", "1"}, "not available with --pty"},
                      OptionRow{{"--pty", "--svg"}, "--svg needs a value"},
                      OptionRow{{"--pty", "--path-file", "/tmp/p"}, ""},
                      OptionRow{{"--pty", "--path-file"}, "--path-file needs a value"},
                      OptionRow{{"--pty", "--flood=0"}, "bad value for --flood"},
                      OptionRow{{"--pty", "--bogus"}, "unknown option --bogus"}),
    test::RowIndex{});

}  // namespace
}  // namespace kerfline::sim
