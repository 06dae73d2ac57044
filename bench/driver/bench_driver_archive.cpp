// Loading and storing a large driver (10,000 items, about 1 MB) compared
// with merely reading its bytes from disk.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"

namespace drv = kerfline::driver;
namespace fs = std::filesystem;

namespace {

std::string no_texts(std::uint32_t) { return {}; }

// 100 groups of 100 items: plain items with values of ~60 bytes, every
// tenth a dialog variable with limits and conditions.
void fill(drv::CVm6Drv& doc) {
  for (int g = 0; g < 100; ++g) {
    auto group = std::make_shared<drv::CDrvItemList>();
    group->Name = "%Group" + std::to_string(g) + "%";
    group->Description = "A group of the benchmark driver";
    for (int i = 0; i < 100; ++i) {
      const std::string name = "%Var" + std::to_string(g) + "_" + std::to_string(i) + "%";
      if (i % 10 == 0) {
        auto var = std::make_shared<drv::CDrvItemDlgVar>();
        var->Name = name;
        var->Value = "100";
        var->Description = "A dialog variable with limits and conditions";
        var->DlgText = "Speed of the tool in cm/s";
        var->DlgFormat = "%d";
        var->Ext =
            std::make_unique<drv::CDrvItemDlgVar::ExtParms>(drv::CDrvItemDlgVar::ExtParms{1, 800, 1, 1});
        var->Conditions = {"%Flags_1%", "%Flags_2%"};
        group->AddChild(var);
      } else {
        auto item = std::make_shared<drv::CDrvItem>();
        item->Name = name;
        item->Value = "PU %x%,%y%;PD %x%,%y%;VS" + std::to_string(i) + ";FS" + std::to_string(g) + ";";
        item->Description = "An output template of the benchmark";
        group->AddChild(item);
      }
    }
    doc.Root().AddChild(group);
  }
  doc.RefreshGroupList();
}

struct Driver {
  fs::path path;
  std::string bytes;
  Driver() {
    drv::CVm6Drv doc(no_texts);
    fill(doc);
    bytes = doc.WriteToBytes();
    path = fs::temp_directory_path() / "kerfline-bench-driver.vmd";
    std::ofstream(path, std::ios::binary) << bytes;
  }
  ~Driver() {
    std::error_code ec;
    fs::remove(path, ec);
  }
};

const Driver& driver() {
  static const Driver d;
  return d;
}

void ReadBytesOnly(benchmark::State& state) {
  const Driver& d = driver();
  for (auto _ : state) {
    std::ifstream in(d.path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    benchmark::DoNotOptimize(bytes.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.bytes.size()));
}
BENCHMARK(ReadBytesOnly);

void LoadDriver(benchmark::State& state) {
  const Driver& d = driver();
  for (auto _ : state) {
    drv::CVm6Drv doc(no_texts);
    if (!doc.LoadDriver(d.path.string())) state.SkipWithError("load failed");
    benchmark::DoNotOptimize(doc.Root().GetChildren().data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.bytes.size()));
}
BENCHMARK(LoadDriver);

void WriteDriverToBytes(benchmark::State& state) {
  const Driver& d = driver();
  drv::CVm6Drv doc(no_texts);
  doc.ReadFromBytes(d.bytes);
  for (auto _ : state) {
    std::string bytes = doc.WriteToBytes();
    benchmark::DoNotOptimize(bytes.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.bytes.size()));
}
BENCHMARK(WriteDriverToBytes);

void StoreDriver(benchmark::State& state) {
  const Driver& d = driver();
  drv::CVm6Drv doc(no_texts);
  doc.ReadFromBytes(d.bytes);
  const std::string path = (fs::temp_directory_path() / "kerfline-bench-store.vmd").string();
  for (auto _ : state) {
    if (!doc.StoreDriver(path)) state.SkipWithError("store failed");
  }
  std::error_code ec;
  fs::remove(path, ec);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.bytes.size()));
}
BENCHMARK(StoreDriver);

// A driver and its base driver with the same n items in groups of 100, every
// item of the driver linked to the base's: loading the driver loads the base
// and merges the two. The fitted complexity shows the merge stays linear.
void LoadWithBaseDriver(benchmark::State& state) {
  const auto n = static_cast<int>(state.range(0));
  const fs::path dir = fs::temp_directory_path() / "kerfline-bench-base";
  fs::create_directories(dir);
  const auto write = [&](const std::string& file, bool derived) {
    drv::CVm6Drv doc(no_texts);
    for (int g = 0; g < n / 100; ++g) {
      auto group = std::make_shared<drv::CDrvItemList>();
      group->Name = "%Group" + std::to_string(g) + "%";
      group->Linked = derived ? 1 : 0;
      for (int i = 0; i < 100; ++i) {
        auto item = std::make_shared<drv::CDrvItem>();
        item->Name = "%Var" + std::to_string(g) + "_" + std::to_string(i) + "%";
        item->Value = "PU %x%,%y%;";
        item->Linked = derived ? 1 : 0;
        group->AddChild(item);
      }
      doc.Root().AddChild(group);
    }
    if (derived) {
      auto base = std::make_shared<drv::CDrvItem>();
      base->Name = drv::CVm6Drv::kBaseDriverItem;
      base->Value = "base.vmd";
      doc.Root().AddChild(base);
      doc.BaseDriverFlag = 1;
    }
    doc.RefreshGroupList();
    std::ofstream(dir / file, std::ios::binary) << doc.WriteToBytes();
  };
  write("base.vmd", false);
  write("driver.vmd", true);
  for (auto _ : state) {
    drv::CVm6Drv doc(no_texts);
    if (!doc.LoadDriver((dir / "driver.vmd").string()) || doc.BaseDriver() == nullptr) {
      state.SkipWithError("load with base failed");
    }
    benchmark::DoNotOptimize(doc.Root().GetChildren().data());
  }
  state.SetComplexityN(n);
  std::error_code ec;
  fs::remove_all(dir, ec);
}
BENCHMARK(LoadWithBaseDriver)->RangeMultiplier(4)->Range(1000, 64000)->Complexity(benchmark::oN);

}  // namespace
