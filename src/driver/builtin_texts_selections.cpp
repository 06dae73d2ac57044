// Current selections (2500, step 3): 1 code ("4" or "6"), 2 name or directory
// number of a kind. Which code goes with which selection is not known, so the
// code rows are left out until it is.
// Single-letter (2600) and position (2700) variables, step 4: 0 name, 3 "4".
// Read-instruction blocks from 12000, beginning with "%ReadInit%".

#include "driver/builtin_text_rows.hpp"

namespace kerfline::driver::rows {

namespace {
// clang-format off
constexpr BuiltinText kSelections[] = {
    {2502, "ActMat"},
    {2505, "ActTool"},
    {2508, "ActIMat"},
    {2511, "128"},
    {2514, "134"},
    {2517, "140"},
};
// clang-format on
static_assert(rows_fit(kSelections));
}  // namespace

std::span<const BuiltinText> selections() { return kSelections; }

namespace {
// clang-format off
constexpr BuiltinText kLetters[] = {
    {2600, "%T%"},
    {2603, "4"},
    {2604, "%A%"},
    {2607, "4"},
    {2608, "%B%"},
    {2611, "4"},
    {2612, "%N%"},
    {2615, "4"},
};
// clang-format on
static_assert(rows_fit(kLetters));
}  // namespace

std::span<const BuiltinText> letters() { return kLetters; }

namespace {
// clang-format off
constexpr BuiltinText kPositions[] = {
    {2700, "%PX%"},
    {2703, "4"},
    {2704, "%PY%"},
    {2707, "4"},
    {2708, "%PS%"},
    {2711, "4"},
    {2712, "%PN%"},
    {2715, "4"},
};
// clang-format on
static_assert(rows_fit(kPositions));
}  // namespace

std::span<const BuiltinText> positions() { return kPositions; }

namespace {
// clang-format off
constexpr BuiltinText kReadInstructions[] = {
    {12000, "%ReadInit%"},
};
// clang-format on
static_assert(rows_fit(kReadInstructions));
}  // namespace

std::span<const BuiltinText> read_instructions() { return kReadInstructions; }

}  // namespace kerfline::driver::rows
