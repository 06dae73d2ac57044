// Command lines come from hosts: any bytes must split without a crash, and
// the arguments can never hold more bytes than the line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/process.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  std::size_t total = 0;
  for (const auto& arg : kerfline::platform::split_command_line(line)) total += arg.size();
  if (total > size) std::abort();
  return 0;
}
