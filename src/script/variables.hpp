// Variable sets. Names are kept in upper case (Windows-1252 rules); the
// masked sets hold a visibility mask per variable, and a variable counts for
// an evaluation on channel c only when bit (c AND 31) of its mask is set.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kerfline::script {

class MaskedVariableSet {
 public:
  void set(std::string_view name, std::string value, std::uint32_t mask);
  // False when there was no such variable.
  bool remove(std::string_view name);
  // The value when the variable exists and is visible on the channel.
  [[nodiscard]] const std::string* find(std::string_view upper_name, std::int32_t channel) const;
  [[nodiscard]] std::size_t size() const { return vars_.size(); }
  void clear() { vars_.clear(); }

 private:
  struct Entry {
    std::string value;
    std::uint32_t mask = 0;
  };
  std::unordered_map<std::string, Entry> vars_;
};

// The variables a script creates with VarSet: visible on every channel.
class ScriptVariableSet {
 public:
  void set(std::string_view name, std::string value);
  [[nodiscard]] const std::string* find(std::string_view upper_name) const;
  [[nodiscard]] std::size_t size() const { return vars_.size(); }

 private:
  std::unordered_map<std::string, std::string> vars_;
};

}  // namespace kerfline::script
