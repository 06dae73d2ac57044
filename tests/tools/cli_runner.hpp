// Runs the kerfline tool (or a shell line) and captures stdout and stderr.
#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace kerfline::test {

struct CliResult {
  int exit_code = -1;
  std::string out;
};
inline CliResult run_shell(const std::string& command) {
  CliResult r;
  FILE* pipe = popen(("{ " + command + "; } 2>&1").c_str(), "r");
  if (pipe == nullptr) return r;
  std::array<char, 4096> buf{};
  for (std::size_t n = 0; (n = std::fread(buf.data(), 1, buf.size(), pipe)) > 0;) r.out.append(buf.data(), n);
  const int status = pclose(pipe);
  r.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return r;
}
inline CliResult run_cli(const std::string& args) {
  return run_shell(std::string("'") + KERFLINE_CLI + "' " + args);
}

}  // namespace kerfline::test
