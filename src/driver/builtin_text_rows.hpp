// The blocks of the built-in table, one function per block; builtin_texts()
// joins them in table order.
#pragma once

#include "driver/builtin_texts.hpp"

#include <span>
#include <string_view>

namespace kerfline::driver::rows {

template <std::size_t N>
constexpr bool rows_fit(const BuiltinText (&rows)[N]) {
  for (const BuiltinText& row : rows) {
    if (row.text == nullptr || std::string_view(row.text).size() > kBuiltinTextMaxLength) return false;
    if (row.id == kBuiltinTextEnd) return false;
  }
  for (std::size_t i = 1; i < N; ++i) {
    if (rows[i].id <= rows[i - 1].id) return false;  // ascending within a block, no repeats
  }
  return true;
}

std::span<const BuiltinText> directory();
std::span<const BuiltinText> cut_instructions();
std::span<const BuiltinText> tool_variables();
std::span<const BuiltinText> tool_parameter_types();
std::span<const BuiltinText> material_variables();
std::span<const BuiltinText> groups();
std::span<const BuiltinText> standard_variables();
std::span<const BuiltinText> output_modes();
std::span<const BuiltinText> plot_time_variables();
std::span<const BuiltinText> selections();
std::span<const BuiltinText> letters();
std::span<const BuiltinText> positions();
std::span<const BuiltinText> read_instructions();

}  // namespace kerfline::driver::rows
