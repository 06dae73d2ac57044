// Every export that takes a record or a buffer, called with null where the
// host must pass one: the documented refusal, and no crash.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <functional>

#include "fixtures/table_names.hpp"
#include "kerfline/kerfline.h"

namespace {

struct NullRow {
  const char* call;
  std::function<std::intptr_t()> run;  // a pointer result as its address
  std::intptr_t expected;
};

void PrintTo(const NullRow& r, std::ostream* os) { *os << r.call; }

template <typename F>
NullRow row(const char* call, F f, std::intptr_t expected) {
  return {call, [f] { return reinterpret_cast<std::intptr_t>(f()); }, expected};
}
#define NUMBER(call, expected)                                       \
  NullRow {                                                          \
#    call, [] { return static_cast<std::intptr_t>(call); }, expected \
  }
#define POINTER(call) \
  row(                \
      #call, [] { return call; }, 0)

class NullArgument : public ::testing::TestWithParam<NullRow> {};

TEST_P(NullArgument, IsRefused) { EXPECT_EQ(GetParam().run(), GetParam().expected) << GetParam().call; }

VMV6DRV closed{};
char buffer[8] = "abc";

INSTANTIATE_TEST_SUITE_P(
    Exports, NullArgument,
    ::testing::Values(
        NUMBER(InitDrv(nullptr), -2), NUMBER(InitDrvS(nullptr), -2), NUMBER(InitDrvQuick(nullptr), -2),
        NUMBER(FreeDrv(nullptr), -2), NUMBER(StoreDrv(nullptr), -2), NUMBER(SetDllMode(nullptr), -2),
        NUMBER(GetVar(nullptr), -2), NUMBER(GetDlgVar(nullptr), -2), NUMBER(SetVar(nullptr), -2),
        NUMBER(FreeVar(nullptr), -2), NUMBER(FreeDlgVar(nullptr), -2),
        NUMBER(GetVarAndDesc(nullptr, nullptr), -2), NUMBER(CountTools(nullptr), -2),
        NUMBER(CountTools(&closed), -2), NUMBER(GetNextTool(nullptr, nullptr), -2),
        NUMBER(FreeTool(nullptr), -2), NUMBER(FreeMaterial(nullptr), -2), NUMBER(CountMaterial(&closed), -2),
        NUMBER(DeleteMaterial(&closed, "Vinyl"), -2), NUMBER(GetVarVals(nullptr, nullptr, nullptr), -2),
        NUMBER(FreeDlgVars(nullptr), -2), NUMBER(GetDlgVars(nullptr, 1, nullptr, nullptr), -2),
        NUMBER(GetDlgVarData(nullptr, nullptr), -2), NUMBER(FreeDlgDefaultEx(nullptr), -2),
        NUMBER(GetFirstVar(nullptr, "Sonderbefehle:"), -2), NUMBER(HasVideoVar(nullptr, "%Cam%"), -2),
        NUMBER(SetJoyStickVarNoOverride(nullptr, "%Fast%", "9"), -2),
        NUMBER(GetDrvFlags(nullptr, nullptr, nullptr), -2), NUMBER(GetFlags(nullptr, nullptr, nullptr), -2),
        NUMBER(GetFlags("", nullptr, nullptr), -2), NUMBER(GetDrvName(nullptr, buffer, 8), 0),
        NUMBER(FreeVarDesc(nullptr), 0), NUMBER(QuickFree(nullptr), 1), NUMBER(LoadEvalVars(nullptr, 1), -2),
        NUMBER(KerflineGetHelpFile(nullptr, 10), -2), NUMBER(InitCutData(nullptr), 0),
        NUMBER(FreeCutData(nullptr), 0), NUMBER(AddVariable(nullptr, nullptr), 0),
        NUMBER(AddLayer(nullptr, nullptr), 0), NUMBER(TranslateString(nullptr, 10), 0),
        NUMBER(ReplaceString(nullptr, "a", "x"), 0), NUMBER(ReplaceString(buffer, nullptr, "x"), 0),
        NUMBER(ReplaceString(buffer, "a", nullptr), 0), NUMBER(SetEvalVar(nullptr, "x", 1), -2),
        NUMBER(AddEvalUserFunc(nullptr, "", "x"), -2), NUMBER(AddEvalUserFunc("X", "", nullptr), -2),
        POINTER(TranslateDrvString(nullptr, std::malloc)), POINTER(GetEvalVar(nullptr)),
        POINTER(ReplaceStringsFromDriver(nullptr, "x", nullptr))),
    kerfline::test::RowIndex());

TEST(NullArgument, LeavesTheBufferAlone) {
  for (const auto& r :
       {NUMBER(ReplaceString(buffer, nullptr, "x"), 0), NUMBER(ReplaceString(buffer, "a", nullptr), 0)})
    EXPECT_EQ(r.run(), 0);
  EXPECT_STREQ(buffer, "abc");
}

}  // namespace
