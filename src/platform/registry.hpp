// Reading a value of the system registry by its full name, as drivers write
// it: "HKEY_CURRENT_USER\Software\Vendor\Product\Value" (also HKCU, HKLM,
// HKEY_LOCAL_MACHINE, HKCR, HKEY_CLASSES_ROOT, HKU, HKEY_USERS). The part
// after the last backslash names the value; a name ending in a backslash
// reads the key's default value.
//
// Windows reads the registry (string, expandable string and 32-bit number
// values; a number is given in decimal). Other systems have no registry: the
// values are kept in the INI file "registry.ini" of the suite directory, one
// section per key, named as the key is written without the value name
// ("[HKEY_CURRENT_USER\Software\Vendor\Product]"), "Value=text" lines
// inside; the default value is the key "@".
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kerfline::platform {

std::optional<std::string> read_registry_value(std::string_view full_name);

// The file that stands for the registry where there is none.
inline constexpr const char* kRegistryIniFile = "registry.ini";

}  // namespace kerfline::platform
