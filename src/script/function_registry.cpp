#include "script/function_registry.hpp"

#include "platform/codepage.hpp"
#include "platform/text_trim.hpp"

namespace kerfline::script {
namespace {

using platform::trim;

}  // namespace

bool FunctionRegistry::add(FunctionRecord record) {
  if (record.name.empty()) return false;
  std::string key = platform::cp1252::to_upper(record.name);
  const bool taken = by_upper_name_.count(key) != 0;
  // All or nothing: whatever can run out of memory comes first, the pushes
  // into room made beforehand cannot fail.
  auto owned = std::make_unique<FunctionRecord>(std::move(record));
  const FunctionRecord* kept = owned.get();
  const auto make_room = [](auto& list) {
    if (list.size() == list.capacity()) list.reserve(list.size() * 2 + 8);
  };
  make_room(records_);
  make_room(listing_);
  make_room(order_);
  if (!taken) by_upper_name_.emplace(std::move(key), kept);
  records_.push_back(std::move(owned));
  listing_.push_back(kept);
  if (taken) return false;
  order_.push_back(kept);
  return true;
}

const FunctionRecord* FunctionRegistry::find(std::string_view name) const {
  if (name.empty()) return nullptr;
  const auto it = by_upper_name_.find(platform::cp1252::to_upper(name));
  return it == by_upper_name_.end() ? nullptr : it->second;
}

std::vector<std::string> split_parameter_names(std::string_view parameter_list) {
  std::vector<std::string> names;
  if (trim(parameter_list).empty()) return names;
  std::size_t from = 0;
  while (true) {
    const std::size_t comma = parameter_list.find(',', from);
    names.emplace_back(trim(parameter_list.substr(from, comma - from)));
    if (comma == std::string_view::npos) break;
    from = comma + 1;
  }
  return names;
}

bool add_user_function(FunctionRegistry& registry, std::string_view name, std::string_view parameter_list,
                       std::string_view body) {
  FunctionRecord record;
  record.name = std::string(name);
  record.parameter_names = split_parameter_names(parameter_list);
  record.parameter_count = static_cast<std::int32_t>(record.parameter_names.size());
  record.parameters = std::string(parameter_list);
  record.second_text = std::string(body);
  record.help = kUserFunctionHelp;
  record.user = true;
  return registry.add(std::move(record));
}

}  // namespace kerfline::script
