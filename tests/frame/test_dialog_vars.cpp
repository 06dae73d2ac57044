// The dialog-variable exports on documents built in memory: lookups, texts,
// ranges, defaults, value lists, checks, and records a host got wrong.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "fixtures/table_names.hpp"
#include "frame/dialog_format.hpp"
#include "frame_fixture.hpp"
#include "kerfline/kerfline.h"
#include "sample_driver.hpp"

using kerfline::test::SampleDriver;
namespace drv = kerfline::driver;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
using Ext = drv::CDrvItemDlgVar::ExtParms;  // flags, max, min, increments

std::shared_ptr<drv::CDrvItemDlgVar> dlg(const std::string& name, const std::string& value,
                                         std::uint32_t type, const std::string& format,
                                         std::optional<Ext> ext = std::nullopt) {
  auto d = kerfline::test::dialog_var(name, value, type, "Caption of " + name);
  d->DlgFormat = format;
  if (ext) d->Ext = std::make_unique<Ext>(*ext);
  return d;
}

// A default as "default|shown|source|differs".
std::string summary(const DLGVARDEFAULT& def) {
  return std::string(def.pszDefault) + "|" + def.pszShown + "|" + std::to_string(def.nSource) + "|" +
         std::to_string(def.nDiffers);
}

// The sample driver plus a settings page of dialog variables in its tree.
struct DialogDriver : SampleDriver {
  DialogDriver() {
    auto page = kerfline::test::group("Settings");
    page->AddChild(
        dlg("%Pressure%", "80", drv::type_code::kInteger, "%d g", Ext{KERFLINE_DLGVAR_LIMITS, 400, 10, 5}));
    auto off = dlg("%Offset%", "0.25", drv::type_code::kDouble, "%.2f mm",
                   Ext{KERFLINE_DLGVAR_LIMITS | KERFLINE_DLGVAR_RELATIVE, 1.5, 0, 0.05});
    off->Conditions = {"%Optimize% == 1", "%Pressure% > 20"};
    page->AddChild(off);
    page->AddChild(dlg("%Optimize%", "1", drv::type_code::kBool, "%d"));
    page->AddChild(
        dlg("%Inverted%", "3", drv::type_code::kInteger, "%d", Ext{KERFLINE_DLGVAR_LIMITS, 1, 5, 1}));
    page->AddChild(dlg("%NegStep%", "3", drv::type_code::kInteger, "%d", Ext{0, 10, 0, -1}));
    page->AddChild(dlg("%NoBound%", "3", drv::type_code::kDouble, "%g", Ext{0, 10, kNaN, 1}));
    page->AddChild(dlg("%Fine%", "3", drv::type_code::kInteger, "%d", Ext{0, 1e9, 0, 1}));
    page->AddChild(dlg("%NoStep%", "3", drv::type_code::kInteger, "%d", Ext{0, 10, 0, 0}));
    page->AddChild(dlg("%Stray%", "7.5", drv::type_code::kDouble, "100% %.1f"));
    page->AddChild(dlg("%Two%", "7.5", drv::type_code::kDouble, "%d of %d"));
    auto init = dlg("%Init%", "IN;", drv::type_code::kString, "%s");
    init->DictId = 9184;  // the standard %PlotInit%, default "IN;PA;"
    page->AddChild(init);
    page->AddChild(dlg("%Pressure%", "999", drv::type_code::kInteger, "%d"));  // repeated: first wins
    page->AddChild(kerfline::test::with(kerfline::test::group("Advanced"),
                                        {dlg("%Deep%", "1", drv::type_code::kString, "")}));
    doc.Root().AddChild(page);
    doc.RefreshGroupList();
  }
};

// ---- format texts -----------------------------------------------------------

struct FormatRow {
  const char* format;
  double number;
  const char* text;
  const char* shown;  // nullptr: the format is broken
};

class DialogFormats : public ::testing::TestWithParam<FormatRow> {};

TEST_P(DialogFormats, ApplyOrRefuse) {
  const FormatRow& row = GetParam();
  const auto parsed = kerfline::frame::parse_dialog_format(row.format);
  if (row.shown == nullptr) {
    EXPECT_FALSE(parsed.has_value()) << row.format;
    return;
  }
  ASSERT_TRUE(parsed.has_value()) << row.format;
  EXPECT_EQ(kerfline::frame::apply_dialog_format(*parsed, row.number, row.text), row.shown);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DialogFormats,
    ::testing::Values(FormatRow{"%d", 12.9, "12.9", "12"}, FormatRow{"%d", -12.9, "", "-12"},
                      FormatRow{"%05d", -42, "", "-0042"}, FormatRow{"%+d", 7, "", "+7"},
                      FormatRow{"%-4d|", 7, "", "7   |"}, FormatRow{"%4d", 7, "", "   7"},
                      FormatRow{"%.3d", 7, "", "007"}, FormatRow{"%.2f mm", 0.25, "", "0.25 mm"},
                      FormatRow{"%.0f", 2.5, "", "2"}, FormatRow{"%f", 1.5, "", "1.500000"},
                      FormatRow{"%.1e", 1234, "", "1.2e+03"}, FormatRow{"%E", 0.5, "", "5.000000E-01"},
                      FormatRow{"%g", 0.0001, "", "0.0001"}, FormatRow{"%G", 1e-10, "", "1E-10"},
                      FormatRow{"%s!", 0, "abc", "abc!"}, FormatRow{"%.2s", 0, "abc", "ab"},
                      FormatRow{"100%% at %d", 3, "", "100% at 3"}, FormatRow{"mm", 3, "3", "mm3"},
                      FormatRow{"% d", 3, "", " 3"}, FormatRow{"%08.3f", -1.5, "", "-001.500"},
                      FormatRow{"%f", 1e300 * 1e10, "", "inf"}, FormatRow{"100%", 0, "", nullptr},
                      FormatRow{"%d %d", 0, "", nullptr}, FormatRow{"%123d", 0, "", nullptr},
                      FormatRow{"%.100f", 0, "", nullptr}, FormatRow{"%n", 0, "", nullptr},
                      FormatRow{"%5", 0, "", nullptr}),
    kerfline::test::RowIndex());

// ---- one variable -----------------------------------------------------------

struct DataRow {
  const char* name;
  std::int32_t kind;
  bool tool_owner;
  std::int32_t result;
  const char* caption;
  const char* shown;
  std::uint32_t state;
  std::int32_t ext_result;  // GetDlgVarExtParms
  std::int32_t relative;    // IsRelativeFlag
};

class DialogData : public ::testing::TestWithParam<DataRow> {};

TEST_P(DialogData, DataExtParmsAndRelativeFlag) {
  const DataRow& row = GetParam();
  DialogDriver d;
  kerfline::test::ToolRecord tool(d);
  VMV6DLGVAR var = d.dialog_request(row.name, row.kind, 0, row.tool_owner ? &tool.record : nullptr);
  DLGVARDATA data;
  std::memset(&data, 0x5A, sizeof data);
  EXPECT_EQ(GetDlgVarData(&var, &data), row.result);
  DLGVAREXT ext{};
  EXPECT_EQ(GetDlgVarExtParms(&var, &ext), row.ext_result);
  EXPECT_EQ(IsRelativeFlag(&var), row.relative);
  if (row.result == 1) {
    EXPECT_STREQ(data.szCaption, row.caption);
    EXPECT_STREQ(data.szShown, row.shown);
    EXPECT_EQ(data.nState, row.state);
    EXPECT_EQ(ext.nState, row.ext_result == -2 ? KERFLINE_DLGSTATE_BAD_RANGE : 0u);
  }
  EXPECT_EQ(var.uValue.pszText, nullptr);  // the value fields are left alone
}

INSTANTIATE_TEST_SUITE_P(
    Table, DialogData,
    ::testing::Values(
        DataRow{"%Pressure%", 1, false, 1, "Caption of %Pressure%", "80 g", 0, 1, 0},
        DataRow{"%Offset%", 1, false, 1, "Caption of %Offset%", "0.25 mm", 0, 1, 1},
        DataRow{"%Optimize%", 1, false, 1, "Caption of %Optimize%", "1", 0, 0, 0},
        DataRow{"%Inverted%", 1, false, 1, "Caption of %Inverted%", "3", KERFLINE_DLGSTATE_BAD_RANGE, -2, 0},
        DataRow{"%NegStep%", 1, false, 1, "Caption of %NegStep%", "3", KERFLINE_DLGSTATE_BAD_RANGE, -2, 0},
        DataRow{"%NoBound%", 1, false, 1, "Caption of %NoBound%", "3", KERFLINE_DLGSTATE_BAD_RANGE, -2, 0},
        DataRow{"%Stray%", 1, false, 1, "Caption of %Stray%", "7.5", KERFLINE_DLGSTATE_BAD_FORMAT, 0, 0},
        DataRow{"%Deep%", 1, false, 1, "Caption of %Deep%", "1", 0, 0, 0},
        DataRow{"%Speed%", 1, false, 1, "about %Speed%", "speed", KERFLINE_DLGSTATE_PLAIN, 0, 0},
        DataRow{"%Dlg%", 2, true, 1, "Cut depth", "3.25", 0, 0, 0},
        DataRow{"%Layer%", 5, true, 1, "about %Layer%", "layer", KERFLINE_DLGSTATE_PLAIN, 0, 0},
        DataRow{"%Dlg%", 2, false, -5, "", "", 0, -5, -5},
        DataRow{"%Layer%", 5, false, -2, "", "", 0, -2, -2},
        DataRow{"%Cam%", 8, false, -5, "", "", 0, -5, -5},
        DataRow{"%Missing%", 1, false, -5, "", "", 0, -5, -5}, DataRow{"", 1, false, -2, "", "", 0, -2, -2}),
    kerfline::test::RowIndex());

TEST(DialogData, ExtendedDataAndDefaults) {
  DialogDriver d;
  VMV6DLGVAR var = d.dialog_request("%Offset%", 1, 0, nullptr);
  EXTDLGVARDATA data{};
  ASSERT_EQ(GetExtDlgVarData(&var, &data), 1);
  EXPECT_EQ(data.data.nConditionCount, 2);
  EXPECT_EQ(data.data.nHasExt, 1);
  EXPECT_EQ(data.data.nType, 0);
  EXPECT_DOUBLE_EQ(data.ext.dMax, 1.5);
  EXPECT_DOUBLE_EQ(data.ext.dIncrements, 0.05);
  EXPECT_EQ(data.nHasDefault, 0);
  DLGVARDEFAULT def;
  std::memset(&def, 0x5A, sizeof def);
  EXPECT_EQ(GetDlgDefaultEx(&var, &def), 0);  // no standard text, no base driver
  EXPECT_EQ(def.pszDefault, nullptr);

  var = d.dialog_request("%Init%", 1, 0, nullptr);
  ASSERT_EQ(GetExtDlgVarData(&var, &data), 1);
  EXPECT_EQ(data.nHasDefault, 1);
  EXPECT_STREQ(data.szDefault, "IN;PA;");
  ASSERT_EQ(GetDlgDefaultEx(&var, &def), 1);
  EXPECT_EQ(summary(def), "IN;PA;|IN;PA;|" + std::to_string(KERFLINE_DEFAULT_STANDARD) + "|1");
  EXPECT_EQ(FreeDlgDefaultEx(&def), 1);
  EXPECT_EQ(def.pszDefault, nullptr);
  EXPECT_EQ(FreeDlgDefaultEx(&def), 1);  // freed twice: nothing left to release

  // A value longer than its field is cut, terminated and flagged.
  d.doc.FindItem("%Deep%")->Value = std::string(300, 'x');
  var = d.dialog_request("%Deep%", 1, 0, nullptr);
  ASSERT_EQ(GetExtDlgVarData(&var, &data), 1);
  EXPECT_EQ(std::strlen(data.data.szValue), sizeof data.data.szValue - 1);
  EXPECT_NE(data.data.nState & KERFLINE_DLGSTATE_CUT, 0u);
}

class DialogDefaultFiles : public kerfline::test::FrameTest {};

TEST_F(DialogDefaultFiles, TheBaseDriversValue) {
  using kerfline::test::named;
  kerfline::test::write_driver(suite, "base.vmd", [](drv::CVm6Drv& doc) {
    doc.Root().AddChild(dlg("%Knife%", "0.3", drv::type_code::kDouble, "%.2f mm"));
  });
  const std::string path = kerfline::test::write_driver(suite, "derived.vmd", [](drv::CVm6Drv& doc) {
    doc.BaseDriverFlag = 1;
    doc.Root().AddChild(named("%BaseDrv%", "base.vmd"));
    doc.Root().AddChild(dlg("%Knife%", "0.5", drv::type_code::kDouble, "%.2f mm"));
  });
  VMV6DRV handle = kerfline::test::record_for(path);
  ASSERT_EQ(InitDrv(&handle), 1);
  VMV6DLGVAR var{};
  std::strcpy(var.szName, "%Knife%");
  var.pDrv = &handle;
  var.nKind = KERFLINE_VARKIND_DRIVER;
  DLGVARDEFAULT def{};
  ASSERT_EQ(GetDlgDefaultEx(&var, &def), 1);
  EXPECT_EQ(summary(def), "0.3|0.30 mm|" + std::to_string(KERFLINE_DEFAULT_BASE) + "|1");
  EXPECT_EQ(FreeDlgDefaultEx(&def), 1);
  EXPECT_EQ(FreeDrv(&handle), 1);
}

// ---- value lists --------------------------------------------------------------

struct ValsRow {
  const char* name;
  std::int32_t result;
  std::int32_t count;
  const char* first;
  const char* last;
};

class VarVals : public ::testing::TestWithParam<ValsRow> {};

TEST_P(VarVals, OfferTheStepsOfTheRange) {
  const ValsRow& row = GetParam();
  DialogDriver d;
  VMV6DLGVAR var = d.dialog_request(row.name, 1, 0, nullptr);
  VARVAL* values = nullptr;
  std::int32_t count = -1;
  EXPECT_EQ(GetVarVals(&var, &values, &count), row.result);
  if (row.result < 0) {
    EXPECT_EQ(values, nullptr);
    FreeVarVals(values);  // null: nothing to release
    return;
  }
  ASSERT_NE(values, nullptr);  // even an empty list is a block
  ASSERT_EQ(count, row.count);
  if (count > 0) {
    EXPECT_STREQ(values[0].szText, row.first);
    EXPECT_STREQ(values[count - 1].szText, row.last);
  }
  FreeVarVals(values);
}

INSTANTIATE_TEST_SUITE_P(
    Table, VarVals,
    ::testing::Values(ValsRow{"%Pressure%", 1, 79, "10 g", "400 g"},
                      ValsRow{"%Offset%", 1, 31, "0.00 mm", "1.50 mm"}, ValsRow{"%Optimize%", 1, 2, "0", "1"},
                      ValsRow{"%Fine%", 0, 0, "", ""}, ValsRow{"%NoStep%", 0, 0, "", ""},
                      ValsRow{"%Deep%", 0, 0, "", ""}, ValsRow{"%Inverted%", -2, 0, "", ""},
                      ValsRow{"%NegStep%", -2, 0, "", ""}, ValsRow{"%Missing%", -5, 0, "", ""}),
    kerfline::test::RowIndex());

// ---- lists ----------------------------------------------------------------------

TEST(DialogList, TreeOrderFirstNameWinsAndConditions) {
  DialogDriver d;
  DLGVARLIST list{};
  ASSERT_EQ(GetDlgVars(&d.handle, KERFLINE_VARKIND_DRIVER, nullptr, &list), 1);
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(list.nCount));
  for (std::int32_t i = 0; i < list.nCount; ++i) names.emplace_back(list.pEntries[i].szName);
  // Tool dialog variables come first (the tools group precedes the page).
  const std::vector<std::string> expected = {
      "%Dlg%",     "%IDlgInt%", "%Pressure%", "%Offset%", "%Optimize%", "%Inverted%", "%NegStep%",
      "%NoBound%", "%Fine%",    "%NoStep%",   "%Stray%",  "%Two%",      "%Init%",     "%Deep%"};
  EXPECT_EQ(names, expected);
  const DLGVARENTRY& pressure = list.pEntries[2];
  EXPECT_STREQ(pressure.pszValue, "80");
  EXPECT_STREQ(pressure.pszGroup, "Settings");
  const DLGVARENTRY& offset = list.pEntries[3];
  ASSERT_EQ(offset.nConditionCount, 2);
  EXPECT_STREQ(offset.ppszConditions[1], "%Pressure% > 20");
  EXPECT_EQ(offset.ext.nFlags, KERFLINE_DLGVAR_LIMITS | KERFLINE_DLGVAR_RELATIVE);
  EXPECT_STREQ(list.pEntries[13].pszGroup, "Advanced");
  EXPECT_EQ(list.pEntries[10].nState, KERFLINE_DLGSTATE_BAD_FORMAT);
  EXPECT_EQ(FreeDlgVars(&list), 1);
  EXPECT_EQ(list.pEntries, nullptr);
  EXPECT_EQ(FreeDlgVars(&list), 1);  // freed twice: nothing left to release
}

TEST(DialogList, OwnerPlacesAndRecordsFromElsewhere) {
  DialogDriver d;
  SampleDriver other;
  kerfline::test::ToolRecord tool(d), foreign(other);
  DRVTOOL freed{};
  ASSERT_EQ(GetFirstTool(&d.handle, &freed), 1);
  DRVTOOL copy = freed;  // kept past its release
  ASSERT_EQ(FreeTool(&freed), 1);
  DRVTOOL forged{&forged, nullptr, nullptr, 0, 0};
  const std::tuple<std::int32_t, void*, std::int32_t, std::int32_t> rows[] = {
      // kind, owner, result, count
      {KERFLINE_VARKIND_OWNER, &tool.record, 1, 2},     {KERFLINE_VARKIND_LAYER, &tool.record, 1, 0},
      {KERFLINE_VARKIND_TOOLPARM, &tool.record, 1, 0},  {KERFLINE_VARKIND_OWNER, nullptr, -2, 0},
      {KERFLINE_VARKIND_OWNER, &foreign.record, -5, 0}, {KERFLINE_VARKIND_OWNER, &freed, -5, 0},
      {KERFLINE_VARKIND_VIDEO, nullptr, -5, 0},         {KERFLINE_VARKIND_OWNER_INT, &tool.record, -5, 0}};
  for (const auto& [kind, owner, result, count] : rows) {
    DLGVARLIST list{};
    EXPECT_EQ(GetDlgVars(&d.handle, kind, owner, &list), result) << kind;
    EXPECT_EQ(list.nCount, count) << kind;
    FreeDlgVars(&list);
  }
  // Records that no longer refer to a tool of this driver, in the single-variable calls.
  for (DRVTOOL* owner : {&foreign.record, &freed, &copy, &forged}) {
    VMV6DLGVAR dlg = d.dialog_request("%Dlg%", KERFLINE_VARKIND_OWNER, 0, owner);
    DLGVARDATA data{};
    EXPECT_EQ(GetDlgVarData(&dlg, &data), -5);
    VMV6VAR var = d.request("%Depth%", KERFLINE_VARKIND_OWNER, KERFLINE_VT_TEXT, owner);
    EXPECT_EQ(GetVar(&var), -5);
  }
}

// ---- values by name ---------------------------------------------------------------

TEST(GetVarVal, CopiesWhenTheBufferHoldsIt) {
  SampleDriver d;
  d.doc.Variant = "3";
  // name, size, result, length, buffer after; the variant name first, and
  // size 6 is one byte short of the terminator
  const std::tuple<const char*, std::int32_t, std::int32_t, std::int32_t, const char*> rows[] = {
      {"%Speed%", 7, 1, 6, "speed3"},
      {"%Speed%", 6, 0, 6, ""},
      {"%Missing%", 10, -5, -1, "unchanged"},
      {"%Speed%", -1, -2, -1, "unchanged"}};
  for (const auto& [name, size, result, expected_length, text] : rows) {
    VMV6VAR var = d.request(name, KERFLINE_VARKIND_DRIVER);
    char buffer[16] = "unchanged";
    std::int32_t length = -1;
    EXPECT_EQ(GetVarVal(&var, buffer, size, &length), result) << name;
    EXPECT_EQ(length, expected_length) << name;
    EXPECT_STREQ(buffer, text) << name;
  }
}

// ---- checks -------------------------------------------------------------------------

struct CheckRow {
  const char* name;
  const char* value;
  std::int32_t result;
  std::int32_t reason;
};

class CheckValues : public ::testing::TestWithParam<CheckRow> {};

TEST_P(CheckValues, TypeRangeAndLength) {
  const CheckRow& row = GetParam();
  DialogDriver d;
  auto& vinyl = *d.doc.FindItem("Vinyl");
  auto* material = dynamic_cast<drv::CDrvItemList*>(&vinyl);
  ASSERT_NE(material, nullptr);
  material->AddChild(kerfline::test::item("%IMatDescription%", "", drv::type_code::kString));
  material->AddChild(kerfline::test::item("%Made%", "1.1.2020", drv::type_code::kDate));
  material->AddChild(
      dlg("%MatSpeed%", "40", drv::type_code::kInteger, "%d", Ext{KERFLINE_DLGVAR_LIMITS, 80, 1, 1}));
  DRVMATERIAL m{};
  ASSERT_EQ(GetFirstMaterial(&d.handle, &m), 1);
  VMV6VAR var = d.request(row.name, KERFLINE_VARKIND_OWNER, KERFLINE_VT_TEXT, &m);
  std::int32_t reason = -1;
  EXPECT_EQ(CheckMatVarVal(&var, row.value, &reason), row.result);
  if (row.result >= 0) {
    EXPECT_EQ(reason, row.reason);
  }
  FreeMaterial(&m);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CheckValues,
    ::testing::Values(CheckRow{"%IMatSpeed%", " 12.5 ", 1, 0}, CheckRow{"%IMatSpeed%", "12,5", 0, 1},
                      CheckRow{"%IMatSpeed%", "inf", 0, 1}, CheckRow{"%IMatSpeed%", "", 0, 1},
                      CheckRow{"%MatSpeed%", "80", 1, 0}, CheckRow{"%MatSpeed%", "81", 0, 2},
                      CheckRow{"%MatSpeed%", "-3", 0, 2}, CheckRow{"%MatSpeed%", "4.0", 0, 1},
                      CheckRow{"%MatSpeed%", "1e2", 0, 1}, CheckRow{"%Made%", "31.12.2009", 1, 0},
                      CheckRow{"%Made%", "32.1.2009", 0, 1}, CheckRow{"%Made%", "1.2", 0, 1},
                      CheckRow{"%IMatDescription%", "any text", 1, 0}, CheckRow{"%Missing%", "1", -5, -1},
                      CheckRow{"%IMatSpeed%", nullptr, -2, -1}),
    kerfline::test::RowIndex());

}  // namespace
