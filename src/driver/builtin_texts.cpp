#include "driver/builtin_texts.hpp"

#include "driver/builtin_text_rows.hpp"

#include <charconv>
#include <unordered_map>
#include <vector>

namespace kerfline::driver {

namespace {

std::vector<BuiltinText> join_blocks() {
  const std::span<const BuiltinText> blocks[] = {
      rows::directory(),
      rows::cut_instructions(),
      rows::tool_variables(),
      rows::tool_parameter_types(),
      rows::material_variables(),
      rows::groups(),
      rows::standard_variables(),
      rows::output_modes(),
      rows::plot_time_variables(),
      rows::selections(),
      rows::letters(),
      rows::positions(),
      rows::read_instructions(),
  };
  std::size_t total = 1;
  for (const auto& block : blocks) total += block.size();
  std::vector<BuiltinText> table;
  table.reserve(total);
  for (const auto& block : blocks) table.insert(table.end(), block.begin(), block.end());
  table.push_back({kBuiltinTextEnd, ""});
  return table;
}

const std::vector<BuiltinText>& table() {
  static const std::vector<BuiltinText> rows = join_blocks();
  return rows;
}

const std::unordered_map<std::uint32_t, const BuiltinText*>& index() {
  static const auto map = [] {
    std::unordered_map<std::uint32_t, const BuiltinText*> ids;
    const auto& rows = table();
    ids.reserve(rows.size());
    for (const BuiltinText& row : rows) {
      if (row.id == kBuiltinTextEnd) break;
      ids.emplace(row.id, &row);  // the first row of a number answers, as a scan would
    }
    return ids;
  }();
  return map;
}

std::optional<std::uint32_t> directory_number(std::uint32_t id) {
  const auto text = builtin_text(id);
  if (!text) return std::nullopt;
  std::uint32_t value = 0;
  const char* first = text->data();
  const char* last = first + text->size();
  const auto [end, error] = std::from_chars(first, last, value);
  if (error != std::errc() || end != last || first == last) return std::nullopt;
  return value;
}

bool is_kind(std::uint32_t directory_number) {
  for (TextKind kind : kAllTextKinds) {
    if (static_cast<std::uint32_t>(kind) == directory_number) return true;
  }
  return false;
}

std::string_view text_at(std::uint32_t base, int offset) {
  if (offset < 0) return {};
  return builtin_text(base + static_cast<std::uint32_t>(offset)).value_or(std::string_view());
}

}  // namespace

std::span<const BuiltinText> builtin_texts() { return table(); }

const BuiltinText* find_builtin_text(std::uint32_t id) {
  const auto& ids = index();
  const auto it = ids.find(id);
  return it == ids.end() ? nullptr : it->second;
}

std::optional<std::string_view> builtin_text(std::uint32_t id) {
  const BuiltinText* row = find_builtin_text(id);
  if (row == nullptr) return std::nullopt;
  return std::string_view(row->text);
}

std::optional<KindLayout> kind_layout(std::uint32_t directory_number_of_base) {
  if (!is_kind(directory_number_of_base)) return std::nullopt;
  const auto base = directory_number(directory_number_of_base);
  const auto second = directory_number(directory_number_of_base + 1);
  const auto third = directory_number(directory_number_of_base + 2);
  if (!base || !second || !third) return std::nullopt;
  const auto kind = static_cast<TextKind>(directory_number_of_base);
  if (kind == TextKind::StandardVariables || kind == TextKind::OutputModes) {
    return KindLayout{*base, *third, *second};
  }
  return KindLayout{*base, *second, *third};
}

std::optional<KindLayout> kind_layout(TextKind kind) { return kind_layout(static_cast<std::uint32_t>(kind)); }

std::optional<std::uint32_t> block_of_kind(std::uint32_t directory_number_of_base, std::uint32_t index) {
  const auto layout = kind_layout(directory_number_of_base);
  if (!layout || index >= layout->count) return std::nullopt;
  return layout->base + layout->step * index;
}

std::optional<std::uint32_t> block_of_kind(TextKind kind, std::uint32_t index) {
  return block_of_kind(static_cast<std::uint32_t>(kind), index);
}

BlockFields block_fields(TextKind kind) {
  BlockFields fields;
  switch (kind) {
    case TextKind::CutInstructions:
      fields.name = 0;
      fields.default_value = 4;
      fields.type = 5;
      break;
    case TextKind::ToolVariables:
    case TextKind::MaterialVariables:
      fields.name = 0;
      fields.default_value = 3;
      fields.factor = 4;
      fields.type = 5;
      fields.style = 6;
      if (kind == TextKind::MaterialVariables) fields.limit = 7;
      break;
    case TextKind::Groups:
      fields.name = 0;
      break;
    case TextKind::StandardVariables:
    case TextKind::OutputModes:
      fields.name = 0;
      fields.default_value = 3;
      fields.type = 4;
      fields.group = 5;
      fields.style = 6;
      fields.limit = 7;
      break;
    case TextKind::PlotTimeVariables:
      fields.name = 0;
      fields.code = 3;
      fields.routine = 4;
      break;
    case TextKind::Selections:
      fields.code = 1;
      fields.name = 2;
      break;
    case TextKind::Letters:
    case TextKind::Positions:
      fields.name = 0;
      fields.code = 3;
      break;
  }
  return fields;
}

std::optional<BlockPosition> locate_text_number(std::uint32_t id) {
  for (TextKind kind : kAllTextKinds) {
    const auto layout = kind_layout(kind);
    if (!layout || layout->step == 0 || id < layout->base) continue;
    const std::uint64_t distance = id - layout->base;
    const std::uint64_t block = distance / layout->step;
    if (block >= layout->count) continue;
    return BlockPosition{kind, static_cast<std::uint32_t>(block),
                         static_cast<std::uint32_t>(distance % layout->step)};
  }
  return std::nullopt;
}

std::optional<BuiltinDefinition> builtin_definition(std::uint32_t id) {
  const auto position = locate_text_number(id);
  if (!position || position->offset != 0) return std::nullopt;
  const BlockFields fields = block_fields(position->kind);
  BuiltinDefinition definition{};
  definition.kind = position->kind;
  definition.index = position->index;
  definition.name = text_at(id, fields.name);
  definition.default_value = text_at(id, fields.default_value);
  definition.factor = text_at(id, fields.factor);
  definition.type = text_at(id, fields.type);
  definition.group = text_at(id, fields.group);
  definition.style = text_at(id, fields.style);
  definition.limit = text_at(id, fields.limit);
  definition.code = text_at(id, fields.code);
  definition.routine = text_at(id, fields.routine);
  return definition;
}

}  // namespace kerfline::driver
