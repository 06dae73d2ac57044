// Tool variables (5000, step 8): 0 name, 3 default, 4 factor, 5 type name, 6 style.
// Tool-parameter type blocks (5300 to 5800), each beginning with "%TPTyp%".
// Material variables (6000, step 8): 0 name, 3 default, 4 factor, 5 type name, 6 style, 7 limit.

#include "driver/builtin_text_rows.hpp"

namespace kerfline::driver::rows {

namespace {
// clang-format off
constexpr BuiltinText kToolVariables[] = {
    {5000, "%IToolDepth%"},
    {5003, "2"},
    {5004, "1.0"},
    {5005, "Double"},
    {5008, "%IToolMaxDepth%"},
    {5011, "3"},
    {5012, "1.0"},
    {5013, "Double"},
    {5016, "%IToolLastDepth%"},
    {5019, "2"},
    {5020, "1.0"},
    {5021, "Double"},
    {5024, "%IToolOffset%"},
    {5027, "0"},
    {5028, "1.0"},
    {5029, "Double"},
};
// clang-format on
static_assert(rows_fit(kToolVariables));
}  // namespace

std::span<const BuiltinText> tool_variables() { return kToolVariables; }

namespace {
// clang-format off
constexpr BuiltinText kToolParameterTypes[] = {
    {5300, "%TPTyp%"},
    {5400, "%TPTyp%"},
    {5500, "%TPTyp%"},
    {5600, "%TPTyp%"},
    {5700, "%TPTyp%"},
    {5800, "%TPTyp%"},
};
// clang-format on
static_assert(rows_fit(kToolParameterTypes));
}  // namespace

std::span<const BuiltinText> tool_parameter_types() { return kToolParameterTypes; }

namespace {
// clang-format off
constexpr BuiltinText kMaterialVariables[] = {
    {6000, "%IMatDescription%"},
    {6005, "String"},
    {6008, "%IMatPressure%"},
    {6011, "20"},
    {6013, "Double"},
    {6016, "%IMatSpeed%"},
    {6019, "50"},
    {6021, "Double"},
    {6024, "%IMatWidth%"},
    {6027, "1.0"},
    {6029, "Double"},
    {6032, "%IMatLength%"},
    {6037, "Double"},
    {6040, "%IV1%"},
    {6043, "3.0"},
    {6045, "String"},
    {6048, "%IV2%"},
    {6051, "2.0"},
    {6053, "String"},
    {6056, "%IV3%"},
    {6061, "String"},
    {6064, "%IV4%"},
    {6069, "String"},
    {6072, "%IV5%"},
    {6077, "String"},
    {6080, "%IV6%"},
    {6085, "String"},
    {6088, "%IV7%"},
    {6093, "String"},
    {6096, "%IV8%"},
    {6101, "String"},
    {6104, "%IV9%"},
    {6109, "String"},
    {6112, "%IW1%"},
    {6117, "String"},
    {6120, "%IW2%"},
    {6125, "String"},
    {6128, "%IW3%"},
    {6133, "String"},
    {6136, "%IW4%"},
    {6141, "String"},
};
// clang-format on
static_assert(rows_fit(kMaterialVariables));
}  // namespace

std::span<const BuiltinText> material_variables() { return kMaterialVariables; }

}  // namespace kerfline::driver::rows
