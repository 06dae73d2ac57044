// Every console example of the guides runs as written and prints what the
// guide shows; the vocabulary page is what the tool prints.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "cli_runner.hpp"
#include "fixtures/temp_dir.hpp"

using kerfline::test::run_cli;
using kerfline::test::TempDir;

namespace {

std::string read_doc(const std::string& name) {
  std::ifstream in(std::string(KERFLINE_SOURCE_DIR) + "/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

struct Example {
  std::string command;  // a shell command line, "kerfline" standing for the tool
  std::string expected;
};

// The "$ " lines of ```console blocks, each with the lines after it.
[[maybe_unused]] std::vector<Example> console_examples(const std::string& doc) {
  std::vector<Example> out;
  std::istringstream lines(doc);
  bool in_block = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("```", 0) == 0) {
      in_block = !in_block && line == "```console";
    } else if (in_block && line.rfind("$ ", 0) == 0) {
      out.push_back({line.substr(2), ""});
    } else if (in_block && !out.empty()) {
      out.back().expected += (out.back().expected.empty() ? "" : "\n") + line;
    }
  }
  return out;
}

}  // namespace

TEST(DocExamples, RunAsWritten) {
#ifdef _WIN32
  GTEST_SKIP() << "the examples are POSIX shell lines";
#else
  TempDir dir;
  for (const auto& entry : std::filesystem::directory_iterator(KERFLINE_BUILT_EXAMPLES_DIR)) {
    if (entry.path().extension() == ".vmd")
      std::filesystem::copy_file(entry.path(), dir.path() / entry.path().filename());
  }
  for (const char* doc : {"docs/templates.md", "README.md"}) {
    const auto examples = console_examples(read_doc(doc));
    EXPECT_FALSE(examples.empty()) << doc;
    for (const Example& e : examples) {
      const auto r = kerfline::test::run_shell("cd '" + dir.str() + "' && " + e.command);
      std::string out = r.out;
      if (!out.empty() && out.back() == '\n') out.pop_back();
      EXPECT_EQ(r.exit_code, 0) << e.command;
      EXPECT_EQ(out, e.expected) << e.command;
    }
  }
#endif
}

TEST(VocabularyPage, IsWhatTheToolPrints) {
  const std::string page = read_doc("docs/vocabulary.md");
  const auto printed = run_cli("driver vocabulary");
  ASSERT_EQ(printed.exit_code, 0);
  EXPECT_EQ(page.substr(page.find("| number |")), printed.out);
}
