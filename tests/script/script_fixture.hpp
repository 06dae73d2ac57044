// An evaluator on its own registry and shared variables, with the handful of
// text functions the tests call (the same names and counts as the library's
// built-ins) and functions that record or wait.
#pragma once

#include <memory>
#include <string>

#include "script/evaluator.hpp"
#include "script/function_registry.hpp"
#include "script/variables.hpp"

namespace kerfline::test {

// Adds Left, Upper, Join, T, Wait (see script_fixture.cpp) to a registry.
void add_test_functions(script::FunctionRegistry& registry);

struct ScriptBench {
  ScriptBench();
  script::FunctionRegistry registry;
  script::MaskedVariableSet shared;
  std::unique_ptr<script::Evaluator> evaluator;
};

}  // namespace kerfline::test
