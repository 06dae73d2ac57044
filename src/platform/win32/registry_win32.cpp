#include <array>
#include <cstring>
#include <string>

#include "platform/registry.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {
namespace {

struct Root {
  std::string_view name;
  HKEY key;
};

HKEY root_key(std::string_view name) {
  const std::array<Root, 9> roots{{{"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                                   {"HKCU", HKEY_CURRENT_USER},
                                   {"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                                   {"HKLM", HKEY_LOCAL_MACHINE},
                                   {"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
                                   {"HKCR", HKEY_CLASSES_ROOT},
                                   {"HKEY_USERS", HKEY_USERS},
                                   {"HKU", HKEY_USERS},
                                   {"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG}}};
  for (const Root& r : roots) {
    if (r.name.size() == name.size() &&
        CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, r.name.data(), static_cast<int>(r.name.size()),
                       name.data(), static_cast<int>(name.size())) == CSTR_EQUAL) {
      return r.key;
    }
  }
  return nullptr;
}

}  // namespace

std::optional<std::string> read_registry_value(std::string_view full_name) {
  const std::size_t first = full_name.find('\\');
  const std::size_t last = full_name.rfind('\\');
  if (first == std::string_view::npos) return std::nullopt;
  const HKEY root = root_key(full_name.substr(0, first));
  if (root == nullptr) return std::nullopt;
  const std::string sub(full_name.substr(first + 1, last > first ? last - first - 1 : 0));
  const std::string value(full_name.substr(last + 1));
  const char* value_name = value.empty() ? nullptr : value.c_str();
  constexpr DWORD kFlags = RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_RT_REG_DWORD;
  DWORD type = 0;
  DWORD size = 0;
  if (RegGetValueA(root, sub.c_str(), value_name, kFlags, &type, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  // Values are short; a bound keeps a hostile value from taking memory.
  if (size > (1U << 20)) return std::nullopt;
  std::string data(size + 1, '\0');
  if (RegGetValueA(root, sub.c_str(), value_name, kFlags, &type, data.data(), &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  if (type == REG_DWORD) {
    DWORD n = 0;
    std::memcpy(&n, data.data(), sizeof n);
    return std::to_string(n);
  }
  data.resize(std::strlen(data.c_str()));
  return data;
}

}  // namespace kerfline::platform
