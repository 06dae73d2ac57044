// `kerfline eval`: what DoEval makes of a template, with a driver's
// variables loaded.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "commands.hpp"
#include "kerfline/kerfline.h"
#include "open_driver.hpp"
#include "script/process_state.hpp"

namespace kerfline::cli {
namespace {

struct EvalOptions {
  std::string driver;
  std::vector<std::string> vars;
  std::string expression;
  std::string file;
};

bool read_template(const EvalOptions& o, std::string& text) {
  if (!o.expression.empty()) {
    text = o.expression;
    return true;
  }
  std::ostringstream all;
  if (o.file == "-") {
    all << std::cin.rdbuf();
  } else {
    std::ifstream in(o.file, std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "kerfline: cannot read template %s\n", o.file.c_str());
      return false;
    }
    all << in.rdbuf();
  }
  text = all.str();
  return true;
}

int run_eval(const EvalOptions& o) {
  std::string text;
  if (!read_template(o, text)) return kExitFailure;
  InitEval(0, 0, nullptr);

  std::unique_ptr<OpenDriver> drv;
  if (!o.driver.empty()) {
    drv = std::make_unique<OpenDriver>(o.driver);
    if (!drv->ok()) return kExitFailure;
    LoadEvalVars(drv->record(), 0xFFFFFFFFu);
  }
  for (const std::string& assignment : o.vars) {
    const auto eq = assignment.find('=');
    if (eq == std::string::npos || eq == 0) {
      std::fprintf(stderr, "kerfline: --var expects NAME=VALUE, got \"%s\"\n", assignment.c_str());
      return kExitUsage;
    }
    SetEvalVar(assignment.substr(0, eq).c_str(), assignment.substr(eq + 1).c_str(), 0xFFFFFFFFu);
  }

  char* out = DoEval(text.c_str());
  if (out == nullptr) {
    const script::Evaluator* evaluator = script::process_eval().evaluator();
    const std::string error = evaluator != nullptr ? evaluator->last_error() : std::string();
    if (!error.empty()) {
      std::fprintf(stderr, "%s\n", error.c_str());
      return kExitFailure;
    }
    return kExitOk;  // the template gives the empty text
  }
  std::fwrite(out, 1, std::strlen(out), stdout);
  if (std::strlen(out) == 0 || out[std::strlen(out) - 1] != '\n') std::fputc('\n', stdout);
  FreeEval(out);
  // A script error is in the text; the exit code still tells a script that
  // the template failed.
  const script::Evaluator* evaluator = script::process_eval().evaluator();
  return evaluator != nullptr && evaluator->pass_failed() ? kExitFailure : kExitOk;
}

}  // namespace

void register_eval(CLI::App& app, CommandList& commands) {
  auto o = std::make_shared<EvalOptions>();
  CLI::App* sub = app.add_subcommand("eval", "Evaluate a template as DoEval does");
  sub->add_option("--driver", o->driver, "Load this driver's variables first")->check(CLI::ExistingFile);
  sub->add_option("--var", o->vars, "Set a shared variable NAME=VALUE (repeatable)");
  auto* expr = sub->add_option("-e,--expression", o->expression, "The template text");
  auto* file = sub->add_option("file", o->file, "Template file, or - for standard input");
  expr->excludes(file);
  sub->callback([expr, file] {
    if (expr->count() == 0 && file->count() == 0) throw CLI::RequiredError("-e TEMPLATE, FILE or -");
  });
  (void)sub;
  commands.add(sub, [o] { return run_eval(*o); });
}

}  // namespace kerfline::cli
