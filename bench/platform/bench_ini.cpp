// Reading the device list from "plotman.ini": 6 keys of every device, with
// the cached engine and with a baseline that reads and scans the file again
// for every key (what an engine without a cache does).
#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "platform/ini.hpp"
#include "platform/ini_document.hpp"

namespace ini = kerfline::platform::ini;
namespace fs = std::filesystem;

namespace {

constexpr const char* kKeys[] = {"DevOut",   "DevPortType",    "DevDriver",
                                 "DevWidth", "DevComSettings", "DevSpooler"};

// One plotman.ini per device count, removed at exit.
class Files {
 public:
  Files()
      : dir_(fs::temp_directory_path() / ("kerfline-bench-ini-" + std::to_string(std::random_device{}()))) {
    fs::create_directories(dir_);
  }
  ~Files() {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }

  const std::string& get(int devices) {
    auto it = paths_.find(devices);
    if (it != paths_.end()) return it->second;
    const std::string path = (dir_ / ("plotman" + std::to_string(devices) + ".ini")).string();
    std::ofstream out(path, std::ios::binary);
    out << "[DeviceNames]\r\n";
    for (int i = 0; i < devices; ++i) out << "Device" << i << "=Cutter " << i << "\r\n";
    for (int i = 0; i < devices; ++i) {
      out << "[Cutter " << i << "]\r\n"
          << "DevOut=COM" << (i % 8 + 1) << "\r\nDevPortType=" << (i % 5) << "\r\n"
          << "DevDriver=Graphtec CE6000-" << i << ".vdv\r\nDevWidth=" << 12000 + i << "\r\n"
          << "DevComSettings=9600,n,8,1,p\r\nDevSpooler=1\r\nDevSpoolDir=Spooler\\SL_Cutter " << i << "\r\n"
          << "DevLength=50000\r\nDevOffsetX=0\r\nDevOffsetY=0\r\nDevTool=1\r\nDevSpeed=400\r\n"
          << "DevPressure=120\r\nDevCopies=1\r\nDevRotate=0\r\nDevMirror=0\r\nDevIPAddress=192.168.0."
          << i % 250 << "\r\nDevIPPort=9100\r\nDevUsbName=\r\nDevFlags=0x0010\r\n";
    }
    out.close();
    // Old enough that the cache trusts the file's identity.
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
    return paths_.emplace(devices, path).first->second;
  }

 private:
  fs::path dir_;
  std::map<int, std::string> paths_;
};

Files& files() {
  static Files instance;
  return instance;
}

std::vector<std::string> device_names(int devices) {
  std::vector<std::string> names;
  for (int i = 0; i < devices; ++i) names.push_back("Cutter " + std::to_string(i));
  return names;
}

void BM_CachedEngine(benchmark::State& state) {
  const int devices = static_cast<int>(state.range(0));
  const std::string& path = files().get(devices);
  const auto names = device_names(devices);
  std::vector<char> buffer(64 * 1024);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        ini::get_section("DeviceNames", buffer.data(), static_cast<std::uint32_t>(buffer.size()), path));
    for (const std::string& name : names) {
      char value[256];
      benchmark::DoNotOptimize(ini::get_string(name.c_str(), "DevOut", "", value, sizeof value, path));
      benchmark::DoNotOptimize(ini::get_int(name.c_str(), "DevPortType", 0, path));
      benchmark::DoNotOptimize(ini::get_string(name.c_str(), "DevDriver", "", value, sizeof value, path));
      benchmark::DoNotOptimize(ini::get_int(name.c_str(), "DevWidth", 0, path));
      benchmark::DoNotOptimize(
          ini::get_string(name.c_str(), "DevComSettings", "", value, sizeof value, path));
      benchmark::DoNotOptimize(ini::get_int(name.c_str(), "DevSpooler", 0, path));
    }
  }
  state.SetItemsProcessed(state.iterations() * devices * 6);
  state.counters["file_kb"] = static_cast<double>(fs::file_size(path)) / 1024.0;
  state.counters["per_device"] =
      benchmark::Counter(static_cast<double>(devices),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// The baseline: the whole file read and scanned line by line for each key,
// stopping at the key (cheaper than a full parse).
std::string reread_and_scan(const std::string& path, std::string_view section, std::string_view key) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream all;
  all << in.rdbuf();
  const std::string text = all.str();
  bool inside = false;
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t end = text.find_first_of("\r\n", pos);
    if (end == std::string::npos) end = text.size();
    std::string_view line(text.data() + pos, end - pos);
    pos = end + 1;
    while (!line.empty() && ini::is_space(line.front())) line.remove_prefix(1);
    while (!line.empty() && ini::is_space(line.back())) line.remove_suffix(1);
    if (line.empty() || line.front() == ';') continue;
    if (line.front() == '[' && line.find(']') != std::string_view::npos) {
      if (inside) break;
      inside = line.substr(1, line.rfind(']') - 1) == section;
      continue;
    }
    if (inside && line.size() > key.size() && line.substr(0, key.size()) == key && line[key.size()] == '=') {
      return std::string(line.substr(key.size() + 1));
    }
  }
  return {};
}

void BM_ReparseBaseline(benchmark::State& state) {
  const int devices = static_cast<int>(state.range(0));
  const std::string& path = files().get(devices);
  const auto names = device_names(devices);
  for (auto _ : state) {
    for (const std::string& name : names) {
      for (const char* key : kKeys) benchmark::DoNotOptimize(reread_and_scan(path, name, key));
    }
  }
  state.SetItemsProcessed(state.iterations() * devices * 6);
  state.counters["per_device"] =
      benchmark::Counter(static_cast<double>(devices),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Our own parser without the cache: read, parse, one lookup, for each key.
void BM_ParseEveryRead(benchmark::State& state) {
  const int devices = static_cast<int>(state.range(0));
  const std::string& path = files().get(devices);
  const auto names = device_names(devices);
  for (auto _ : state) {
    for (const std::string& name : names) {
      for (const char* key : kKeys) {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream all;
        all << in.rdbuf();
        const ini::IniDocument doc(all.str());
        benchmark::DoNotOptimize(doc.find_value(name, key));
      }
    }
  }
  state.SetItemsProcessed(state.iterations() * devices * 6);
}

}  // namespace

BENCHMARK(BM_CachedEngine)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReparseBaseline)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseEveryRead)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
