// Roland's RDG library: FAKE_VENDOR_FAILS failed reads, then
// FAKE_VENDOR_EMPTY empty ones, then FAKE_VENDOR_ANSWER. An open of the
// device "absent" fails.
#include <cstdint>
#include <cstring>

#include "fake_vendor.hpp"

namespace {
int reads = 0;
}

FAKE_EXPORT std::intptr_t RDG_Open(const char* name) {
  fake::log_call(std::string("open ") + name);
  return std::strcmp(name, "absent") == 0 ? 0 : 7;
}
FAKE_EXPORT int RDG_Write(std::intptr_t, const char* text, int length) {
  fake::log_call("write " + std::string(text, static_cast<std::size_t>(length)));
  return 1;
}
FAKE_EXPORT int RDG_Read(std::intptr_t, char* buffer, int size) {
  const int n = reads++;
  fake::log_call("read");
  if (n < fake::env_int("FAKE_VENDOR_FAILS")) return 0;
  buffer[0] = '\0';
  if (n < fake::env_int("FAKE_VENDOR_FAILS") + fake::env_int("FAKE_VENDOR_EMPTY")) return 1;
  const std::string answer = fake::env_text("FAKE_VENDOR_ANSWER");
  std::strncpy(buffer, answer.c_str(), static_cast<std::size_t>(size));
  return 1;
}
FAKE_EXPORT int RDG_Close(std::intptr_t) {
  fake::log_call("close");
  return 1;
}
