#include "driver/text_definitions.hpp"

#include <charconv>
#include <utility>

namespace kerfline::driver {

// The one place that reaches the library's text dictionary.
std::string dictionary_text(std::uint32_t id);

TextLookup standard_text_lookup() {
  return [](std::uint32_t id) { return dictionary_text(id); };
}

std::optional<std::uint32_t> type_code_of(const std::string& name) {
  if (name == "String") return 4;
  if (name == "Integer") return 1;
  if (name == "Double") return 0;
  if (name == "Date") return 3;
  if (name == "Bool") return 2;
  return std::nullopt;
}

namespace {

std::optional<std::uint32_t> parse_number(const std::string& text) {
  std::uint32_t value = 0;
  const char* end = text.data() + text.size();
  const auto [ptr, ec] = std::from_chars(text.data(), end, value);
  if (ec != std::errc() || ptr != end || text.empty()) return std::nullopt;
  return value;
}

// Directory entries: the first of three numbers, whether they stand as
// base, count, step (instead of base, step, count), and where the default
// and the type name sit in a block.
struct DirectoryEntry {
  std::uint32_t first;
  bool count_before_step;
  int default_offset;
  int type_offset;
};

constexpr DirectoryEntry kDirectory[] = {
    {107, false, 4, 5},    // special cut instructions
    {110, false, 3, 5},    // tool variables
    {116, false, 3, 5},    // material variables
    {119, false, -1, -1},  // group names
    {122, true, 3, 4},     // standard variables
    {125, true, 3, 4},     // output-mode variables
    {128, false, -1, -1},  // plot-time variables
    {131, false, -1, -1},  // current selections
    {134, false, -1, -1},  // single-letter variables
    {140, false, -1, -1},  // position variables
};

}  // namespace

TextDefinitions::TextDefinitions(TextLookup lookup) : lookup_(std::move(lookup)) {
  for (const DirectoryEntry& e : kDirectory) {
    const auto base = parse_number(text(e.first));
    const auto second = parse_number(text(e.first + 1));
    const auto third = parse_number(text(e.first + 2));
    if (!base || !second || !third) continue;
    Kind kind;
    kind.base = *base;
    kind.step = e.count_before_step ? *third : *second;
    kind.count = e.count_before_step ? *second : *third;
    kind.default_offset = e.default_offset;
    kind.type_offset = e.type_offset;
    if (kind.step == 0) continue;
    kinds_.push_back(kind);
  }
}

const TextDefinitions::Kind* TextDefinitions::kind_of_block(std::uint32_t id) const {
  for (const Kind& k : kinds_) {
    if (id < k.base) continue;
    const std::uint64_t offset = id - k.base;
    if (offset % k.step == 0 && offset / k.step < k.count) return &k;
  }
  return nullptr;
}

ItemDefinition TextDefinitions::definition(std::uint32_t id) const {
  ItemDefinition def;
  def.name = text(id);
  def.description = text(id + 1);
  if (const Kind* kind = kind_of_block(id)) {
    if (kind->default_offset >= 0) def.default_value = text(id + static_cast<std::uint32_t>(kind->default_offset));
    if (kind->type_offset >= 0) def.type = type_code_of(text(id + static_cast<std::uint32_t>(kind->type_offset)));
  }
  return def;
}

std::uint32_t TextDefinitions::cut_instruction_count() const {
  // A dictionary could answer anything; a count beyond the block's room is
  // not a count of cut instructions.
  constexpr std::uint32_t kLimit = 1000;
  const auto count = parse_number(text(109));
  return count && *count <= kLimit ? *count : 0;
}

}  // namespace kerfline::driver
