#include "driver/text_definitions.hpp"

#include <charconv>
#include <utility>

#include "driver/builtin_texts.hpp"
#include "driver/text_dictionary.hpp"

namespace kerfline::driver {

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

// The standard-variable and output-mode kinds store base, count, step; the
// others base, step, count.
bool count_before_step(TextKind kind) {
  return kind == TextKind::StandardVariables || kind == TextKind::OutputModes;
}

}  // namespace

TextDefinitions::TextDefinitions(TextLookup lookup) : lookup_(std::move(lookup)) {
  for (const TextKind k : kAllTextKinds) {
    const auto first = static_cast<std::uint32_t>(k);
    const auto base = parse_number(text(first));
    const auto second = parse_number(text(first + 1));
    const auto third = parse_number(text(first + 2));
    if (!base || !second || !third) continue;
    Kind kind;
    kind.base = *base;
    kind.step = count_before_step(k) ? *third : *second;
    kind.count = count_before_step(k) ? *second : *third;
    const BlockFields fields = block_fields(k);
    kind.default_offset = fields.default_value;
    kind.type_offset = fields.type;
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
    if (kind->default_offset >= 0)
      def.default_value = text(id + static_cast<std::uint32_t>(kind->default_offset));
    if (kind->type_offset >= 0)
      def.type = type_code_of(text(id + static_cast<std::uint32_t>(kind->type_offset)));
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
