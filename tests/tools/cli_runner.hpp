// Runs the kerfline tool as a child process, no shell in between, with its
// standard output and error captured together in a file.
#pragma once

#include <string>

namespace kerfline::test {

struct CliResult {
  int exit_code = -1;  // -1: did not start or did not end by returning
  std::string out;     // standard output and error, in the order written
};

// Runs the tool with `args`, a command line split the way Windows programs
// split theirs: blanks separate, double quotes group, \" is a literal quote.
CliResult run_cli(const std::string& args);

#ifndef _WIN32
// A POSIX shell line in which the word `kerfline` stands for the tool, for
// what only a shell gives: redirections, limits, the guides' examples.
CliResult run_shell(const std::string& line);
#endif

}  // namespace kerfline::test
