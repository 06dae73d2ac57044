// The function registry: every function a template can call, looked up by
// the upper-case form of its name. The first registration of a name wins,
// so a later table or a user function can never replace an earlier entry;
// the shadowed entry is still kept for a function browser's listing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kerfline::script {

class ArgStack;
class Evaluator;
struct FunctionRecord;

// Pops its arguments from the stack (last argument first) and returns the
// result text. May throw ScriptError.
using NativeRoutine = std::string (*)(ArgStack& args, const FunctionRecord& record, Evaluator& evaluator);

struct FunctionRecord {
  std::string name;
  NativeRoutine routine = nullptr;  // absent for user functions
  std::int32_t parameter_count = 0;
  std::string parameters;   // for a function browser, e.g. "Text, n"
  std::string second_text;  // a user function's body; empty for built-ins
  std::string help;
  std::vector<std::string> parameter_names;  // user functions
  bool user = false;
};

inline constexpr const char* kUserFunctionHelp = "<!--user func-->";

class FunctionRegistry {
 public:
  // False when the name is empty (nothing kept) or already taken (the
  // record is listed as shadowed but can never be called).
  bool add(FunctionRecord record);
  [[nodiscard]] const FunctionRecord* find(std::string_view name) const;
  // Every callable entry in registration order.
  [[nodiscard]] const std::vector<const FunctionRecord*>& entries() const { return order_; }
  // Every registered record in registration order, shadowed ones included.
  [[nodiscard]] const std::vector<const FunctionRecord*>& listing() const { return listing_; }
  // True for a listed record that lost to an earlier one of the same name.
  [[nodiscard]] bool shadowed(const FunctionRecord& record) const { return find(record.name) != &record; }

 private:
  std::vector<std::unique_ptr<FunctionRecord>> records_;
  std::unordered_map<std::string, const FunctionRecord*> by_upper_name_;
  std::vector<const FunctionRecord*> order_;
  std::vector<const FunctionRecord*> listing_;
};

// A user function: a body expanded in place of each call, its parameter
// names replaced by the argument texts. parameter_list is comma separated.
bool add_user_function(FunctionRegistry& registry, std::string_view name, std::string_view parameter_list,
                       std::string_view body);

// Splits a comma-separated parameter list into trimmed names; an empty or
// blank list has none.
std::vector<std::string> split_parameter_names(std::string_view parameter_list);

}  // namespace kerfline::script
