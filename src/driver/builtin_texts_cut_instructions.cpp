// Special cut instructions (1000, step 6): 0 name, 4 default, 5 type name.

#include "driver/builtin_text_rows.hpp"

namespace kerfline::driver::rows {

namespace {
// clang-format off
constexpr BuiltinText kCutInstructions[] = {
    {1000, "%CI_ArcLimit%"},
    {1004, "(AL:10e6)"},
    {1005, "String"},
    {1006, "%CI_AltHPGL%"},
    {1010, "(AT:PA)"},
    {1011, "String"},
    {1012, "%CI_AltHPGL1%"},
    {1016, "(AT:PA,1)"},
    {1017, "String"},
    {1018, "%CI_ChangeAxis%"},
    {1022, "(AW:)"},
    {1023, "Bool"},
    {1024, "%CI_SendInitStringcpi%"},
    {1028, "(CPI:0)"},
    {1029, "String"},
    {1030, "%CI_FileImport%"},
    {1034, "(FI:plotinit.txt)"},
    {1035, "String"},
    {1036, "%CI_PlotPointDiv%"},
    {1040, "(PP:1.567)"},
    {1041, "String"},
    {1042, "%CI_CurveMode%"},
    {1046, "(BH:PD;AA,1,10)"},
    {1047, "String"},
    {1048, "%CI_FoilFeedInit%"},
    {1052, "(FF:VS1)"},
    {1053, "String"},
    {1054, "%CI_InitCurve%"},
    {1058, "(IC:Yb,Ye,0)"},
    {1059, "String"},
    {1060, "%CI_OutputMode%"},
    {1064, "(OP:3)"},
    {1065, "String"},
    {1066, "%CI_Pouncing%"},
    {1070, "(PC:0,5,2,50)"},
    {1071, "String"},
    {1072, "%CI_RingEngrave%"},
    {1076, "(RG: ...)"},
    {1077, "String"},
    {1078, "%CI_TrailingBlade%"},
    {1082, "(SM:50,11,0)"},
    {1083, "String"},
    {1084, "%CI_3D%"},
    {1088, "(3D:';'10)"},
    {1089, "String"},
    {1090, "%CI_ExtraMode%"},
    {1094, "(EM:1)"},
    {1095, "String"},
    {1096, "%CI_ExtendendCommand%"},
    {1100, "(XC:1,PU !s, !s)"},
    {1101, "String"},
    {1102, "%CI_BackStep%"},
    {1106, "(BS:Zahl)"},
    {1107, "String"},
    {1108, "%CI_OverCut%"},
    {1112, "(OC:100)"},
    {1113, "String"},
    {1114, "%CI_CutIn%"},
    {1118, "(CI:400)"},
    {1119, "String"},
    {1120, "%CI_SharpenEdges%"},
    {1124, "(SE:11,120,10,VS%zSpeedMat%;,VS%xySpeed%;)"},
    {1125, "String"},
    {1126, "%CI_ReverseOpen%"},
    {1130, "(REV:1)"},
    {1131, "String"},
};
// clang-format on
static_assert(rows_fit(kCutInstructions));
}  // namespace

std::span<const BuiltinText> cut_instructions() { return kCutInstructions; }

}  // namespace kerfline::driver::rows
