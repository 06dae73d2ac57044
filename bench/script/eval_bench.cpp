// Evaluation cost: passthrough text (against a plain copy of the same size),
// a typical output template, and a template of a thousand calls. Each case
// runs what DoEval runs and copies the result into a new block.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "script/evaluator.hpp"
#include "script/function_registry.hpp"
#include "script/postfix.hpp"
#include "script/special_functions.hpp"
#include "script/variables.hpp"

namespace {

using kerfline::script::ArgStack;
using kerfline::script::Evaluator;
using kerfline::script::FunctionRecord;

std::string identity(ArgStack& args, const FunctionRecord&, Evaluator&) { return args.pop(); }

std::string left(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto n = static_cast<std::size_t>(std::strtoul(args.pop().c_str(), nullptr, 10));
  std::string text = args.pop();
  if (n < text.size()) text.resize(n);
  return text;
}

struct Setup {
  Setup() {
    kerfline::script::register_builtin_tables(registry);
    FunctionRecord t;
    t.name = "T";
    t.routine = identity;
    t.parameter_count = 1;
    registry.add(t);
    FunctionRecord l;
    l.name = "Left";
    l.routine = left;
    l.parameter_count = 2;
    registry.add(l);
    shared.set("%x%", "1200", 0xFFFFFFFFu);
    shared.set("%y%", "3400", 0xFFFFFFFFu);
    shared.set("%Tool%", "1", 0xFFFFFFFFu);
  }
  kerfline::script::FunctionRegistry registry;
  kerfline::script::MaskedVariableSet shared;
};

Setup& setup() {
  static Setup s;
  return s;
}

// DoEval's work: the three passes and the block handed to the host.
char* eval_to_block(Evaluator& evaluator, const std::string& text) {
  std::string storage;
  const std::string_view result = evaluator.evaluate_for_output(text, storage);
  auto* block = static_cast<char*>(std::malloc(result.size() + 1));
  std::memcpy(block, result.data(), result.size());
  block[result.size()] = '\0';
  return block;
}

std::string passthrough_text(std::size_t size) {
  const std::string line = "PU 1200,3400;PD 1250,3400;PD 1250,3450;PU;\r\n";
  std::string text;
  while (text.size() < size) text += line;
  text.resize(size);
  return text;
}

void BM_Copy(benchmark::State& state) {
  const std::string text = passthrough_text(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    auto* block = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(block, text.c_str(), text.size() + 1);
    benchmark::DoNotOptimize(block);
    std::free(block);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(BM_Copy)->Arg(1 << 10)->Arg(1 << 20);

void BM_Passthrough(benchmark::State& state) {
  Evaluator evaluator(setup().registry, setup().shared);
  const std::string text = passthrough_text(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    char* block = eval_to_block(evaluator, text);
    benchmark::DoNotOptimize(block);
    std::free(block);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(BM_Passthrough)->Arg(1 << 10)->Arg(1 << 20);

void BM_TypicalTemplate(benchmark::State& state) {
  Evaluator evaluator(setup().registry, setup().shared);
  // A conditional, three calls and an arithmetic block.
  const std::string text = "{[&T(%Tool%) == 1][SP1;][SP2;]}PU&T(%x%),&T(%y%);PD%[1200/40*2.5]%;";
  for (auto _ : state) {
    char* block = eval_to_block(evaluator, text);
    benchmark::DoNotOptimize(block);
    std::free(block);
  }
}
BENCHMARK(BM_TypicalTemplate);

void BM_ThousandCalls(benchmark::State& state) {
  Evaluator evaluator(setup().registry, setup().shared);
  std::string text;
  for (int i = 0; i < 500; ++i) text += "PA&T(%x%),&Left(\"3400\", 3);";
  for (auto _ : state) {
    char* block = eval_to_block(evaluator, text);
    benchmark::DoNotOptimize(block);
    std::free(block);
  }
}
BENCHMARK(BM_ThousandCalls);

}  // namespace
