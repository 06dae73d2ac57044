// Configuration-set texts come from driver files and hosts: any bytes must
// read without a crash, and what was read must write back.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "support/config_set.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kerfline::support::CCfgMan man;
  man.Read(std::string_view(reinterpret_cast<const char*>(data), size));
  (void)man.Write();
  return 0;
}
