#include "platform/ini.hpp"
#include "platform/paths.hpp"
#include "platform/registry.hpp"

namespace kerfline::platform {

std::optional<std::string> read_registry_value(std::string_view full_name) {
  const std::size_t cut = full_name.rfind('\\');
  if (cut == std::string_view::npos || cut == 0) return std::nullopt;
  std::string_view value = full_name.substr(cut + 1);
  if (value.empty()) value = "@";
  return ini::find_string(full_name.substr(0, cut), value, join_path(home_dir(), kRegistryIniFile));
}

}  // namespace kerfline::platform
