// Mesh correction through the exports: triangulating measured marks and
// locating points in the mesh, at 1,000 and 10,000 marks to show the growth.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "kerfline/kerfline.h"
#include "platform/paths.hpp"

namespace {

constexpr int kQueries = 100000;

std::vector<MESHPOINT> random_points(int n, double lo, double hi, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> d(lo, hi);
  std::vector<MESHPOINT> p(static_cast<std::size_t>(n));
  for (auto& m : p) m = {d(rng), d(rng)};
  return p;
}

// Marks of a printed sheet: a jittered grid, as measured marks are.
std::vector<MESHPOINT> measured_grid(int n) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> jitter(-0.5, 0.5);
  const int side = static_cast<int>(std::ceil(std::sqrt(n)));
  std::vector<MESHPOINT> p;
  for (int i = 0; i < n; ++i) p.push_back({(i % side) * 10.0 + jitter(rng), (i / side) * 10.0 + jitter(rng)});
  return p;
}

void use_plugin_dir() { kerfline::platform::set_home_dir(KERFLINE_BENCH_OCV_DIR); }

void BM_CreateDelaunay(benchmark::State& state) {
  use_plugin_dir();
  const auto marks = measured_grid(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(CreateDelaunay(static_cast<int32_t>(marks.size()), marks.data()));
  }
  FreeDelaunay();
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// range(1): 0 queries inside the marks, 1 queries in a box twice as wide.
void BM_LocatePt(benchmark::State& state) {
  use_plugin_dir();
  const int n = static_cast<int>(state.range(0));
  const auto marks = measured_grid(n);
  if (CreateDelaunay(n, marks.data()) != 1) state.SkipWithError("no mesh");
  const double extent = std::ceil(std::sqrt(n)) * 10.0;
  const auto queries = state.range(1) == 0 ? random_points(kQueries, 0, extent - 10, 11)
                                           : random_points(kQueries, -extent / 2, extent * 1.5, 11);
  int32_t out[3];
  for (auto _ : state) {
    for (const MESHPOINT& q : queries) benchmark::DoNotOptimize(LocatePt(&q, out));
  }
  FreeDelaunay();
  state.SetItemsProcessed(state.iterations() * kQueries);
}

}  // namespace

BENCHMARK(BM_CreateDelaunay)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LocatePt)
    ->Args({1000, 0})
    ->Args({10000, 0})
    ->Args({1000, 1})
    ->Args({10000, 1})
    ->Unit(benchmark::kMillisecond);
