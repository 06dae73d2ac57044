#include "script_fixture.hpp"

#include <cstdlib>

#include "script/postfix.hpp"
#include "script/special_functions.hpp"

namespace kerfline::test {
namespace {

script::FunctionRecord record(const char* name, script::NativeRoutine routine, int n,
                              const char* parameters) {
  script::FunctionRecord r;
  r.name = name;
  r.routine = routine;
  r.parameter_count = n;
  r.parameters = parameters;
  return r;
}

// Waits up to the given milliseconds; the result says how the wait ended.
std::string wait(script::ArgStack& args, const script::FunctionRecord&, script::Evaluator& evaluator) {
  const auto ms = static_cast<std::uint32_t>(std::strtoul(args.pop().c_str(), nullptr, 10));
  const script::Evaluator::DeviceRead reading(evaluator);
  switch (evaluator.wait(ms)) {
    case script::WaitResult::kEscaped:
      return "escaped";
    case script::WaitResult::kSignalled:
      return "signalled";
    case script::WaitResult::kTimedOut:
      return "timed out";
  }
  return {};
}

// Waits like Wait, but not as a device read.
std::string hold(script::ArgStack& args, const script::FunctionRecord&, script::Evaluator& evaluator) {
  const auto ms = static_cast<std::uint32_t>(std::strtoul(args.pop().c_str(), nullptr, 10));
  holding().store(true);
  const script::WaitResult result = evaluator.wait(ms);
  holding().store(false);
  return result == script::WaitResult::kEscaped ? "escaped" : "not escaped";
}

// Pops one argument more than it declares.
std::string greedy(script::ArgStack& args, const script::FunctionRecord&, script::Evaluator&) {
  args.pop();
  return args.pop();
}

}  // namespace

std::atomic<bool>& holding() {
  static std::atomic<bool> flag{false};
  return flag;
}

void add_test_functions(script::FunctionRegistry& registry) {
  registry.add(record("Wait", wait, 1, "ms"));
  registry.add(record("Greedy", greedy, 0, ""));
  registry.add(record("Hold", hold, 1, "ms"));
}

ScriptBench::ScriptBench() {
  script::register_builtin_tables(registry);
  add_test_functions(registry);
  evaluator = std::make_unique<script::Evaluator>(registry, shared);
}

}  // namespace kerfline::test
