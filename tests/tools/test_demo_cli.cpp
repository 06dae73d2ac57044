// `kerfline demo` end to end: its last section cuts on the simulated cutter
// over a pseudo-terminal and reads the picture of the cut.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "cli_runner.hpp"

namespace {

namespace fs = std::filesystem;

TEST(DemoCli, CutsOnTheSimulatedCutter) {
#ifdef _WIN32
  GTEST_SKIP() << "the demo cuts on kerfline-sim over a pseudo-terminal";
#endif
  const auto r = kerfline::test::run_cli("demo --keep");
  const auto line_after = [&](const std::string& prefix) {
    const auto at = r.out.find(prefix);
    return at == std::string::npos
               ? ""
               : r.out.substr(at + prefix.size(), r.out.find('\n', at) - at - prefix.size());
  };
  // Kept so the SVG can be read; removed here whatever the outcome.
  const std::string suite = line_after("demo, suite directory ");
  ASSERT_FALSE(suite.empty()) << r.out;
  const std::shared_ptr<void> cleanup(nullptr, [&](void*) {
    std::error_code ec;
    fs::remove_all(suite, ec);
  });
  EXPECT_EQ(r.exit_code, 0) << r.out;
  EXPECT_EQ(line_after("query OI; -> "), "KERFLINE-SIM") << r.out;
  EXPECT_EQ(line_after("query OA; -> "), "1000,1000,1")
      << r.out;  // the square ends where it began, tool down

  const std::string svg_line = line_after("SVG of the cut: ");
  const fs::path svg = svg_line.substr(0, svg_line.find(" ("));
  EXPECT_EQ(svg.parent_path(), fs::path(suite));
  std::ifstream in(svg, std::ios::binary);
  ASSERT_TRUE(in) << svg;
  const std::string picture(std::istreambuf_iterator<char>(in), {});
  std::size_t strokes = 0;
  for (auto at = picture.find("<polyline"); at != std::string::npos; at = picture.find("<polyline", at + 1))
    ++strokes;
  EXPECT_GE(strokes, 1u);
  EXPECT_NE(svg_line.find("(strokes: " + std::to_string(strokes) + ")"), std::string::npos) << svg_line;
}

}  // namespace
