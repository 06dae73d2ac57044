// The tool's commands: each registers a CLI11 subcommand and the function
// that runs it.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <utility>
#include <vector>

namespace kerfline::cli {

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

class CommandList {
 public:
  void add(CLI::App* sub, std::function<int()> run) { commands_.emplace_back(sub, std::move(run)); }

  // Runs the subcommand the user chose.
  int run_selected() const {
    for (const auto& [sub, run] : commands_) {
      if (sub->parsed()) return run();
    }
    return kExitUsage;
  }

 private:
  std::vector<std::pair<CLI::App*, std::function<int()>>> commands_;
};

void register_version(CLI::App& app, CommandList& commands);
void register_check(CLI::App& app, CommandList& commands);
void register_driver(CLI::App& app, CommandList& commands);
// The subcommands of `driver` that work through the C interface.
void register_driver_api(CLI::App& driver, CommandList& commands);
// `driver dialog`: the dialog variables of a driver.
void register_driver_dialog(CLI::App& driver, CommandList& commands);
// `driver vocabulary`: the standard text numbers and their names.
void register_driver_vocabulary(CLI::App& driver, CommandList& commands);
// `driver check`: what a host would stumble over in a driver.
void register_driver_check(CLI::App& driver, CommandList& commands);
void register_eval(CLI::App& app, CommandList& commands);
void register_demo(CLI::App& app, CommandList& commands);
void register_functions(CLI::App& app, CommandList& commands);
void register_devices(CLI::App& app, CommandList& commands);
void register_remote(CLI::App& app, CommandList& commands);
void register_device(CLI::App& app, CommandList& commands);

// What `driver info` and `driver tools` print, for the demo too.
int print_driver_info(const std::string& file, bool as_json = false);
int print_driver_tools(const std::string& file, bool as_json = false);

}  // namespace kerfline::cli
