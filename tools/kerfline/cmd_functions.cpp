// `kerfline functions [NAME]`: the function browser, from the library's
// registry (GetEvalFunc), and the functions of "%[ ... ]%" arithmetic.
#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

#include "cli_io.hpp"
#include "commands.hpp"
#include "kerfline/kerfline.h"
#include "platform/codepage.hpp"
#include "script/arithmetic.hpp"

namespace kerfline::cli {
namespace {

std::string shown(const char* text) { return to_terminal(text != nullptr ? text : ""); }

std::string arithmetic_line() {
  std::string line = "%[ ... ]% arithmetic: + - * / ^ and";
  for (const std::string_view f : script::arithmetic_function_names()) line += " " + std::string(f) + "(x)";
  return line + " (angles in degrees; \"0.00\" when an expression fails)\n";
}

int run_functions(const std::string& name, bool as_json) {
  InitEval(0, 0, nullptr);
  const int32_t count = GetEvalFuncCount();
  int shown_count = 0;
  nlohmann::json list = nlohmann::json::array();
  for (int32_t i = 0; i < count; ++i) {
    EVALFUNC f{};
    if (GetEvalFunc(i, &f) != 1) continue;
    if (!name.empty() && !platform::cp1252::equals_no_case(f.pszName, name)) continue;
    ++shown_count;
    const bool shadowed = (f.dwFlags & EVALFUNC_SHADOWED) != 0;
    if (as_json) {
      list.push_back({{"name", shown(f.pszName)},
                      {"params", shown(f.pszParams)},
                      {"count", f.nParams},
                      {"help", shown(f.pszHelp)},
                      {"shadowed", shadowed}});
      continue;
    }
    if (name.empty()) {
      std::printf("&%s(%s)%s\n", shown(f.pszName).c_str(), shown(f.pszParams).c_str(),
                  shadowed ? "  [shadowed]" : "");
      continue;
    }
    std::printf("&%s(%s)\n", shown(f.pszName).c_str(), shown(f.pszParams).c_str());
    std::printf("  parameters: %d\n", f.nParams);
    if (f.pszSecond != nullptr && *f.pszSecond != '\0')
      std::printf("  computes:  %s\n", shown(f.pszSecond).c_str());
    std::printf("  %s\n", shown(f.pszHelp).c_str());
    if (shadowed) std::printf("  (shadowed: calls of this name reach the earlier entry)\n");
  }
  if (!name.empty() && shown_count == 0) {
    std::fprintf(stderr, "kerfline: no function named %s\n", name.c_str());
    return kExitFailure;
  }
  if (as_json) {
    nlohmann::json arithmetic = nlohmann::json::array();
    for (const std::string_view f : script::arithmetic_function_names()) arithmetic.push_back(std::string(f));
    const nlohmann::json all = {{"functions", list}, {"arithmetic", arithmetic}};
    const std::string text = (name.empty() ? all : list).dump(2) + "\n";
    std::fwrite(text.data(), 1, text.size(), stdout);
  } else if (name.empty()) {
    const std::string line = arithmetic_line();
    std::fwrite(line.data(), 1, line.size(), stdout);
  }
  return kExitOk;
}

}  // namespace

void register_functions(CLI::App& app, CommandList& commands) {
  auto name = std::make_shared<std::string>();
  auto as_json = std::make_shared<bool>(false);
  CLI::App* sub = app.add_subcommand("functions", "The template functions, or one function's help");
  sub->add_option("name", *name, "Show this function only (any case)");
  sub->add_flag("--json", *as_json, "Print JSON");
  commands.add(sub, [name, as_json] { return run_functions(*name, *as_json); });
}

}  // namespace kerfline::cli
