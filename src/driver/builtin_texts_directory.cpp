// Directory of kinds: base, step and count of each kind as decimal texts.
// The standard variables (122) and output modes (125) store base, count, step.

#include "driver/builtin_text_rows.hpp"

namespace kerfline::driver::rows {

namespace {
// clang-format off
constexpr BuiltinText kDirectory[] = {
    {107, "1000"},
    {108, "6"},
    {109, "22"},
    {110, "5000"},
    {111, "8"},
    {112, "4"},
    {116, "6000"},
    {117, "8"},
    {118, "18"},
    {119, "8000"},
    {120, "3"},
    {121, "6"},
    {122, "9000"},
    {123, "57"},
    {124, "8"},
    {125, "2000"},
    {126, "9"},
    {127, "8"},
    {128, "2100"},
    {129, "6"},
    {130, "46"},
    {131, "2500"},
    {132, "3"},
    {133, "6"},
    {134, "2600"},
    {135, "4"},
    {136, "4"},
    {140, "2700"},
    {141, "4"},
    {142, "4"},
};
// clang-format on
static_assert(rows_fit(kDirectory));
}  // namespace

std::span<const BuiltinText> directory() { return kDirectory; }

}  // namespace kerfline::driver::rows
