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

void BM_WalkGroup(benchmark::State& state) {
  kerfline::driver::CVm6Drv doc;
  auto group = std::make_shared<kerfline::driver::CDrvItemList>();
  group->Name = "Sonderbefehle:";
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    auto item = std::make_shared<kerfline::driver::CDrvItem>();
    item->Name = "%Var" + std::to_string(i) + "%";
    item->Value = std::to_string(i);
    group->AddChild(item);
  }
  doc.Root().AddChild(group);
  doc.RefreshGroupList();
  VMV6DRV handle{};
  handle.pDrv = &doc;
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

}  // namespace
