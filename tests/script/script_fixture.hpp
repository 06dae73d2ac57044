// An evaluator on its own registry and shared variables, with the handful of
// text functions the tests call (the same names and counts as the library's
// built-ins) and functions that record or wait.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "script/evaluator.hpp"
#include "script/function_registry.hpp"
#include "script/variables.hpp"

namespace kerfline::test {

// Adds Left, Upper, Join, T, Wait, Hold, Greedy (see script_fixture.cpp).
void add_test_functions(script::FunctionRegistry& registry);

// Set by Hold once it waits (outside a device read), cleared when it returns.
std::atomic<bool>& holding();

struct ScriptBench {
  ScriptBench();
  script::FunctionRegistry registry;
  script::MaskedVariableSet shared;
  std::unique_ptr<script::Evaluator> evaluator;
};

}  // namespace kerfline::test
