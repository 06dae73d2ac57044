// The built-in table of numbered standard texts: names, defaults, types and
// groups of the standard variables, the special cut instructions, the tool,
// material and plot-time variables, and the directory that says where each
// kind of definition begins.
//
// Every row is a 32-bit text number and a text of at most 63 characters. The
// table keeps a fixed order and ends with a row whose number is
// kBuiltinTextEnd. Related texts sit in blocks of consecutive numbers; a kind
// is a run of equal blocks, described by three directory texts (107 to 142).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace kerfline::driver {

struct BuiltinText {
  std::uint32_t id;
  const char* text;  // never null; at most kBuiltinTextMaxLength characters
};

inline constexpr std::uint32_t kBuiltinTextEnd = 0xFFFFFFFFu;
inline constexpr std::size_t kBuiltinTextMaxLength = 63;

// Every row in table order; the last row is the terminator {kBuiltinTextEnd, ""}.
std::span<const BuiltinText> builtin_texts();

// The row with this number, or null (also for kBuiltinTextEnd, which names no
// text). The number-to-row map is built once, on first use, and may be built
// and read from several threads at once.
const BuiltinText* find_builtin_text(std::uint32_t id);

// The text with this number, or nothing when the table has no such row.
std::optional<std::string_view> builtin_text(std::uint32_t id);

// Kinds listed in the directory. Each value is the directory number of the
// kind's base text, which is also how the current-selection block refers to a
// kind (its "128" is the plot-time kind).
enum class TextKind : std::uint32_t {
  CutInstructions = 107,    // 1000
  ToolVariables = 110,      // 5000
  MaterialVariables = 116,  // 6000
  Groups = 119,             // 8000
  StandardVariables = 122,  // 9000
  OutputModes = 125,        // 2000
  PlotTimeVariables = 128,  // 2100
  Selections = 131,         // 2500
  Letters = 134,            // 2600
  Positions = 140,          // 2700
};

inline constexpr TextKind kAllTextKinds[] = {
    TextKind::CutInstructions,   TextKind::ToolVariables, TextKind::MaterialVariables, TextKind::Groups,
    TextKind::StandardVariables, TextKind::OutputModes,   TextKind::PlotTimeVariables, TextKind::Selections,
    TextKind::Letters,           TextKind::Positions,
};

// Where a kind begins, the numbers one block takes, and how many blocks.
struct KindLayout {
  std::uint32_t base;
  std::uint32_t step;
  std::uint32_t count;
};

// The layout as the directory texts state it. `directory_number` is the number
// of the kind's first directory text (a TextKind value); the standard-variable
// and output-mode kinds store base, count, step, the others base, step, count.
// Nothing when the number starts no kind or its texts are not whole numbers.
std::optional<KindLayout> kind_layout(std::uint32_t directory_number);
std::optional<KindLayout> kind_layout(TextKind kind);

// Number of the base of block `index` of a kind: base + step * index.
// Nothing for an index at or beyond the kind's count.
std::optional<std::uint32_t> block_of_kind(TextKind kind, std::uint32_t index);
std::optional<std::uint32_t> block_of_kind(std::uint32_t directory_number, std::uint32_t index);

// Offsets, inside one block, of the texts a kind defines; -1 where the kind
// has no such text. `code` is the plot-time "6", the letter and position "4"
// and the selection code; `routine` the plot-time value routine.
struct BlockFields {
  int name = -1;
  int default_value = -1;
  int factor = -1;
  int type = -1;
  int group = -1;
  int style = -1;
  int limit = -1;
  int code = -1;
  int routine = -1;
};
BlockFields block_fields(TextKind kind);

// Which block of which directory kind a number falls in.
struct BlockPosition {
  TextKind kind;
  std::uint32_t index;   // block index within the kind
  std::uint32_t offset;  // number - block base
};
std::optional<BlockPosition> locate_text_number(std::uint32_t id);

// The texts of one block, read from the table (empty where the table has no
// row or the kind no such text). A selection's name is its name or the
// directory number of the kind it selects.
struct BuiltinDefinition {
  TextKind kind;
  std::uint32_t index;
  std::string_view name;
  std::string_view default_value;
  std::string_view factor;
  std::string_view type;
  std::string_view group;
  std::string_view style;
  std::string_view limit;
  std::string_view code;
  std::string_view routine;
};
// The definition whose block begins at `id`; nothing when `id` is not the base
// of a block of a directory kind.
std::optional<BuiltinDefinition> builtin_definition(std::uint32_t id);

}  // namespace kerfline::driver
