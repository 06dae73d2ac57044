// The built-in table's invariants: each row sits in a block of its kind at a
// text the kind defines, every block the directory counts has its name, the
// numbers are unique and ascending within each run, and the lookups agree
// with the table.
#include "driver/builtin_texts.hpp"

#include "fixtures/table_names.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using kerfline::driver::block_fields;
using kerfline::driver::builtin_definition;
using kerfline::driver::builtin_text;
using kerfline::driver::builtin_texts;
using kerfline::driver::BuiltinText;
using kerfline::driver::find_builtin_text;
using kerfline::driver::kBuiltinTextEnd;
using kerfline::driver::locate_text_number;
using kerfline::driver::TextKind;

// Each kind as the directory gives it: its directory number, base, step and count.
struct LayoutCase {
  TextKind kind;
  std::uint32_t base;
  std::uint32_t step;
  std::uint32_t count;
};

// clang-format off
const LayoutCase kKinds[] = {
    {TextKind::CutInstructions, 1000, 6, 22},   {TextKind::ToolVariables, 5000, 8, 4},
    {TextKind::MaterialVariables, 6000, 8, 18}, {TextKind::Groups, 8000, 3, 6},
    {TextKind::StandardVariables, 9000, 8, 57}, {TextKind::OutputModes, 2000, 8, 9},
    {TextKind::PlotTimeVariables, 2100, 6, 46}, {TextKind::Selections, 2500, 3, 6},
    {TextKind::Letters, 2600, 4, 4},            {TextKind::Positions, 2700, 4, 4}};
// clang-format on

class KindLayoutTest : public ::testing::TestWithParam<LayoutCase> {};

// Rows outside every directory kind: the directory itself, the tool-parameter
// types, the name after the last standard variable and the read instructions.
bool outside_the_kinds(std::uint32_t id) {
  return (id >= 107 && id <= 142) || (id >= 5300 && id <= 5800 && id % 100 == 0) || id == 9456 || id == 12000;
}

// A text the kind's definitions read; the plot-time blocks also end in one
// that none reads (offset 5).
bool is_field(TextKind kind, std::uint32_t offset) {
  const auto f = block_fields(kind);
  for (const int at :
       {f.name, f.default_value, f.factor, f.type, f.group, f.style, f.limit, f.code, f.routine}) {
    if (at >= 0 && static_cast<std::uint32_t>(at) == offset) return true;
  }
  return kind == TextKind::PlotTimeVariables && offset == 5;
}

TEST(BuiltinTexts, EveryRowSitsAtATextItsKindDefines) {
  const auto table = builtin_texts();
  ASSERT_GT(table.size(), 700u);
  EXPECT_EQ(table.back().id, kBuiltinTextEnd);
  EXPECT_STREQ(table.back().text, "");
  std::set<std::uint32_t> seen;
  for (std::size_t i = 0; i + 1 < table.size(); ++i) {
    const BuiltinText& row = table[i];
    ASSERT_NE(row.text, nullptr);
    EXPECT_LE(std::string(row.text).size(), kerfline::driver::kBuiltinTextMaxLength) << row.id;
    EXPECT_TRUE(seen.insert(row.id).second) << "number twice: " << row.id;
    // Ascending within a kind's run: a number falls back only where a new run begins.
    const auto here = locate_text_number(row.id);
    if (i > 0 && table[i - 1].id > row.id) {
      EXPECT_TRUE(!here || here->index == 0) << row.id;
    }
    if (outside_the_kinds(row.id)) {
      EXPECT_FALSE(here.has_value()) << row.id;
      continue;
    }
    ASSERT_TRUE(here.has_value()) << row.id;
    EXPECT_TRUE(is_field(here->kind, here->offset)) << row.id;
    EXPECT_EQ(find_builtin_text(row.id), &row);
  }
}

// The directory counts exactly the named blocks: each has its name, and the
// block after the last has none.
TEST_P(KindLayoutTest, DirectoryGivesBaseStepCountAndNamedBlocks) {
  const LayoutCase& c = GetParam();
  const auto layout = kerfline::driver::kind_layout(c.kind);
  ASSERT_TRUE(layout.has_value());
  EXPECT_EQ(layout->base, c.base);
  EXPECT_EQ(layout->step, c.step);
  EXPECT_EQ(layout->count, c.count);
  EXPECT_FALSE(kerfline::driver::block_of_kind(c.kind, c.count).has_value());
  EXPECT_FALSE(kerfline::driver::block_of_kind(c.kind, 0xFFFFFFFFu).has_value());
  EXPECT_FALSE(locate_text_number(c.base + c.step * c.count).has_value()) << "just past the last block";
  const std::set<std::string_view> types = {"", "String", "Double", "Integer", "Bool", "Date"};
  for (std::uint32_t i = 0; i < c.count; ++i) {
    const std::uint32_t base = c.base + c.step * i;
    EXPECT_EQ(kerfline::driver::block_of_kind(c.kind, i), base);
    // The block's last text lies where locate_text_number says it does.
    const auto position = locate_text_number(base + c.step - 1);
    ASSERT_TRUE(position.has_value());
    EXPECT_EQ(position->kind, c.kind);
    EXPECT_EQ(position->index, i);
    EXPECT_EQ(position->offset, c.step - 1);
    const auto definition = builtin_definition(base);
    ASSERT_TRUE(definition.has_value()) << i;
    EXPECT_FALSE(definition->name.empty()) << i;
    EXPECT_EQ(definition->index, i);
    EXPECT_EQ(definition->kind, c.kind);
    EXPECT_TRUE(types.contains(definition->type)) << definition->name;
  }
  // (Only the standard variables have a name after their last block.)
  if (c.kind != TextKind::StandardVariables) {
    EXPECT_FALSE(builtin_text(c.base + c.step * c.count).has_value());
  }
}

TEST(BuiltinTexts, NumbersWithoutARowOrKindAreNotFound) {
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
  for (std::uint32_t number : {0u, 106u, 108u, 109u, 113u, 123u, 137u, 143u, 9000u}) {  // start no kind
    EXPECT_FALSE(kerfline::driver::kind_layout(number).has_value()) << number;
    EXPECT_FALSE(kerfline::driver::block_of_kind(number, 0).has_value()) << number;
  }
  for (std::uint32_t id : {0u, 999u, kBuiltinTextEnd}) {
    EXPECT_FALSE(locate_text_number(id).has_value()) << id;  // outside every directory kind
  }
}

// The number-to-row map is built on first use; several threads may get there
// together (each test runs in its own process, so this is the first use).
TEST(BuiltinTexts, FirstUseFromSeveralThreadsAgrees) {
  std::vector<std::thread> threads;
  std::vector<const BuiltinText*> found(8, nullptr);
  for (std::size_t i = 0; i < found.size(); ++i)
    threads.emplace_back([&found, i] { found[i] = find_builtin_text(9016); });
  for (auto& thread : threads) thread.join();
  for (const BuiltinText* row : found) {
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row, found.front());
    EXPECT_STREQ(row->text, "%DriverName%");
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, KindLayoutTest, ::testing::ValuesIn(kKinds), kerfline::test::RowIndex());

// One row per field the definition of a block reads from the table.
TEST(BuiltinTexts, DefinitionsReadTheirBlock) {
  using D = kerfline::driver::BuiltinDefinition;
  const std::tuple<std::uint32_t, std::string_view D::*, const char*> fields[] = {
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
      {2370, &D::name, "%FrameY%"}, {2370, &D::code, "6"}, {2370, &D::routine, "GetFrameY"},
      {2612, &D::name, "%N%"}, {2612, &D::code, "4"}, {2509, &D::name, "128"},
      // clang-format on
  };
  for (const auto& [id, field, value] : fields) {
    const auto definition = builtin_definition(id);
    ASSERT_TRUE(definition.has_value()) << id;
    EXPECT_EQ((*definition).*field, value) << id;
  }
  EXPECT_FALSE(builtin_definition(9017).has_value());  // inside a block, not its base
  EXPECT_FALSE(builtin_definition(9456).has_value());  // beyond the directory's count
}

}  // namespace
