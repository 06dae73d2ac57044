// IEEE-1284 device ids come from the device itself: parsed without trust.
#include "platform/text_trim.hpp"
#include "platform/usb_devices.hpp"

namespace kerfline::platform::usb {
namespace {

std::string_view trimmed(std::string_view s) { return trim(s, " \t\n\r"); }

bool same_key(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    auto up = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; };
    if (up(a[i]) != up(b[i])) return false;
  }
  return true;
}

std::string_view long_form(std::string_view key) {
  if (same_key(key, "MFG")) return "MANUFACTURER";
  if (same_key(key, "MDL")) return "MODEL";
  if (same_key(key, "CMD")) return "COMMAND SET";
  if (same_key(key, "DES")) return "DESCRIPTION";
  return {};
}

}  // namespace

std::string ieee1284_field(std::string_view id, std::string_view key) {
  const std::string_view alias = long_form(key);
  std::size_t start = 0;
  while (start < id.size()) {
    std::size_t end = id.find(';', start);
    if (end == std::string_view::npos) end = id.size();
    const std::string_view pair = id.substr(start, end - start);
    const std::size_t colon = pair.find(':');
    if (colon != std::string_view::npos) {
      const std::string_view k = trimmed(pair.substr(0, colon));
      if (same_key(k, key) || (!alias.empty() && same_key(k, alias))) {
        return std::string(trimmed(pair.substr(colon + 1)));
      }
    }
    start = end + 1;
  }
  return {};
}

}  // namespace kerfline::platform::usb
