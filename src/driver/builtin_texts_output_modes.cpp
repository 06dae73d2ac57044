// Output-mode variables (2000, step 8), laid out as the standard variables,
// all in group "%Modi%".

#include "driver/builtin_text_rows.hpp"

namespace kerfline::driver::rows {

namespace {
// clang-format off
constexpr BuiltinText kOutputModes[] = {
    {2000, "%ModeDesc%"},
    {2004, "String"},
    {2005, "%Modi%"},
    {2006, "D6"},
    {2007, "-1"},
    {2008, "%PlotInit%"},
    {2011, "IN;"},
    {2012, "String"},
    {2013, "%Modi%"},
    {2014, "D4"},
    {2015, "512"},
    {2016, "%ToolInit%"},
    {2019, "SP%ToolNr%;VS%MatSpeed%;"},
    {2020, "String"},
    {2021, "%Modi%"},
    {2022, "4"},
    {2023, "64"},
    {2024, "%ToolExit%"},
    {2027, "SP;"},
    {2028, "String"},
    {2029, "%Modi%"},
    {2030, "4"},
    {2031, "64"},
    {2032, "%ObjInit%"},
    {2036, "String"},
    {2037, "%Modi%"},
    {2038, "D6"},
    {2039, "-1"},
    {2040, "%ObjExit%"},
    {2044, "String"},
    {2045, "%Modi%"},
    {2046, "D6"},
    {2047, "-1"},
    {2048, "%ObjExitOpen%"},
    {2052, "String"},
    {2053, "%Modi%"},
    {2054, "D6"},
    {2055, "-1"},
    {2056, "%InitFlag_1%"},
    {2059, "0"},
    {2060, "Bool"},
    {2061, "%Modi%"},
    {2062, "4"},
    {2063, "-1"},
    {2064, "%InitFlag_2%"},
    {2067, "0"},
    {2068, "Bool"},
    {2069, "%Modi%"},
    {2070, "D4"},
    {2071, "-1"},
};
// clang-format on
static_assert(rows_fit(kOutputModes));
}  // namespace

std::span<const BuiltinText> output_modes() { return kOutputModes; }

}  // namespace kerfline::driver::rows
