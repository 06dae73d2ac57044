// Listing a device list of 1,000 and 100,000 devices: the cost should grow
// linearly with the number of devices.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "kerfline/kerfline.h"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace {

namespace fs = std::filesystem;

// A suite directory whose plotman.ini lists `count` cutters.
class Suite {
 public:
  explicit Suite(long count) {
    dir_ = fs::temp_directory_path() / ("kerfline-bench-devices-" + std::to_string(std::random_device{}()));
    fs::create_directories(dir_);
    std::ofstream out(dir_ / "plotman.ini", std::ios::binary);
    out << "[DeviceNames]\r\n";
    for (long i = 0; i < count; ++i) out << "Cutter " << i << "=1\r\n";
    for (long i = 0; i < count; ++i) {
      out << "[Cutter " << i << "]\r\nDevOut=/dev/ttyUSB" << i % 8 << "\r\nDevType=" << (i % 50 == 0 ? 5 : 2)
          << "\r\nDevDrvPath=/opt/suite/cutter\r\nDevDrvFileName=model" << i % 40 << ".vmd\r\nDevIn=/spool/"
          << i << "/\r\n";
    }
    out.close();
    kerfline::platform::set_home_dir(dir_.string() + "/");
  }
  ~Suite() {
    kerfline::platform::set_home_dir("");
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  Suite(const Suite&) = delete;
  Suite& operator=(const Suite&) = delete;

 private:
  fs::path dir_;
};

void BM_GetCutDeviceList(benchmark::State& state) {
  Suite suite(state.range(0));
  for (auto _ : state) {
    int32_t count = 0;
    CUTDEVICE* list = GetCutDeviceList(&count);
    benchmark::DoNotOptimize(list);
    if (count != state.range(0)) state.SkipWithError("wrong count");
    FreeCutDeviceList(list);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_GetCutDeviceList)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
