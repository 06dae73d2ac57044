// Words on the command line that are not commands: say which word it was and
// what the choices are, instead of CLI11's "A subcommand is required".
#pragma once

#include <CLI/CLI.hpp>

namespace kerfline::cli {

// Lets every command that needs a subcommand collect unknown words, so that
// they can be named.
void collect_unknown_words(CLI::App& app);

// After a parse: reports a missing or unknown subcommand, or words no
// command takes. Returns the exit code, or -1 when the command line is fine.
int check_command_words(const CLI::App& app);

}  // namespace kerfline::cli
