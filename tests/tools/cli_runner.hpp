// Runs the built kerfline tool as a user would and captures what it prints.
#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace kerfline::test {

struct CliResult {
  int exit_code = -1;
  std::string out;  // stdout and stderr together
};

inline CliResult run_cli(const std::string& args) {
  CliResult r;
  const std::string cmd = std::string("'") + KERFLINE_CLI + "' " + args + " 2>&1";
  FILE* pipe = popen(cmd.c_str(), "r");
  if (pipe == nullptr) return r;
  std::array<char, 4096> buf{};
  std::size_t n = 0;
  while ((n = std::fread(buf.data(), 1, buf.size(), pipe)) > 0) r.out.append(buf.data(), n);
  const int status = pclose(pipe);
  r.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return r;
}

}  // namespace kerfline::test
