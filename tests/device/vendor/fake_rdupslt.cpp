// Roland's slot reader: the four numbers of FAKE_VENDOR_ANSWER ("1 2 3 4");
// FAKE_VENDOR_FAILS=1 makes the read fail.
#include <cstdint>
#include <cstdio>

#include "fake_vendor.hpp"

FAKE_EXPORT std::intptr_t Open(const char* name, std::uint32_t access, std::uint32_t, void*,
                               std::uint32_t how, std::uint32_t flags, void*) {
  fake::log_call(std::string("open ") + name + " " + std::to_string(access) + " " + std::to_string(how) +
                 " " + std::to_string(flags));
  return std::string(name) == "absent" ? -1 : 9;
}
FAKE_EXPORT int ReadSlot(std::intptr_t, std::int32_t* slot, std::uint32_t size, std::uint32_t* bytes, int,
                         int, int code) {
  fake::log_call("read " + std::to_string(size) + " " + std::to_string(code));
  if (fake::env_int("FAKE_VENDOR_FAILS") > 0) return 0;
  long v[4] = {0, 0, 0, 0};
  std::sscanf(fake::env_text("FAKE_VENDOR_ANSWER").c_str(), "%ld %ld %ld %ld", &v[0], &v[1], &v[2], &v[3]);
  for (int i = 0; i < 4; ++i) slot[i] = static_cast<std::int32_t>(v[i]);
  *bytes = 16;
  return 1;
}
FAKE_EXPORT int Close(std::intptr_t) {
  fake::log_call("close");
  return 1;
}
