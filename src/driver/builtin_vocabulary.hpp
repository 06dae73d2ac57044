// The records the built-in table is made of (builtin_vocabulary.cpp); the
// offsets each kind's block gives them are in builtin_texts.cpp.
#pragma once

#include <span>

namespace kerfline::driver::vocabulary {

// A standard variable or an output mode.
struct Variable {
  const char* name;
  const char* default_value;
  const char* type;
  const char* group;
  const char* style;
  const char* limit;
};
struct CutInstruction {
  const char* name;
  const char* default_value;
  const char* type;
};
struct ToolVariable {
  const char* name;
  const char* default_value;
  const char* factor;
  const char* type;
};
struct MaterialVariable {
  const char* name;
  const char* default_value;
  const char* type;
};
struct PlotTimeVariable {
  const char* name;
  const char* routine;  // null for the separator
};

std::span<const Variable> standard_variables();
std::span<const Variable> output_modes();
std::span<const CutInstruction> cut_instructions();
std::span<const ToolVariable> tool_variables();
std::span<const MaterialVariable> material_variables();
std::span<const PlotTimeVariable> plot_time_variables();
std::span<const char* const> groups();
std::span<const char* const> selections();
std::span<const char* const> letters();
std::span<const char* const> positions();

}  // namespace kerfline::driver::vocabulary
