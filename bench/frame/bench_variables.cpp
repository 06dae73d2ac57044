// Walking a group of variables with GetFirstVar/GetNextVar: each step should
// cost the same however far into the group it is.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>

#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"
#include "kerfline/kerfline.h"

namespace {

struct Group {
  kerfline::driver::CVm6Drv doc;
  VMV6DRV handle{};
};

void fill(Group& g, std::int64_t n) {
  auto& doc = g.doc;
  auto group = std::make_shared<kerfline::driver::CDrvItemList>();
  group->Name = "Sonderbefehle:";
  for (std::int64_t i = 0; i < n; ++i) {
    auto item = std::make_shared<kerfline::driver::CDrvItem>();
    item->Name = "%Var" + std::to_string(i) + "%";
    item->Value = std::to_string(i);
    group->AddChild(item);
  }
  doc.Root().AddChild(group);
  doc.RefreshGroupList();
  g.handle.pDrv = &doc;
}

void BM_WalkGroup(benchmark::State& state) {
  Group g;
  fill(g, state.range(0));
  VMV6DRV& handle = g.handle;
  for (auto _ : state) {
    VMV6VAR var{};
    var.pDrv = &handle;
    var.nValueType = KERFLINE_VT_INTEGER;
    std::int64_t steps = 0;
    for (std::int32_t r = GetFirstVar(&var, "Sonderbefehle:"); r == 1; r = GetNextVar(&var, "Sonderbefehle:"))
      ++steps;
    if (steps != state.range(0)) state.SkipWithError("the walk missed items");
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_WalkGroup)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// Two walks taking turns: every step finds its place by name from the start
// of the group, which is what each step cost before steps kept their place.
void BM_WalkGroupInterleaved(benchmark::State& state) {
  Group g;
  fill(g, state.range(0));
  for (auto _ : state) {
    VMV6VAR a{}, b{};
    a.pDrv = b.pDrv = &g.handle;
    a.nValueType = b.nValueType = KERFLINE_VT_INTEGER;
    std::int32_t ra = GetFirstVar(&a, "Sonderbefehle:");
    std::int32_t rb = GetFirstVar(&b, "Sonderbefehle:");
    while (ra == 1 || rb == 1) {
      if (ra == 1) ra = GetNextVar(&a, "Sonderbefehle:");
      if (rb == 1) rb = GetNextVar(&b, "Sonderbefehle:");
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0) * 2);
}

BENCHMARK(BM_WalkGroupInterleaved)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
