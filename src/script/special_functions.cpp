#include "script/special_functions.hpp"

#include <fstream>
#include <iterator>

#include "script/evaluator.hpp"
#include "script/postfix.hpp"

namespace kerfline::script {
namespace {

bool read_file(const std::string& path, std::string& text) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}

FunctionRecord builtin(const char* name, NativeRoutine routine, std::int32_t n, const char* parameters,
                       const char* help) {
  FunctionRecord record;
  record.name = name;
  record.routine = routine;
  record.parameter_count = n;
  record.parameters = parameters;
  record.help = help;
  return record;
}

}  // namespace

std::string import_routine(ArgStack& args, const FunctionRecord& /*record*/, Evaluator& evaluator) {
  const std::string path = args.pop();
  std::string text;
  if (!read_file(path, text)) text = "Unable to read the file: " + path;
  return evaluator.evaluate_imported(text);
}

std::string varset_routine(ArgStack& args, const FunctionRecord& /*record*/, Evaluator& evaluator) {
  std::string value = args.pop();
  const std::string name = args.pop();
  evaluator.set_script_variable(name, std::move(value));
  return {};
}

void register_builtin_tables(FunctionRegistry& registry) {
  registry.add(builtin("Import", import_routine, 1, "Path", "Import text from file \"Path\""));
  registry.add(builtin("VarSet", varset_routine, 2, "\"Var\", Val",
                       "Create a variable, \"Var\", with value \"Val\". Variable name must be in quotes."));
}

}  // namespace kerfline::script
