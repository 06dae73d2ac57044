#include <gtest/gtest.h>

#include <string>

#include "fixtures/table_names.hpp"
#include "frame/tool_flags.hpp"
#include "frame_fixture.hpp"
#include "kerfline/kerfline.h"
#include "sample_driver.hpp"

using kerfline::test::po_entry;
using kerfline::test::SampleDriver;

namespace {

struct TranslationRow {
  uint32_t mask;
  const char* tool;
  const char* material;
  const char* dialog_text;
  const char* dialog_format;
};

class ShownNames : public kerfline::test::FrameTest, public ::testing::WithParamInterface<TranslationRow> {};

TEST_P(ShownNames, FollowTheTranslationFlags) {
  const TranslationRow& row = GetParam();
  suite.write("lang/GER/kerflineGER.TRA", po_entry("Cut", "Schnitt") + po_entry("Vinyl", "Folie") +
                                              po_entry("Cut depth", "Schnitttiefe") +
                                              po_entry("!-Percent-!.2f", "!-Percent-!.3f"));
  ASSERT_GT(InitKerflineDll2(), 0);
  SetTranslationFlag(row.mask);
  SampleDriver d;

  kerfline::test::ToolRecord cut(d);
  DRVTOOL& tool = cut.record;
  EXPECT_STREQ(tool.pszName, row.tool);
  EXPECT_STREQ(tool.pszType, "Contour");  // types are not translated
  DRVMATERIAL material{};
  ASSERT_EQ(GetFirstMaterial(&d.handle, &material), 1);
  EXPECT_STREQ(material.pszName, row.material);

  VMV6DLGVAR var = d.dialog_request("%Dlg%", KERFLINE_VARKIND_OWNER, KERFLINE_VT_DOUBLE, &tool);
  ASSERT_EQ(GetDlgVar(&var), 1);
  EXPECT_STREQ(var.pszDlgText, row.dialog_text);
  EXPECT_STREQ(var.pszDlgFormat, row.dialog_format);
  FreeDlgVar(&var);
  DLGVARDATA data{};  // the caption: the dialog text again
  ASSERT_EQ(GetDlgVarData(&var, &data), 1);
  EXPECT_STREQ(data.szCaption, row.dialog_text);
  DLGVARLIST list{};
  ASSERT_EQ(GetDlgVars(&d.handle, KERFLINE_VARKIND_OWNER, &tool, &list), 1);
  EXPECT_STREQ(list.pEntries[0].pszCaption, row.dialog_text);
  FreeDlgVars(&list);

  // Flags and material removal take the stored name; flags also the shown one.
  uint32_t flags = 0;
  EXPECT_TRUE(kerfline::frame::find_tool_flags(d.doc, "Cut", flags));
  EXPECT_TRUE(kerfline::frame::find_tool_flags(d.doc, row.tool, flags));
  EXPECT_EQ(DeleteMaterial(&d.handle, "Folie"), 0);
  EXPECT_EQ(DeleteMaterial(&d.handle, "Vinyl"), 1);
  FreeMaterial(&material);
}

INSTANTIATE_TEST_SUITE_P(Table, ShownNames,
                         ::testing::Values(TranslationRow{0xFFFFFFFF, "Schnitt", "Folie", "Schnitttiefe",
                                                          "%.3f"},
                                           TranslationRow{0, "Cut", "Vinyl", "Cut depth", "%.2f"},
                                           TranslationRow{0x1, "Schnitt", "Vinyl", "Cut depth", "%.2f"},
                                           TranslationRow{0x2, "Cut", "Folie", "Cut depth", "%.2f"},
                                           TranslationRow{0x4, "Cut", "Vinyl", "Schnitttiefe", "%.3f"},
                                           TranslationRow{0x8, "Cut", "Vinyl", "Cut depth", "%.2f"}),
                         kerfline::test::RowIndex());

}  // namespace
