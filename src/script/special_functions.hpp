// The two functions the language itself relies on: Import (a file's text,
// evaluated in a fresh evaluator) and VarSet (a script variable).
#pragma once

#include <string>

#include "script/function_registry.hpp"

namespace kerfline::script {

std::string import_routine(ArgStack& args, const FunctionRecord& record, Evaluator& evaluator);
std::string varset_routine(ArgStack& args, const FunctionRecord& record, Evaluator& evaluator);

// Registers the built-in tables in their order (first registration wins).
void register_builtin_tables(FunctionRegistry& registry);

}  // namespace kerfline::script
