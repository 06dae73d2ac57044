// kerfline: use the library from a shell, without writing a host program.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "cli_io.hpp"
#include "command_words.hpp"
#include "commands.hpp"
#include "kerfline/kerfline.h"
#include "message_boxes.hpp"
#include "platform/standard_streams.hpp"

namespace {

int run(int argc, char** argv) {
  CLI::App app{"kerfline - drivers, templates and devices of the Kerfline cutter library", "kerfline"};
  app.allow_windows_style_options(false);  // "/abs/path" is a path, not an option
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("kerfline ") + KerflineGetVersion());

  std::string home;
  app.add_option("--home", home, "Suite directory (default: $KERFLINE_HOME, else the tool's directory)")
      ->envname("KERFLINE_HOME");

  kerfline::cli::CommandList commands;
  kerfline::cli::register_version(app, commands);
  kerfline::cli::register_check(app, commands);
  kerfline::cli::register_driver(app, commands);
  kerfline::cli::register_eval(app, commands);
  kerfline::cli::register_demo(app, commands);
  kerfline::cli::register_functions(app, commands);
  kerfline::cli::register_devices(app, commands);
  kerfline::cli::register_remote(app, commands);
  kerfline::cli::register_device(app, commands);
  kerfline::cli::collect_unknown_words(app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() != 0) {
      const int words = kerfline::cli::check_command_words(app);
      if (words >= 0) return words;
    }
    const int code = app.exit(e);
    return code == 0 ? 0 : kerfline::cli::kExitUsage;
  }
  if (const int words = kerfline::cli::check_command_words(app); words >= 0) return words;
  if (!home.empty()) KerflineSetHomeDir(home.c_str());
  kerfline::cli::install_message_boxes();
  const int result = commands.run_selected();
  // Output that never arrived (a full disk, a closed pipe) is a failure too.
  if (result == kerfline::cli::kExitOk && !kerfline::cli::stdout_intact()) return kerfline::cli::kExitFailure;
  return result;
}

}  // namespace

// A command that fails by exception ends with a message, not with abort().
int main(int argc, char** argv) {
  kerfline::platform::binary_standard_streams();
  try {
    return run(argc, argv);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "kerfline: %s\n", e.what());
  } catch (...) {
    std::fprintf(stderr, "kerfline: unexpected failure\n");
  }
  return EXIT_FAILURE;
}
