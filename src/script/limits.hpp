// Bounds that keep any template, however hostile, from exhausting the stack
// or memory of the host. The same numbers are documented for hosts in
// kerfline.h (Evaluation section).
#pragma once

#include <cstddef>

namespace kerfline::script {

// A template pass refuses to start once this many have run on one evaluator
// since the last top-level reset.
inline constexpr int kMaxPassCount = 10;

// Calls nested inside one expression, user-function expansions included.
inline constexpr int kMaxCallDepth = 64;

// Evaluations started from inside an evaluation: imported files and the
// conditional blocks that an operand's value brings in.
inline constexpr int kMaxNestedEvaluations = 16;

// Text produced by user-function expansions within one expression.
inline constexpr std::size_t kMaxExpansionBytes = std::size_t{64} << 10;

// The work budget of one top-level evaluation (DoEval, the library's output
// entry), imports and conditional operands included: evaluations and calls
// started, and bytes produced by template passes and conditional blocks.
// Past either the evaluation ends with "[internal recursion limit reached]".
inline constexpr std::size_t kMaxEvaluationsPerEntry = 100000;
inline constexpr std::size_t kMaxBytesPerEntry = std::size_t{64} << 20;

// Output of one conditional or arithmetic pass; a pass that would exceed it
// gives the status text "0.0".
inline constexpr std::size_t kMaxPassOutputBytes = std::size_t{64} << 20;

// The result of one built-in that can multiply its input (Join, Join3,
// Repl, AddNChar, IAR): longer results are cut here.
inline constexpr std::size_t kMaxFunctionResultBytes = std::size_t{16} << 20;

// Lines of one arc drawn by IAR.
inline constexpr int kMaxArcLines = 10000;

// Parenthesis and operator nesting inside one arithmetic block.
inline constexpr int kMaxArithmeticDepth = 200;

}  // namespace kerfline::script
