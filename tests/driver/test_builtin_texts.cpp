// The built-in table checked block by block against the published vocabulary:
// every listed text at its number, nothing else inside a block, the blocks in
// table order, and the directory that locates the kinds.
#include "driver/builtin_texts.hpp"

#include "fixtures/table_names.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using kerfline::driver::builtin_definition;
using kerfline::driver::builtin_text;
using kerfline::driver::builtin_texts;
using kerfline::driver::BuiltinText;
using kerfline::driver::find_builtin_text;
using kerfline::driver::kBuiltinTextEnd;
using kerfline::driver::TextKind;

struct StandardVariable {
  const char* name;
  const char* default_value;
  const char* type;
  const char* group;
  const char* style;
  const char* limit;
};
struct OutputMode {
  const char* name;
  const char* default_value;
  const char* type;
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
  const char* routine;
};

// name, default, type, group, style, limit
const StandardVariable kStandardVariables[] = {
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
// name, default, type, style, limit (group "%Modi%")
const OutputMode kOutputModes[] = {
    {"%ModeDesc%", "", "String", "D6", "-1"},
    {"%PlotInit%", "IN;", "String", "D4", "512"},
    {"%ToolInit%", "SP%ToolNr%;VS%MatSpeed%;", "String", "4", "64"},
    {"%ToolExit%", "SP;", "String", "4", "64"},
    {"%ObjInit%", "", "String", "D6", "-1"},
    {"%ObjExit%", "", "String", "D6", "-1"},
    {"%ObjExitOpen%", "", "String", "D6", "-1"},
    {"%InitFlag_1%", "0", "Bool", "4", "-1"},
    {"%InitFlag_2%", "0", "Bool", "D4", "-1"},
};
// clang-format off
// name, default, type
const CutInstruction kCutInstructions[] = {
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
// name, default, factor, type
const ToolVariable kToolVariables[] = {
    {"%IToolDepth%", "2", "1.0", "Double"},     {"%IToolMaxDepth%", "3", "1.0", "Double"},
    {"%IToolLastDepth%", "2", "1.0", "Double"}, {"%IToolOffset%", "0", "1.0", "Double"},
};
// name, default, type
const MaterialVariable kMaterialVariables[] = {
    {"%IMatDescription%", "", "String"}, {"%IMatPressure%", "20", "Double"}, {"%IMatSpeed%", "50", "Double"},
    {"%IMatWidth%", "1.0", "Double"}, {"%IMatLength%", "", "Double"}, {"%IV1%", "3.0", "String"},
    {"%IV2%", "2.0", "String"}, {"%IV3%", "", "String"}, {"%IV4%", "", "String"}, {"%IV5%", "", "String"},
    {"%IV6%", "", "String"}, {"%IV7%", "", "String"}, {"%IV8%", "", "String"}, {"%IV9%", "", "String"},
    {"%IW1%", "", "String"}, {"%IW2%", "", "String"}, {"%IW3%", "", "String"}, {"%IW4%", "", "String"},
};
// name, value routine (none for the separator)
const PlotTimeVariable kPlotTimeVariables[] = {
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
// clang-format on
const char* const kGroupNames[] = {"%Root%",        "%CommonSettings%", "%OutputFrmt%",
                                   "%AccSettings%", "%Flags%",          "%Modi%"};
const char* const kLetters[] = {"%T%", "%A%", "%B%", "%N%"};
const char* const kPositions[] = {"%PX%", "%PY%", "%PS%", "%PN%"};

using Rows = std::vector<std::pair<std::uint32_t, std::string>>;

// Adds a row unless the text is an empty default, which the table leaves out.
void add(Rows& rows, std::uint32_t id, const std::string& text, bool optional_when_empty = false) {
  if (optional_when_empty && text.empty()) return;
  rows.emplace_back(id, text);
}

// Each kind as the directory gives it: its directory number, base, step and count.
struct LayoutCase {
  TextKind kind;
  std::uint32_t base;
  std::uint32_t step;
  std::uint32_t count;
};

void PrintTo(const LayoutCase& c, std::ostream* os) { *os << "kind " << static_cast<std::uint32_t>(c.kind); }

// clang-format off
const LayoutCase kKinds[] = {
    {TextKind::CutInstructions, 1000, 6, 22},   {TextKind::ToolVariables, 5000, 8, 4},
    {TextKind::MaterialVariables, 6000, 8, 18}, {TextKind::Groups, 8000, 3, 6},
    {TextKind::StandardVariables, 9000, 8, 57}, {TextKind::OutputModes, 2000, 8, 9},
    {TextKind::PlotTimeVariables, 2100, 6, 46}, {TextKind::Selections, 2500, 3, 6},
    {TextKind::Letters, 2600, 4, 4},            {TextKind::Positions, 2700, 4, 4}};
// clang-format on

Rows expected_directory() {
  // Directory rows: base, step, count; 122 and 125 store base, count, step.
  Rows rows;
  for (const auto& k : kKinds) {
    const auto number = static_cast<std::uint32_t>(k.kind);
    const bool count_first = number == 122 || number == 125;
    add(rows, number, std::to_string(k.base));
    add(rows, number + 1, std::to_string(count_first ? k.count : k.step));
    add(rows, number + 2, std::to_string(count_first ? k.step : k.count));
  }
  return rows;
}

Rows expected_cut_instructions() {
  Rows rows;
  std::uint32_t base = 1000;
  for (const auto& v : kCutInstructions) {
    add(rows, base, v.name);
    add(rows, base + 4, v.default_value, true);
    add(rows, base + 5, v.type);
    base += 6;
  }
  return rows;
}

Rows expected_tool_variables() {
  Rows rows;
  std::uint32_t base = 5000;
  for (const auto& v : kToolVariables) {
    add(rows, base, v.name);
    add(rows, base + 3, v.default_value, true);
    add(rows, base + 4, v.factor);
    add(rows, base + 5, v.type);
    base += 8;
  }
  return rows;
}

Rows expected_tool_parameter_types() {
  Rows rows;
  for (std::uint32_t base = 5300; base <= 5800; base += 100) add(rows, base, "%TPTyp%");
  return rows;
}

Rows expected_material_variables() {
  Rows rows;
  std::uint32_t base = 6000;
  for (const auto& v : kMaterialVariables) {
    add(rows, base, v.name);
    add(rows, base + 3, v.default_value, true);
    add(rows, base + 5, v.type);
    base += 8;
  }
  return rows;
}

Rows expected_groups() {
  Rows rows;
  std::uint32_t base = 8000;
  for (const char* name : kGroupNames) {
    add(rows, base, name);
    base += 3;
  }
  return rows;
}

Rows expected_standard_variables() {
  Rows rows;
  std::uint32_t base = 9000;
  for (const auto& v : kStandardVariables) {
    add(rows, base, v.name);
    // The first block keeps its empty default as a row.
    add(rows, base + 3, v.default_value, base != 9000);
    add(rows, base + 4, v.type);
    add(rows, base + 5, v.group);
    add(rows, base + 6, v.style);
    add(rows, base + 7, v.limit);
    base += 8;
  }
  add(rows, 9456, "%OutFlag_6%");
  return rows;
}

Rows expected_output_modes() {
  Rows rows;
  std::uint32_t base = 2000;
  for (const auto& v : kOutputModes) {
    add(rows, base, v.name);
    add(rows, base + 3, v.default_value, true);
    add(rows, base + 4, v.type);
    add(rows, base + 5, "%Modi%");
    add(rows, base + 6, v.style);
    add(rows, base + 7, v.limit);
    base += 8;
  }
  return rows;
}

Rows expected_plot_time_variables() {
  Rows rows;
  std::uint32_t base = 2100;
  for (const auto& v : kPlotTimeVariables) {
    add(rows, base, v.name);
    add(rows, base + 3, v.routine ? "6" : "-");
    add(rows, base + 4, v.routine ? v.routine : "-");
    add(rows, base + 5, v.routine ? "0" : "-");
    base += 6;
  }
  return rows;
}

Rows expected_selections() {
  return {{2502, "ActMat"}, {2505, "ActTool"}, {2508, "ActIMat"},
          {2511, "128"},    {2514, "134"},     {2517, "140"}};
}

Rows expected_named_block(std::uint32_t base, const char* const (&names)[4]) {
  Rows rows;
  for (const char* name : names) {
    add(rows, base, name);
    add(rows, base + 3, "4");
    base += 4;
  }
  return rows;
}

struct Block {
  const char* what;
  std::uint32_t first;
  std::uint32_t end;  // one past the last number of the block
  Rows rows;
};

void PrintTo(const Block& block, std::ostream* os) { *os << block.what; }

std::vector<Block> expected_blocks() {
  return {
      {"directory", 107, 143, expected_directory()},
      {"cut instructions", 1000, 1132, expected_cut_instructions()},
      {"tool variables", 5000, 5032, expected_tool_variables()},
      {"tool parameter types", 5300, 5801, expected_tool_parameter_types()},
      {"material variables", 6000, 6144, expected_material_variables()},
      {"groups", 8000, 8018, expected_groups()},
      {"standard variables", 9000, 9457, expected_standard_variables()},
      {"output modes", 2000, 2072, expected_output_modes()},
      {"plot-time variables", 2100, 2376, expected_plot_time_variables()},
      {"selections", 2500, 2518, expected_selections()},
      {"letters", 2600, 2616, expected_named_block(2600, kLetters)},
      {"positions", 2700, 2716, expected_named_block(2700, kPositions)},
      {"read instructions", 12000, 12001, Rows{{12000, "%ReadInit%"}}},
  };
}

class BlockTest : public ::testing::TestWithParam<Block> {};

// Every listed text is found at its number, by both lookups.
TEST_P(BlockTest, EveryListedTextIsFoundAtItsNumber) {
  const Block& block = GetParam();
  for (const auto& [id, text] : block.rows) {
    const BuiltinText* row = find_builtin_text(id);
    ASSERT_NE(row, nullptr) << block.what << " " << id;
    EXPECT_EQ(row->id, id);
    EXPECT_EQ(std::string(row->text), text) << block.what << " " << id;
    const auto found = builtin_text(id);
    ASSERT_TRUE(found.has_value()) << block.what << " " << id;
    EXPECT_EQ(*found, text) << block.what << " " << id;
  }
}

INSTANTIATE_TEST_SUITE_P(Blocks, BlockTest, ::testing::ValuesIn(expected_blocks()),
                         kerfline::test::RowIndex());

// The table is the blocks, one after the other, then the terminator: no stray
// row outside a block, no number twice, no text over 63 characters.
TEST(BuiltinTexts, IsTheBlocksInOrderEndedByTheTerminator) {
  Rows expected;
  for (const Block& block : expected_blocks()) {
    expected.insert(expected.end(), block.rows.begin(), block.rows.end());
  }
  const auto table = builtin_texts();
  ASSERT_EQ(table.size(), expected.size() + 1);
  EXPECT_EQ(table.back().id, kBuiltinTextEnd);
  ASSERT_NE(table.back().text, nullptr);
  EXPECT_STREQ(table.back().text, "");
  std::set<std::uint32_t> seen;
  for (std::size_t i = 0; i + 1 < table.size(); ++i) {
    EXPECT_EQ(table[i].id, expected[i].first) << "row " << i;
    ASSERT_NE(table[i].text, nullptr);
    EXPECT_EQ(std::string(table[i].text), expected[i].second) << "row " << i;
    EXPECT_LE(std::string(table[i].text).size(), kerfline::driver::kBuiltinTextMaxLength);
    EXPECT_TRUE(seen.insert(table[i].id).second) << "number twice: " << table[i].id;
  }
}

TEST(BuiltinTexts, NumbersWithoutARowAreNotFound) {
  // clang-format off
  const std::uint32_t absent[] = {
      0,    1,    106,  113,  114,  115,  137,  138,  139,  143,  999,  1001, 1002, 1003, 9001,
      9002, 9017, 9019, 9027, 9457, 2500, 2501, 2503, 2376, 2072, 5006, 5007, 6006, 6007, 12001,
      kBuiltinTextEnd, kBuiltinTextEnd - 1,
  };
  // clang-format on
  for (std::uint32_t id : absent) {
    EXPECT_EQ(find_builtin_text(id), nullptr) << id;
    EXPECT_FALSE(builtin_text(id).has_value()) << id;
  }
}

// The number-to-row map is built on first use; several threads may get there
// together (each test runs in its own process, so this is the first use).
TEST(BuiltinTexts, FirstUseFromSeveralThreadsAgrees) {
  std::vector<std::thread> threads;
  std::vector<const BuiltinText*> found(8, nullptr);
  for (std::size_t i = 0; i < found.size(); ++i) {
    threads.emplace_back([&found, i] { found[i] = find_builtin_text(9016); });
  }
  for (auto& thread : threads) thread.join();
  for (const BuiltinText* row : found) {
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row, found.front());
    EXPECT_STREQ(row->text, "%DriverName%");
  }
}

class KindLayoutTest : public ::testing::TestWithParam<LayoutCase> {};

TEST_P(KindLayoutTest, DirectoryGivesBaseStepCountAndBlocks) {
  const LayoutCase& c = GetParam();
  const auto layout = kerfline::driver::kind_layout(c.kind);
  ASSERT_TRUE(layout.has_value());
  EXPECT_EQ(layout->base, c.base);
  EXPECT_EQ(layout->step, c.step);
  EXPECT_EQ(layout->count, c.count);
  EXPECT_EQ(kerfline::driver::block_of_kind(c.kind, 0), c.base);
  EXPECT_EQ(kerfline::driver::block_of_kind(c.kind, 1), c.base + c.step);
  EXPECT_EQ(kerfline::driver::block_of_kind(c.kind, c.count - 1), c.base + c.step * (c.count - 1));
  EXPECT_FALSE(kerfline::driver::block_of_kind(c.kind, c.count).has_value());
  EXPECT_FALSE(kerfline::driver::block_of_kind(c.kind, 0xFFFFFFFFu).has_value());
  // Every block of the kind lies where locate_text_number says it does.
  for (std::uint32_t i = 0; i < c.count; ++i) {
    const auto position = kerfline::driver::locate_text_number(c.base + c.step * i + c.step - 1);
    ASSERT_TRUE(position.has_value());
    EXPECT_EQ(position->kind, c.kind);
    EXPECT_EQ(position->index, i);
    EXPECT_EQ(position->offset, c.step - 1);
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, KindLayoutTest, ::testing::ValuesIn(kKinds), kerfline::test::RowIndex());

TEST(BuiltinTexts, DirectoryNumbersThatStartNoKindHaveNoLayout) {
  for (std::uint32_t number : {0u, 106u, 108u, 109u, 113u, 123u, 137u, 143u, 9000u}) {
    EXPECT_FALSE(kerfline::driver::kind_layout(number).has_value()) << number;
    EXPECT_FALSE(kerfline::driver::block_of_kind(number, 0).has_value()) << number;
  }
}

TEST(BuiltinTexts, NumbersOutsideEveryDirectoryKindAreNotLocated) {
  for (std::uint32_t id :
       {0u, 999u, 1132u, 2072u, 2376u, 2518u, 5032u, 5300u, 6144u, 8018u, 9456u, 12000u, kBuiltinTextEnd}) {
    EXPECT_FALSE(kerfline::driver::locate_text_number(id).has_value()) << id;
  }
}

// One row per field the definition of a block reads from the table.
TEST(BuiltinTexts, DefinitionsReadTheirBlock) {
  using D = kerfline::driver::BuiltinDefinition;
  const struct {
    std::uint32_t id;
    std::string_view D::*field;
    const char* value;
  } fields[] = {
      // clang-format off
      {9016, &D::name, "%DriverName%"}, {9016, &D::default_value, ""}, {9016, &D::type, "String"},
      {9016, &D::group, "%CommonSettings%"}, {9016, &D::style, "4"}, {9016, &D::limit, "32"},
      {2016, &D::name, "%ToolInit%"}, {2016, &D::default_value, "SP%ToolNr%;VS%MatSpeed%;"},
      {2016, &D::group, "%Modi%"},
      {1120, &D::name, "%CI_SharpenEdges%"}, {1120, &D::type, "String"}, {1120, &D::group, ""},
      {1120, &D::default_value, "(SE:11,120,10,VS%zSpeedMat%;,VS%xySpeed%;)"},
      {5008, &D::name, "%IToolMaxDepth%"}, {5008, &D::default_value, "3"}, {5008, &D::factor, "1.0"},
      {5008, &D::type, "Double"},
      {6016, &D::name, "%IMatSpeed%"}, {6016, &D::default_value, "50"}, {6016, &D::type, "Double"},
      {2190, &D::name, "SEPARATOR"}, {2190, &D::code, "-"}, {2190, &D::routine, "-"},
      {2370, &D::name, "%FrameY%"}, {2370, &D::code, "6"}, {2370, &D::routine, "GetFrameY"},
      {2612, &D::name, "%N%"}, {2612, &D::code, "4"}, {2509, &D::name, "128"},
      // clang-format on
  };
  for (const auto& f : fields) {
    const auto definition = builtin_definition(f.id);
    ASSERT_TRUE(definition.has_value()) << f.id;
    EXPECT_EQ((*definition).*f.field, f.value) << f.id;
  }
  // clang-format off
  const std::pair<std::uint32_t, TextKind> kinds[] = {
      {9016, TextKind::StandardVariables}, {2016, TextKind::OutputModes}, {1120, TextKind::CutInstructions},
      {2612, TextKind::Letters},           {2509, TextKind::Selections}};
  // clang-format on
  for (const auto& [id, kind] : kinds) EXPECT_EQ(builtin_definition(id)->kind, kind) << id;
  EXPECT_EQ(builtin_definition(9016)->index, 2u);
  EXPECT_FALSE(builtin_definition(9017).has_value());  // inside a block, not its base
  EXPECT_FALSE(builtin_definition(9456).has_value());  // beyond the directory's count
}

}  // namespace
