#include "driver/builtin_texts.hpp"

#include "driver/builtin_vocabulary.hpp"

#include <charconv>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace kerfline::driver {

namespace {

namespace voc = vocabulary;

// The rows of the table and the texts the layout itself makes (the directory's
// numbers), which the rows point into.
struct Table {
  std::vector<BuiltinText> rows;
  std::deque<std::string> numbers;
};

// Lays the records out. Each kind is a run of blocks from its base, `step`
// numbers apart; an empty default is left out (the first standard variable
// keeps it). The directory states each kind's base, step and count, the
// count being the size of the kind's list.
Table lay_out() {
  Table t;
  auto put = [&t](std::uint32_t id, const char* text) { t.rows.push_back({id, text}); };
  auto put_default = [&put](std::uint32_t id, const char* text) {
    if (*text != '\0') put(id, text);
  };
  const struct {
    TextKind kind;
    std::uint32_t base;
    std::uint32_t step;
    std::size_t count;
  } kinds[] = {
      {TextKind::CutInstructions, 1000, 6, voc::cut_instructions().size()},
      {TextKind::ToolVariables, 5000, 8, voc::tool_variables().size()},
      {TextKind::MaterialVariables, 6000, 8, voc::material_variables().size()},
      {TextKind::Groups, 8000, 3, voc::groups().size()},
      {TextKind::StandardVariables, 9000, 8, voc::standard_variables().size()},
      {TextKind::OutputModes, 2000, 8, voc::output_modes().size()},
      {TextKind::PlotTimeVariables, 2100, 6, voc::plot_time_variables().size()},
      {TextKind::Selections, 2500, 3, voc::selections().size()},
      {TextKind::Letters, 2600, 4, voc::letters().size()},
      {TextKind::Positions, 2700, 4, voc::positions().size()},
  };
  for (const auto& k : kinds) {
    const auto number = static_cast<std::uint32_t>(k.kind);
    const bool count_first = k.kind == TextKind::StandardVariables || k.kind == TextKind::OutputModes;
    const std::size_t values[] = {k.base, count_first ? k.count : k.step, count_first ? k.step : k.count};
    for (std::uint32_t i = 0; i < 3; ++i)
      put(number + i, t.numbers.emplace_back(std::to_string(values[i])).c_str());
  }
  std::uint32_t id = 1000;
  for (const auto& v : voc::cut_instructions()) {
    put(id, v.name);
    put_default(id + 4, v.default_value);
    put(id + 5, v.type);
    id += 6;
  }
  id = 5000;
  for (const auto& v : voc::tool_variables()) {
    put(id, v.name);
    put_default(id + 3, v.default_value);
    put(id + 4, v.factor);
    put(id + 5, v.type);
    id += 8;
  }
  for (id = 5300; id <= 5800; id += 100) put(id, "%TPTyp%");
  id = 6000;
  for (const auto& v : voc::material_variables()) {
    put(id, v.name);
    put_default(id + 3, v.default_value);
    put(id + 5, v.type);
    id += 8;
  }
  id = 8000;
  for (const char* name : voc::groups()) {
    put(id, name);
    id += 3;
  }
  auto variables = [&](std::span<const voc::Variable> list, std::uint32_t base) {
    for (const auto& v : list) {
      put(base, v.name);
      if (base == 9000) {
        put(base + 3, v.default_value);
      } else {
        put_default(base + 3, v.default_value);
      }
      put(base + 4, v.type);
      put(base + 5, v.group);
      put(base + 6, v.style);
      put(base + 7, v.limit);
      base += 8;
    }
    return base;
  };
  // A name alone after the last block, beyond the directory's count.
  put(variables(voc::standard_variables(), 9000), "%OutFlag_6%");
  variables(voc::output_modes(), 2000);
  id = 2100;
  for (const auto& v : voc::plot_time_variables()) {
    put(id, v.name);
    put(id + 3, v.routine != nullptr ? "6" : "-");
    put(id + 4, v.routine != nullptr ? v.routine : "-");
    put(id + 5, v.routine != nullptr ? "0" : "-");
    id += 6;
  }
  id = 2502;  // the code rows (offset 1) are left out until it is known which goes with which
  for (const char* name : voc::selections()) {
    put(id, name);
    id += 3;
  }
  auto named = [&](std::span<const char* const> list, std::uint32_t base) {
    for (const char* name : list) {
      put(base, name);
      put(base + 3, "4");
      base += 4;
    }
  };
  named(voc::letters(), 2600);
  named(voc::positions(), 2700);
  put(12000, "%ReadInit%");
  put(kBuiltinTextEnd, "");
  return t;
}

const std::vector<BuiltinText>& table() {
  static const Table t = lay_out();
  return t.rows;
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
