// usbapi.dll by ordinal: answers FAKE_VENDOR_ANSWER, announcing
// FAKE_VENDOR_ANNOUNCE bytes (the answer's length when unset).
#include <cstdint>
#include <cstring>

#include "fake_vendor.hpp"

FAKE_EXPORT std::intptr_t usbapi_ordinal_1() { return 42; }
FAKE_EXPORT int usbapi_ordinal_2(std::intptr_t c, const char* text, std::uint32_t length) {
  fake::log_call(std::to_string(c) + " write " + std::string(text, length - 1) + " length " +
                 std::to_string(length));
  return 1;
}
FAKE_EXPORT int usbapi_ordinal_8(std::intptr_t, std::uint32_t* count) {
  const char* announce = std::getenv("FAKE_VENDOR_ANNOUNCE");
  *count = announce != nullptr ? static_cast<std::uint32_t>(std::atoi(announce))
                               : static_cast<std::uint32_t>(fake::env_text("FAKE_VENDOR_ANSWER").size());
  return 1;
}
FAKE_EXPORT int usbapi_ordinal_3(std::intptr_t, char* buffer, std::uint32_t size, std::uint32_t* count) {
  const std::string answer = fake::env_text("FAKE_VENDOR_ANSWER");
  const std::size_t n = answer.size() < size ? answer.size() : size;
  std::memcpy(buffer, answer.data(), n);
  *count = static_cast<std::uint32_t>(n);
  return 1;
}
FAKE_EXPORT int usbapi_ordinal_4(std::intptr_t c) {
  fake::log_call(std::to_string(c) + " close");
  return 1;
}
