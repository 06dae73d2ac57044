// The simulated cutter's command reader on arbitrary bytes, whole and split in
// two: no crash, the same answers either way, every answer ended by "\r",
// and a picture of whatever was cut.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "plotter.hpp"

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  kerfline::sim::Plotter whole;
  kerfline::sim::Plotter split;
  std::vector<std::string> a;
  std::vector<std::string> b;
  whole.feed(input, a);
  split.feed(input.substr(0, size / 2), b);
  split.feed(input.substr(size / 2), b);
  check(a == b);
  for (const auto& answer : a) check(!answer.empty() && answer.back() == '\r');
  check(whole.strokes().size() <= size);
  (void)kerfline::sim::render_svg(whole);
  return 0;
}
