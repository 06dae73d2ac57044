// `kerfline driver vocabulary`: the standard text numbers a driver author
// writes as "id", with their names, from the library's built-in table.
#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

#include "cli_io.hpp"
#include "commands.hpp"
#include "driver/builtin_texts.hpp"

namespace kerfline::cli {
namespace {

const char* kind_label(driver::TextKind kind) {
  switch (kind) {
    case driver::TextKind::CutInstructions:
      return "cut instruction";
    case driver::TextKind::ToolVariables:
      return "tool variable";
    case driver::TextKind::MaterialVariables:
      return "material variable";
    case driver::TextKind::Groups:
      return "group";
    case driver::TextKind::StandardVariables:
      return "standard variable";
    case driver::TextKind::OutputModes:
      return "output mode";
    case driver::TextKind::PlotTimeVariables:
      return "plot-time variable";
    case driver::TextKind::Selections:
      return "selection";
    case driver::TextKind::Letters:
      return "letter variable";
    case driver::TextKind::Positions:
      return "position variable";
  }
  return "";
}

// Table cells hold no "|"; the texts are shown as the terminal shows them.
std::string cell(std::string_view text) {
  std::string out;
  for (const char c : to_terminal(text)) {
    if (c == '|') {
      out += "\\|";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\n') {
      out += "\\n";
    } else {
      out.push_back(c);
    }
  }
  return out;
}

int run_vocabulary(bool as_json) {
  nlohmann::json rows = nlohmann::json::array();
  std::string table = "| number | name | kind | type | default |\n|---|---|---|---|---|\n";
  for (const driver::TextKind kind : driver::kAllTextKinds) {
    if (kind == driver::TextKind::Selections) continue;  // codes, not names an item takes
    const auto layout = driver::kind_layout(kind);
    if (!layout) continue;
    for (std::uint32_t i = 0; i < layout->count; ++i) {
      const std::uint32_t number = layout->base + layout->step * i;
      const auto def = driver::builtin_definition(number);
      if (!def || def->name.empty()) continue;
      rows.push_back({{"number", number},
                      {"name", to_terminal(def->name)},
                      {"kind", kind_label(kind)},
                      {"type", to_terminal(def->type)},
                      {"default", to_terminal(def->default_value)}});
      table += "| " + std::to_string(number) + " | `" + cell(def->name) + "` | " + kind_label(kind) + " | " +
               cell(def->type) + " | " +
               (def->default_value.empty() ? "" : "`" + cell(def->default_value) + "`") + " |\n";
    }
  }
  const std::string text = as_json ? rows.dump(2) + "\n" : table;
  std::fwrite(text.data(), 1, text.size(), stdout);
  return kExitOk;
}

}  // namespace

void register_driver_vocabulary(CLI::App& driver, CommandList& commands) {
  auto as_json = std::make_shared<bool>(false);
  CLI::App* sub = driver.add_subcommand("vocabulary", "The standard text numbers (\"id\") and their names");
  sub->add_flag("--json", *as_json, "Print a JSON list instead of a Markdown table");
  commands.add(sub, [as_json] { return run_vocabulary(*as_json); });
}

}  // namespace kerfline::cli
