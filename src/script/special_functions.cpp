#include "script/special_functions.hpp"

#include "script/builtins.hpp"
#include "script/evaluator.hpp"
#include "script/postfix.hpp"

namespace kerfline::script {

std::string import_routine(ArgStack& args, const FunctionRecord& /*record*/, Evaluator& evaluator) {
  const std::string path = args.pop();
  std::string text;
  if (!read_whole_file(script_path(path), text)) text = "Unable to read the file: " + path;
  return evaluator.evaluate_imported(text);
}

std::string varset_routine(ArgStack& args, const FunctionRecord& /*record*/, Evaluator& evaluator) {
  std::string value = args.pop();
  const std::string name = args.pop();
  evaluator.set_script_variable(name, std::move(value));
  return {};
}

}  // namespace kerfline::script
