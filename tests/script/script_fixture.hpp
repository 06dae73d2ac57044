// An evaluator on its own registry (the library's built-ins) and shared
// variables, with test functions that wait or misbehave.
#pragma once

#include <atomic>
#include <memory>

#include "script/evaluator.hpp"
#include "script/function_registry.hpp"
#include "script/variables.hpp"

namespace kerfline::test {

// Adds Wait, Hold and Greedy (see script_fixture.cpp).
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
