#include "script/variables.hpp"

#include "platform/codepage.hpp"

namespace kerfline::script {

void MaskedVariableSet::set(std::string_view name, std::string value, std::uint32_t mask) {
  Entry& entry = vars_[platform::cp1252::to_upper(name)];
  entry.value = std::move(value);
  entry.mask = mask;
}

bool MaskedVariableSet::remove(std::string_view name) {
  return vars_.erase(platform::cp1252::to_upper(name)) != 0;
}

const std::string* MaskedVariableSet::find(std::string_view upper_name, std::int32_t channel) const {
  if (vars_.empty()) return nullptr;
  const auto it = vars_.find(std::string(upper_name));
  if (it == vars_.end()) return nullptr;
  const unsigned bit = static_cast<unsigned>(channel) & 31u;
  return (it->second.mask >> bit & 1u) != 0 ? &it->second.value : nullptr;
}

void ScriptVariableSet::set(std::string_view name, std::string value) {
  vars_[platform::cp1252::to_upper(name)] = std::move(value);
}

const std::string* ScriptVariableSet::find(std::string_view upper_name) const {
  if (vars_.empty()) return nullptr;
  const auto it = vars_.find(std::string(upper_name));
  return it == vars_.end() ? nullptr : &it->second;
}

}  // namespace kerfline::script
