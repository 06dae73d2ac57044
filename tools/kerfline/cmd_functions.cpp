// `kerfline functions [NAME]`: the function browser, from the library's
// registry (GetEvalFunc).
#include <cstdio>
#include <string>

#include "commands.hpp"
#include "kerfline/kerfline.h"
#include "platform/codepage.hpp"

namespace kerfline::cli {
namespace {

std::string shown(const char* text) { return platform::cp1252::to_utf8(text != nullptr ? text : ""); }

int run_functions(const std::string& name) {
  InitEval(0, 0, nullptr);
  const int32_t count = GetEvalFuncCount();
  int shown_count = 0;
  for (int32_t i = 0; i < count; ++i) {
    EVALFUNC f{};
    if (GetEvalFunc(i, &f) != 1) continue;
    if (!name.empty() && !platform::cp1252::equals_no_case(f.pszName, name)) continue;
    ++shown_count;
    const bool shadowed = (f.dwFlags & EVALFUNC_SHADOWED) != 0;
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
  return kExitOk;
}

}  // namespace

void register_functions(CLI::App& app, CommandList& commands) {
  auto name = std::make_shared<std::string>();
  CLI::App* sub = app.add_subcommand("functions", "The template functions, or one function's help");
  sub->add_option("name", *name, "Show this function only (any case)");
  commands.add(sub, [name] { return run_functions(*name); });
}

}  // namespace kerfline::cli
