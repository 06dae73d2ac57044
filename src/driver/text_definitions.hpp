// Definitions that items take from text numbers: an item with a text number
// gets its name, description, type and default from the standard texts.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kerfline::driver {

// Answers the text of a text number ("" when there is none).
using TextLookup = std::function<std::string(std::uint32_t)>;

// The library's text dictionary (built-in table, then the resource tables).
TextLookup standard_text_lookup();

struct ItemDefinition {
  std::string name;         // text n
  std::string description;  // text n + 1
  std::string default_value;
  std::optional<std::uint32_t> type;  // from the kind's type name, when it has one
};

// The type code of a type name ("String" 4, "Integer" 1, "Double" 0,
// "Date" 3, "Bool" 2); nothing for any other text.
std::optional<std::uint32_t> type_code_of(const std::string& name);

class TextDefinitions {
 public:
  explicit TextDefinitions(TextLookup lookup);

  [[nodiscard]] std::string text(std::uint32_t id) const { return lookup_ ? lookup_(id) : std::string(); }
  [[nodiscard]] ItemDefinition definition(std::uint32_t id) const;

  // How many special cut instructions a populating group creates (text 109),
  // and the text number of the k-th.
  [[nodiscard]] std::uint32_t cut_instruction_count() const;
  static constexpr std::uint32_t cut_instruction_id(std::uint32_t k) { return 1000 + 6 * k; }

  // A kind of definition as the directory (texts 107 to 142) describes it.
  struct Kind {
    std::uint32_t base = 0;
    std::uint32_t step = 0;
    std::uint32_t count = 0;
    int default_offset = -1;  // -1: the kind has no such text
    int type_offset = -1;
  };
  [[nodiscard]] const std::vector<Kind>& kinds() const { return kinds_; }
  // The kind whose block starts at `id`, if any.
  [[nodiscard]] const Kind* kind_of_block(std::uint32_t id) const;

 private:
  TextLookup lookup_;
  std::vector<Kind> kinds_;
};

}  // namespace kerfline::driver
