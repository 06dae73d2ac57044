// `kerfline eval`: what DoEval makes of a template, with a driver's
// variables loaded.
#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "cli_io.hpp"
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
  std::string output;
  std::string device;
  bool newline = false;
  bool raw = false;
  bool json = false;
};

// The template in the library's encoding.
std::optional<std::string> read_template(const EvalOptions& o) {
  if (!o.file.empty()) {
    auto bytes = read_input(o.file, "template");
    if (!bytes || o.raw) return bytes;
    return from_terminal(*bytes, "template file (--raw reads it as Windows-1252)", false);
  }
  return from_terminal(o.expression, "template");
}

bool set_variables(const std::vector<std::string>& assignments) {
  for (const std::string& assignment : assignments) {
    const auto eq = assignment.find('=');
    if (eq == std::string::npos || eq == 0) {
      std::fprintf(stderr, "kerfline: --var expects NAME=VALUE, got \"%s\"\n", assignment.c_str());
      return false;
    }
    const auto name = from_terminal(assignment.substr(0, eq), "variable name");
    const auto value = from_terminal(assignment.substr(eq + 1), "value");
    if (!name || !value) return false;
    SetEvalVar(name->c_str(), value->c_str(), 0xFFFFFFFFu);
  }
  return true;
}

int run_eval(const EvalOptions& o) {
  const auto text = read_template(o);
  if (!text) return kExitFailure;
  InitEval(0, 0, nullptr);

  std::unique_ptr<OpenDriver> drv;
  if (!o.driver.empty()) {
    drv = std::make_unique<OpenDriver>(o.driver);
    if (!drv->ok()) return kExitFailure;
    LoadEvalVars(drv->record(), 0xFFFFFFFFu);
  }
  if (!set_variables(o.vars)) return kExitUsage;
  if (!o.device.empty()) SetEvalDevice(drv ? drv->record() : nullptr, o.device.c_str());

  std::string result;
  if (char* out = DoEval(text->c_str()); out != nullptr) {
    result = out;
    FreeEval(out);
  }
  // A script error is in the text; the exit code still tells a script that
  // the template failed.
  const script::Evaluator* evaluator = script::process_eval().evaluator();
  const bool failed = evaluator != nullptr && (evaluator->pass_failed() || !evaluator->last_error().empty());
  if (result.empty() && failed) result = evaluator->last_error();

  Output out(o.output);
  if (!out.ok()) return kExitFailure;
  if (o.json) {
    const nlohmann::json answer = {{"output", to_terminal(result)}, {"error", failed}};
    out.write(answer.dump() + "\n");
  } else {
    out.write(o.raw ? result : to_terminal(result));
    if (o.newline && (result.empty() || result.back() != '\n')) out.write("\n");
  }
  if (!out.finish()) return kExitFailure;
  return failed ? kExitFailure : kExitOk;
}

}  // namespace

void register_eval(CLI::App& app, CommandList& commands) {
  auto o = std::make_shared<EvalOptions>();
  CLI::App* sub =
      app.add_subcommand("eval", "Evaluate a template as DoEval does and print exactly what it gives");
  sub->add_option("--driver", o->driver, "Load this driver's variables first");
  sub->add_option("--var", o->vars, "Set a shared variable NAME=VALUE (repeat the option for more)")
      ->allow_extra_args(false);
  sub->add_option("--device", o->device, "Device (plotman.ini section) the dialogue functions talk to");
  auto* expr = sub->add_option("-e,--expression", o->expression, "The template text");
  auto* file =
      sub->add_option("file", o->file, "Template file (UTF-8, or as stored with --raw), - for stdin");
  sub->add_option("-o,--output", o->output, "Write the result to this file (- for standard output)");
  sub->add_flag("--newline", o->newline, "End the output with a line break if it has none");
  sub->add_flag("--raw", o->raw, "Keep the driver's Windows-1252 bytes, e.g. for piping to a device");
  sub->add_flag("--json", o->json, "Print {\"output\": ..., \"error\": true|false}");
  expr->excludes(file);
  sub->callback([expr, file] {
    if (expr->count() == 0 && file->count() == 0) throw CLI::RequiredError("-e TEMPLATE, FILE or -");
  });
  commands.add(sub, [o] { return run_eval(*o); });
}

}  // namespace kerfline::cli
