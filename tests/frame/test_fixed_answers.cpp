// Exports whose answer is fixed: every export that takes a record or a
// buffer, called with null (or an empty name) where the host must pass one
// (the documented refusal, and no crash), the answers of a closed record and
// of a driver without tools or materials, and the entries that only answer.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <functional>

#include "fixtures/table_names.hpp"
#include "kerfline/kerfline.h"
#include "platform/library_memory.hpp"
#include "sample_driver.hpp"

namespace {

struct AnswerRow {
  const char* call;
  std::function<std::intptr_t()> run;  // a pointer result as its address
  std::intptr_t expected;
};

std::intptr_t as_number(std::int32_t v) { return v; }
std::intptr_t as_number(const void* p) { return reinterpret_cast<std::intptr_t>(p); }
#define CALL(call, expected)                        \
  AnswerRow {                                       \
#    call, [] { return as_number(call); }, expected \
  }

class FixedAnswer : public ::testing::TestWithParam<AnswerRow> {};

VMV6DRV closed{};
char buffer[8] = "abc";
DRVTOOL tool{};
DRVMATERIAL material{};
CUTDATA cut{};
std::int32_t count = 0;
VARVAL* values = nullptr;

// The sample driver (an open record), one of its variables, and an open
// driver without tools or materials.
kerfline::test::SampleDriver& sample() {
  static kerfline::test::SampleDriver d;
  return d;
}
VMV6DRV* open() { return &sample().handle; }
VMV6VAR* var() {
  static VMV6VAR v = sample().request("%Speed%", KERFLINE_VARKIND_DRIVER);
  return &v;
}
VMV6DLGVAR* dlg() {
  static VMV6DLGVAR v = sample().dialog_request("%Speed%", KERFLINE_VARKIND_DRIVER, 0, nullptr);
  return &v;
}
VMV6DRV* bare() {
  static kerfline::driver::CVm6Drv doc;
  static VMV6DRV handle = kerfline::test::handle_of(doc);
  return &handle;
}

TEST_P(FixedAnswer, IsTheDocumentedOne) {
  EXPECT_EQ(GetParam().run(), GetParam().expected) << GetParam().call;
  EXPECT_STREQ(buffer, "abc") << "a refused call leaves the buffer alone";
}

INSTANTIATE_TEST_SUITE_P(
    Exports, FixedAnswer,
    ::testing::Values(
        CALL(InitDrv(nullptr), -2), CALL(InitDrvS(nullptr), -2), CALL(InitDrvQuick(nullptr), -2),
        CALL(FreeDrv(nullptr), -2), CALL(StoreDrv(nullptr), -2), CALL(SetDllMode(nullptr), -2),
        CALL(GetVar(nullptr), -2), CALL(GetDlgVar(nullptr), -2), CALL(SetVar(nullptr), -2),
        CALL(FreeVar(nullptr), -2), CALL(FreeDlgVar(nullptr), -2), CALL(GetVarAndDesc(nullptr, nullptr), -2),
        CALL(CountTools(nullptr), -2), CALL(CountTools(&closed), -2), CALL(GetNextTool(nullptr, nullptr), -2),
        CALL(GetFirstTool(&closed, &tool), -2), CALL(GetFirstTool(open(), nullptr), -2),
        CALL(FreeTool(nullptr), -2), CALL(FreeMaterial(nullptr), -2), CALL(CountMaterial(&closed), -2),
        CALL(GetFirstMaterial(&closed, &material), -2), CALL(GetNextMaterial(open(), nullptr), -2),
        CALL(AddMaterial(&closed, "Foil", nullptr), -2), CALL(AddMaterial(open(), nullptr, nullptr), -2),
        CALL(AddMaterial(open(), "", nullptr), -2), CALL(DeleteMaterial(open(), nullptr), -2),
        CALL(DeleteMaterial(&closed, "Vinyl"), -2), CALL(CountTools(bare()), 0),
        CALL(GetFirstTool(bare(), &tool), 0), CALL(CountMaterial(bare()), 0),
        CALL(GetFirstMaterial(bare(), &material), 0), CALL(DeleteMaterial(bare(), "Vinyl"), 0),
        CALL(GetVarVals(nullptr, nullptr, nullptr), -2), CALL(GetVarVals(dlg(), nullptr, &count), -2),
        CALL(GetVarVals(dlg(), &values, nullptr), -2), CALL(GetVarVal(var(), nullptr, 4, nullptr), -2),
        CALL(GetVarVal(var(), nullptr, 0, nullptr), 0), CALL(GetExtDlgVarData(dlg(), nullptr), -2),
        CALL(GetDlgDefaultEx(dlg(), nullptr), -2), CALL(FreeDlgVars(nullptr), -2),
        CALL(GetDlgVars(nullptr, 1, nullptr, nullptr), -2), CALL(GetDlgVars(open(), 1, nullptr, nullptr), -2),
        CALL(GetDlgVarData(nullptr, nullptr), -2), CALL(FreeDlgDefaultEx(nullptr), -2),
        CALL(GetFirstVar(nullptr, "Sonderbefehle:"), -2), CALL(GetFirstVar(var(), nullptr), -2),
        CALL(HasVideoVar(nullptr, "%Cam%"), -2), CALL(HasVideoVar(open(), nullptr), -2),
        CALL(SetVideoVar(open(), "", "1"), -2), CALL(SetJoyStickVar(open(), "%Step%", nullptr), -2),
        CALL(SetVideoVarNoOverride(open(), "", "9"), -2),
        CALL(SetVideoVarNoOverride(open(), "%X%", nullptr), -2),
        CALL(SetJoyStickVarNoOverride(nullptr, "%Fast%", "9"), -2),
        CALL(GetDrvFlags(nullptr, nullptr, nullptr), -2), CALL(GetDrvFlags(open(), nullptr, nullptr), -2),
        CALL(GetFlags(nullptr, nullptr, nullptr), -2), CALL(GetFlags("", nullptr, nullptr), -2),
        CALL(GetFlags("x.drv", nullptr, nullptr), -2), CALL(GetDrvName(nullptr, buffer, 8), 0),
        CALL(GetDrvClass(nullptr, buffer, 8), 1), CALL(GetDrvClass("", buffer, 8), 1),
        CALL(GetVarName(9352, 0, nullptr), 1), CALL(GetVarDesc(9352, 0, nullptr), 0),
        CALL(FreeVarDesc(nullptr), 0), CALL(QuickFree(nullptr), 1), CALL(LoadEvalVars(nullptr, 1), -2),
        CALL(LoadEvalVars(&closed, 1), -2), CALL(KerflineGetHelpFile(nullptr, 10), -2),
        CALL(InitCutData(nullptr), 0), CALL(FreeCutData(nullptr), 0), CALL(FreeCutData(&cut), 1),
        CALL(AddVariable(nullptr, nullptr), 0), CALL(AddVariable(&cut, nullptr), 0),
        CALL(AddLayer(nullptr, nullptr), 0), CALL(AddLayer(&cut, nullptr), 0),
        CALL(TranslateString(nullptr, 10), 0), CALL(ReplaceString(nullptr, "a", "x"), 0),
        CALL(ReplaceString(buffer, nullptr, "x"), 0), CALL(ReplaceString(buffer, "a", nullptr), 0),
        CALL(SetEvalVar(nullptr, "x", 1), -2), CALL(AddEvalUserFunc(nullptr, "", "x"), -2),
        CALL(AddEvalUserFunc("X", "", nullptr), -2), CALL(TranslateDrvString(nullptr, std::malloc), 0),
        CALL(TranslateDrvString("Knife", nullptr), 0), CALL(GetEvalVar(nullptr), 0),
        CALL(ReplaceStringsFromDriver(nullptr, "x", nullptr), 0), CALL(AddObjects(), 1), CALL(Log(), 1),
        CALL(ReadFromDevice(), 1), CALL(SerializeCutData(), 1), CALL(DoDeviceSetupDlgTest(), 1),
        CALL(WriteDeviceFlags(), 1), CALL(IsRemoteAvailable(), 1), CALL(QuickRead(), 0),
        CALL(ReadDeviceValsEx(), 0),
        CALL(QuickFree(kerfline::platform::library_strdup("Contour")), 1)),  // ASan reports a leak otherwise
    kerfline::test::RowIndex());

}  // namespace
