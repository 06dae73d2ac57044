// Building a job's variable and layer arrays one entry at a time: the cost
// per entry should stay flat as the arrays grow.
#include <benchmark/benchmark.h>

#include <string>

#include "kerfline/kerfline.h"

namespace {

void BM_AddVariables(benchmark::State& state) {
  const auto n = static_cast<int>(state.range(0));
  const std::string text = "%Variable%";
  const CUTVAR var{const_cast<char*>(text.c_str()), const_cast<char*>(text.c_str())};
  for (auto _ : state) {
    CUTDATA data{};
    for (int i = 0; i < n; ++i) AddVariable(&data, &var);
    FreeCutData(&data);
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_AddVariables)->RangeMultiplier(10)->Range(100, 100000);

void BM_AddLayers(benchmark::State& state) {
  const auto n = static_cast<int>(state.range(0));
  const CUTLAYER layer{{1, 2, 3, 4, 5, 6, 7}};
  for (auto _ : state) {
    CUTDATA data{};
    for (int i = 0; i < n; ++i) AddLayer(&data, &layer);
    FreeCutData(&data);
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_AddLayers)->RangeMultiplier(10)->Range(100, 100000);

}  // namespace
