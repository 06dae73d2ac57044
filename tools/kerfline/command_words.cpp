#include "command_words.hpp"

#include <cstdio>
#include <string>
#include <vector>

#include "commands.hpp"

namespace kerfline::cli {
namespace {

std::string command_path(const CLI::App* app) {
  std::string path;
  for (const CLI::App* a = app; a != nullptr; a = a->get_parent()) {
    if (!path.empty()) path.insert(0, " ");
    path.insert(0, a->get_name());
  }
  return path.empty() ? "kerfline" : path;
}

void list_commands(const CLI::App& app) {
  std::fprintf(stderr, "commands of %s:\n", command_path(&app).c_str());
  for (const CLI::App* sub : app.get_subcommands({})) {
    std::fprintf(stderr, "  %-12s %s\n", sub->get_name().c_str(), sub->get_description().c_str());
  }
}

}  // namespace

void collect_unknown_words(CLI::App& app) {
  if (app.get_require_subcommand_min() > 0) app.allow_extras();
  for (CLI::App* sub : app.get_subcommands({})) collect_unknown_words(*sub);
}

int check_command_words(const CLI::App& app) {
  const CLI::App* deepest = &app;
  for (bool descended = true; descended;) {
    descended = false;
    for (const CLI::App* sub : deepest->get_subcommands({})) {
      if (sub->parsed()) {
        deepest = sub;
        descended = true;
        break;
      }
    }
  }
  // Unknown words end up with the nearest command that collects them.
  for (const CLI::App* a = deepest; a != nullptr; a = a->get_parent()) {
    const std::vector<std::string> words = a->remaining();
    if (words.empty()) continue;
    if (a == deepest && a->get_require_subcommand_min() > 0) {
      std::fprintf(stderr, "kerfline: \"%s\" is not a command of %s\n", words.front().c_str(),
                   command_path(a).c_str());
      list_commands(*a);
    } else {
      std::fprintf(stderr, "kerfline: %s does not take \"%s\"\n", command_path(deepest).c_str(),
                   words.front().c_str());
    }
    return kExitUsage;
  }
  if (deepest->get_require_subcommand_min() > 0) {
    std::fprintf(stderr, "kerfline: %s needs a command\n", command_path(deepest).c_str());
    list_commands(*deepest);
    return kExitUsage;
  }
  return -1;
}

}  // namespace kerfline::cli
