// What the evaluation API keeps for the whole process: the one evaluator
// object, the function registry, the shared variables and the user-function
// table. Only the busy flag and the evaluator's escape state are touched from
// a second thread; everything else belongs to the thread that evaluates.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "script/evaluator.hpp"
#include "script/function_registry.hpp"
#include "script/variables.hpp"

namespace kerfline::script {

struct UserFunction {
  std::string name;
  std::string parameters;
  std::string body;
};

class ProcessEval {
 public:
  ProcessEval() = default;
  ~ProcessEval();
  ProcessEval(const ProcessEval&) = delete;
  ProcessEval& operator=(const ProcessEval&) = delete;

  // Builds the registry (built-in tables, then the user functions) and
  // seeds the random generator, once; creates the evaluator when missing.
  Evaluator& ensure_evaluator();
  // Null until the first ensure_evaluator(); safe from any thread.
  [[nodiscard]] Evaluator* evaluator() const { return evaluator_ptr_.load(); }

  // Adds to the user-function table, and to the registry when it is already
  // built. False when the registry already has the name.
  bool add_user_function(const std::string& name, const std::string& parameters, const std::string& body);

  FunctionRegistry& registry() { return registry_; }
  MaskedVariableSet& shared_variables() { return shared_; }
  std::mt19937& random() { return random_; }

  std::uint32_t init_count = 0;
  std::uint32_t latest_mode = 0;
  std::atomic<std::int32_t> busy{0};

 private:
  FunctionRegistry registry_;
  MaskedVariableSet shared_;
  std::vector<UserFunction> user_functions_;
  bool registry_built_ = false;
  std::mt19937 random_;
  std::unique_ptr<Evaluator> evaluator_;
  std::atomic<Evaluator*> evaluator_ptr_{nullptr};
};

ProcessEval& process_eval();

// "AsyncIO" of section "CutterSettings" in the suite's plotman.ini is 1.
bool is_async_io();

}  // namespace kerfline::script
