// Parsing string tables and translation files, and translating one text.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "frame/po_catalog.hpp"
#include "frame/resources.hpp"
#include "frame/string_table.hpp"
#include "frame/translation_store.hpp"

namespace kf = kerfline::frame;

namespace {

std::string po_file(int entries) {
  std::string po = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n";
  for (int i = 0; i < entries; ++i) {
    const std::string n = std::to_string(i);
    po += "#: driver.vdv:" + n + "\nmsgid \"Tool number " + n + " (!-Percent-!)\\r\\nsecond line\"\n";
    po += "msgstr \"\"\n\"Werkzeug Nummer " + n + " (!-Percent-!)\\r\\n\"\n\"zweite Zeile \xC3\xA4\"\n\n";
  }
  return po;
}

void BM_ParsePoFile(benchmark::State& state) {
  const std::string po = po_file(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(kf::PoCatalog::parse(po).size());
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * po.size()));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ParsePoFile)->RangeMultiplier(10)->Range(100, 100000)->Complexity();

void BM_ParseStringTable(benchmark::State& state) {
  std::string table = "// table\n";
  for (int i = 0; i < state.range(0); ++i) {
    table +=
        std::to_string(i) + ", \"Description of variable " + std::to_string(i) + "\\n\\tindented\"  // c\n";
  }
  for (auto _ : state) benchmark::DoNotOptimize(kf::StringTable::parse(table).size());
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * table.size()));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ParseStringTable)->RangeMultiplier(10)->Range(100, 100000)->Complexity();

void BM_TranslateText(benchmark::State& state) {
  const auto path = std::filesystem::temp_directory_path() / "kerfline-bench-texts.TRA";
  {
    std::ofstream out(path, std::ios::binary);
    out << po_file(10000);
  }
  kf::translation_store().start(kf::make_start_record(path.string(), ""));
  std::filesystem::remove(path);
  for (auto _ : state) {
    benchmark::DoNotOptimize(kf::translate_text("Tool number 4711 (%)\\r\\nsecond line"));
  }
}
BENCHMARK(BM_TranslateText);

}  // namespace
