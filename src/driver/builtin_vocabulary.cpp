// The built-in vocabulary, one record per definition. builtin_texts.cpp
// lays each list out as a kind's run of numbered blocks and writes the
// directory from the lists' sizes, so a record cannot land in the wrong block.
#include "driver/builtin_vocabulary.hpp"

namespace kerfline::driver::vocabulary {

namespace {
// clang-format off
constexpr Variable kStandardVariables[] = {
    {"%reserved%", "", "String", "%CommonSettings%", "D4", "-1"},
    {"%Company%", "", "String", "%CommonSettings%", "6", "-1"},
    {"%DriverName%", "", "String", "%CommonSettings%", "4", "32"},
    {"%DriverInfo%", "", "String", "%CommonSettings%", "4", "32"},
    {"%Comment%", "", "String", "%CommonSettings%", "4", "401"},
    {"%CreationDate%", "", "Date", "%CommonSettings%", "4", "-1"},
    {"%ModificationDate%", "", "Date", "%CommonSettings%", "4", "-1"},
    {"%FrameSize%", "1000", "Double", "%CommonSettings%", "4", "-1"},
    {"%PlotPointX%", "0.025", "Double", "%CommonSettings%", "4", "-1"},
    {"%PlotPointY%", "0.025", "Double", "%CommonSettings%", "6", "-1"},
    {"%PlotPointZ%", "0.025", "Double", "%CommonSettings%", "4", "-1"},
    {"%LayerVarFlag%", "0", "Bool", "%CommonSettings%", "6", "-1"},
    {"%ComSettings%", "9600,8,n,1,p", "String", "%CommonSettings%", "6", "-1"},
    {"%USBIn%", "PIPE00", "String", "%CommonSettings%", "D6", "-1"},
    {"%USBOut%", "PIPE01", "String", "%CommonSettings%", "D6", "-1"},
    {"%BaseDrv%", "", "String", "%CommonSettings%", "D6", "-1"},
    {"%Speed%", "VS", "String", "%OutputFrmt%", "6", "16"},
    {"%Pressure%", "TP", "String", "%OutputFrmt%", "6", "16"},
    {"%PenUp%", "PU", "String", "%OutputFrmt%", "D6", "32"},
    {"%PenDown%", "PD", "String", "%OutputFrmt%", "D6", "32"},
    {"%Read%", "OH;", "String", "%OutputFrmt%", "D6", "16"},
    {"%ReadTerminate%", ";", "String", "%OutputFrmt%", "D6", "16"},
    {"%ReadFormat%", "%[!%s!]%,%[!%IMatWidth%!]%", "String", "%OutputFrmt%", "D6", "-1"},
    {"%PlotInit%", "IN;PA;", "String", "%OutputFrmt%", "6", "-1"},
    {"%PlotEnd%", "PU;", "String", "%OutputFrmt%", "6", "64"},
    {"%PlotCancel%", "PU;", "String", "%OutputFrmt%", "6", "16"},
    {"%Before_X%", "", "String", "%OutputFrmt%", "D6", "16"},
    {"%Between_X_Y%", ",", "String", "%OutputFrmt%", "D6", "16"},
    {"%After_Y%", ";\\r\\n", "String", "%OutputFrmt%", "D6", "16"},
    {"%FL-Format%", "", "String", "%OutputFrmt%", "D6", "129"},
    {"%FF-String%", "", "String", "%OutputFrmt%", "D6", "129"},
    {"%Move%", "PU %x%,%y%;", "String", "%OutputFrmt%", "D6", "-1"},
    {"%Line%", "PD %x%,%y%;", "String", "%OutputFrmt%", "D6", "-1"},
    {"%Curve%", "AA %xc%,%yc%,%a%", "String", "%OutputFrmt%", "D6", "-1"},
    {"%Drill%", "PD%x% %y%;", "String", "%OutputFrmt%", "D6", "-1"},
    {"%PuModalFlag%", "0", "Bool", "%OutputFrmt%", "6", "-1"},
    {"%Digits%", "0", "Integer", "%AccSettings%", "4", "-1"},
    {"%CrvDigits%", "0", "Integer", "%AccSettings%", "6", "-1"},
    {"%Acc1%", "200", "Integer", "%AccSettings%", "4", "-1"},
    {"%Acc2%", "160", "Integer", "%AccSettings%", "4", "-1"},
    {"%Acc3%", "120", "Integer", "%AccSettings%", "4", "-1"},
    {"%Acc4%", "80", "Integer", "%AccSettings%", "4", "-1"},
    {"%Acc5%", "70", "Integer", "%AccSettings%", "4", "-1"},
    {"%CurveAcc%", "10", "Integer", "%AccSettings%", "6", "-1"},
    {"%Flags_1%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%Flags_2%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%Flags_3%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%Flags_4%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%Flags_5%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%Flags_6%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%Flags_7%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%Flags_8%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%OutFlag_1%", "1", "Bool", "%Flags%", "4", "-1"},
    {"%OutFlag_2%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%OutFlag_3%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%OutFlag_4%", "0", "Bool", "%Flags%", "4", "-1"},
    {"%OutFlag_5%", "0", "Bool", "%Flags%", "4", "-1"},
};
constexpr Variable kOutputModes[] = {
    {"%ModeDesc%", "", "String", "%Modi%", "D6", "-1"},
    {"%PlotInit%", "IN;", "String", "%Modi%", "D4", "512"},
    {"%ToolInit%", "SP%ToolNr%;VS%MatSpeed%;", "String", "%Modi%", "4", "64"},
    {"%ToolExit%", "SP;", "String", "%Modi%", "4", "64"},
    {"%ObjInit%", "", "String", "%Modi%", "D6", "-1"},
    {"%ObjExit%", "", "String", "%Modi%", "D6", "-1"},
    {"%ObjExitOpen%", "", "String", "%Modi%", "D6", "-1"},
    {"%InitFlag_1%", "0", "Bool", "%Modi%", "4", "-1"},
    {"%InitFlag_2%", "0", "Bool", "%Modi%", "D4", "-1"},
};
constexpr CutInstruction kCutInstructions[] = {
    {"%CI_ArcLimit%", "(AL:10e6)", "String"}, {"%CI_AltHPGL%", "(AT:PA)", "String"},
    {"%CI_AltHPGL1%", "(AT:PA,1)", "String"}, {"%CI_ChangeAxis%", "(AW:)", "Bool"},
    {"%CI_SendInitStringcpi%", "(CPI:0)", "String"}, {"%CI_FileImport%", "(FI:plotinit.txt)", "String"},
    {"%CI_PlotPointDiv%", "(PP:1.567)", "String"}, {"%CI_CurveMode%", "(BH:PD;AA,1,10)", "String"},
    {"%CI_FoilFeedInit%", "(FF:VS1)", "String"}, {"%CI_InitCurve%", "(IC:Yb,Ye,0)", "String"},
    {"%CI_OutputMode%", "(OP:3)", "String"}, {"%CI_Pouncing%", "(PC:0,5,2,50)", "String"},
    {"%CI_RingEngrave%", "(RG: ...)", "String"}, {"%CI_TrailingBlade%", "(SM:50,11,0)", "String"},
    {"%CI_3D%", "(3D:';'10)", "String"}, {"%CI_ExtraMode%", "(EM:1)", "String"},
    {"%CI_ExtendendCommand%", "(XC:1,PU !s, !s)", "String"}, {"%CI_BackStep%", "(BS:Zahl)", "String"},
    {"%CI_OverCut%", "(OC:100)", "String"}, {"%CI_CutIn%", "(CI:400)", "String"},
    {"%CI_SharpenEdges%", "(SE:11,120,10,VS%zSpeedMat%;,VS%xySpeed%;)", "String"},
    {"%CI_ReverseOpen%", "(REV:1)", "String"},
};
constexpr ToolVariable kToolVariables[] = {
    {"%IToolDepth%", "2", "1.0", "Double"},     {"%IToolMaxDepth%", "3", "1.0", "Double"},
    {"%IToolLastDepth%", "2", "1.0", "Double"}, {"%IToolOffset%", "0", "1.0", "Double"},
};
constexpr MaterialVariable kMaterialVariables[] = {
    {"%IMatDescription%", "", "String"}, {"%IMatPressure%", "20", "Double"}, {"%IMatSpeed%", "50", "Double"},
    {"%IMatWidth%", "1.0", "Double"}, {"%IMatLength%", "", "Double"}, {"%IV1%", "3.0", "String"},
    {"%IV2%", "2.0", "String"}, {"%IV3%", "", "String"}, {"%IV4%", "", "String"}, {"%IV5%", "", "String"},
    {"%IV6%", "", "String"}, {"%IV7%", "", "String"}, {"%IV8%", "", "String"}, {"%IV9%", "", "String"},
    {"%IW1%", "", "String"}, {"%IW2%", "", "String"}, {"%IW3%", "", "String"}, {"%IW4%", "", "String"},
};
// The separator carries "-" in place of the other texts.
constexpr PlotTimeVariable kPlotTimeVariables[] = {
    {"%x%", "Getx"}, {"%y%", "Gety"}, {"%x0%", "Getx0"}, {"%y0%", "Gety0"}, {"%z%", "Getz"},
    {"%zStep%", "GetzStep"}, {"%nStep%", "GetnStep"}, {"%xc%", "Getxc"}, {"%yc%", "Getyc"}, {"%a%", "Geta"},
    {"%r%", "Getr"}, {"%xe%", "Getxe"}, {"%ye%", "Getye"}, {"%ain%", "Getain"}, {"%aout%", "Getaout"},
    {"SEPARATOR", nullptr}, {"%x1%", "Getx1"}, {"%y1%", "Gety1"}, {"%x2%", "Getx2"}, {"%y2%", "Gety2"},
    {"%x3%", "Getx3"}, {"%y3%", "Gety3"}, {"%xSegLength%", "GetSegXLength"},
    {"%ySegLength%", "GetSegYLength"}, {"%FrameOffset%", "GetFrameOffset"}, {"%xSegOffset%", "GetXSegOffset"},
    {"%ySegOffset%", "GetYSegOffset"}, {"%xSegOverlapp%", "GetXSegOverlapp"},
    {"%ySegOverlapp%", "GetYSegOverlapp"}, {"%LineNr%", "GetLineNr"}, {"%HeadState%", "GetHeadState"},
    {"%nextInstr%", "GetNextBef"}, {"%lastInstr%", "GetPrevBef"}, {"%xa%", "Getxa"}, {"%ya%", "Getya"},
    {"%za%", "Getza"}, {"%**%", "GetPlotVar"}, {"%nStepCount%", "GetStepCount"},
    {"%GetPounceFlag%", "GetPounceFlag"}, {"%Get3dCuttin%", "Get3dCuttin"}, {"%SegCount%", "GetSegCount"},
    {"%ActSeg%", "GetActSeg"}, {"%ActObjType%", "GetActObjType"}, {"%ActObjLayerNr%", "GetActObjLayerNr"},
    {"%FrameX%", "GetFrameX"}, {"%FrameY%", "GetFrameY"},
};
constexpr const char* kGroups[] = {"%Root%", "%CommonSettings%", "%OutputFrmt%", "%AccSettings%", "%Flags%", "%Modi%"};
// A selection names a variable or the directory number of the kind it selects.
constexpr const char* kSelections[] = {"ActMat", "ActTool", "ActIMat", "128", "134", "140"};
constexpr const char* kLetters[] = {"%T%", "%A%", "%B%", "%N%"};
constexpr const char* kPositions[] = {"%PX%", "%PY%", "%PS%", "%PN%"};
// clang-format on
}  // namespace

std::span<const Variable> standard_variables() { return kStandardVariables; }
std::span<const Variable> output_modes() { return kOutputModes; }
std::span<const CutInstruction> cut_instructions() { return kCutInstructions; }
std::span<const ToolVariable> tool_variables() { return kToolVariables; }
std::span<const MaterialVariable> material_variables() { return kMaterialVariables; }
std::span<const PlotTimeVariable> plot_time_variables() { return kPlotTimeVariables; }
std::span<const char* const> groups() { return kGroups; }
std::span<const char* const> selections() { return kSelections; }
std::span<const char* const> letters() { return kLetters; }
std::span<const char* const> positions() { return kPositions; }

}  // namespace kerfline::driver::vocabulary
