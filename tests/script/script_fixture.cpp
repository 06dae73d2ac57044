#include "script_fixture.hpp"

#include <cstdlib>
#include <tuple>
#include <utility>

#include "script/postfix.hpp"
#include "script/special_functions.hpp"

namespace kerfline::test {
namespace {

// Waits up to the given milliseconds; the result says how the wait ended.
std::string wait(script::ArgStack& args, const script::FunctionRecord&, script::Evaluator& evaluator) {
  const auto ms = static_cast<std::uint32_t>(std::strtoul(args.pop().c_str(), nullptr, 10));
  const script::Evaluator::DeviceRead reading(evaluator);
  const script::WaitResult result = evaluator.wait(ms);
  if (result == script::WaitResult::kEscaped) return "escaped";
  return result == script::WaitResult::kSignalled ? "signalled" : "timed out";
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
  for (const auto& [name, routine, count] :
       {std::tuple{"Wait", &wait, 1}, std::tuple{"Greedy", &greedy, 0}, std::tuple{"Hold", &hold, 1}}) {
    script::FunctionRecord r;
    r.name = name;
    r.routine = routine;
    r.parameter_count = count;
    registry.add(std::move(r));
  }
}

ScriptBench::ScriptBench() {
  script::register_builtin_tables(registry);
  add_test_functions(registry);
  evaluator = std::make_unique<script::Evaluator>(registry, shared);
}

}  // namespace kerfline::test
