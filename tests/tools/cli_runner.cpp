#include "cli_runner.hpp"

#include <fstream>
#include <iterator>

#include "fixtures/temp_dir.hpp"
#include "platform/process.hpp"

#ifndef _WIN32
#  include <regex>
#endif

namespace kerfline::test {
namespace {

CliResult run_captured(const std::string& command_line) {
  const TempDir dir;
  auto child = platform::ChildProcess::spawn_captured(command_line, dir.str("out"));
  if (!child) return {-1, child.error().message};
  child->wait();
  std::ifstream in(dir.str("out"), std::ios::binary);
  return {child->exit_code().value_or(-1), std::string(std::istreambuf_iterator<char>(in), {})};
}

}  // namespace

CliResult run_cli(const std::string& args) { return run_captured("\"" KERFLINE_CLI "\" " + args); }

#ifndef _WIN32
CliResult run_shell(const std::string& line) {
  static const std::regex tool_word(R"((^|[;&|( ])kerfline )");
  const std::string script = std::regex_replace(line, tool_word, "$1'" KERFLINE_CLI "' ");
  return run_captured("/bin/sh -c " + platform::quote_command_argument(script));
}
#endif

}  // namespace kerfline::test
