// The registry as the tables fill it: order, shadowing, and the
// read-only view that hosts get through GetEvalFunc.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kerfline/kerfline.h"
#include "script/builtins.hpp"
#include "script/process_state.hpp"

namespace kerfline::script {
namespace {

const std::vector<std::string> kOrder = {
    "Upper", "Lower", "Left", "Right", "Mid", "Repl", "Len", "Find", "Import", "Join", "Add", "Sub", "Mul",
    "Div", "Rand", "If", "Or", "And", "Eql", "NEql", "Not", "Less", "Grtr", "LEql", "GEql", "T", "VarSet",
    "Msg",
    // extended, part 1
    "DC4", "Tick", "SysDate", "SysTime", "Size", "SizeK", "Date", "Time", "Join3", "AddNChar", "Q", "FExist",
    "XOR", "OR", "AND", "NOT", "BITXOR", "BITOR", "BITAND", "BITNOT", "FWrite", "AppDir", "DAdd", "DSub",
    "DMul", "DDiv", "DRound", "DCeil", "DFloor", "DAbs", "DMod", "DFract", "DInt", "DSin", "DCos", "DTan",
    "DaSin", "DaCos", "DaTan", "DaTan2", "DSinh", "DCosh", "DTanh", "DSqrt", "DPow", "DLn", "DLog", "While",
    "FrmtTime", "FrmtTime2", "FrmtTime3", "IAR", "ILineX", "ILineY", "AddIsoLineNr", "AddIsoLineNrExt",
    // extended, part 2
    "ReadVarRet", "ReadVar", "ReadVarTerm", "ReadVarT", "ReadVarTM", "WaitCmd", "WrtPPS", "ReadPPS",
    "ReadReg", "SendMail", "ZundToolOffset", "ReadSocket", "QuerySocket", "WriteSocket", "CreateSocket",
    "CloseSocket", "MsgExt", "TermJob"};

TEST(BuiltinRegistry, ListsTheTablesInOrderWithOrAndAndNotShadowed) {
  FunctionRegistry registry;
  register_builtin_tables(registry);
  ASSERT_EQ(registry.listing().size(), 102u);
  std::vector<std::string> names;
  for (const FunctionRecord* r : registry.listing()) names.push_back(r->name);
  EXPECT_EQ(names, kOrder);
  EXPECT_EQ(registry.entries().size(), 99u);
  for (const FunctionRecord* r : registry.listing()) {
    const bool shadowed = r->name == "OR" || r->name == "AND" || r->name == "NOT";
    EXPECT_EQ(registry.shadowed(*r), shadowed) << r->name;
    EXPECT_FALSE(r->user);
    EXPECT_NE(r->routine, nullptr);
  }
  EXPECT_EQ(registry.find("or")->parameters, "x, y");
  EXPECT_EQ(registry.find("NOT")->help, "If x equals 0 or is empty, output \"1\", else \"0\"");
  // A user function cannot take a built-in's name.
  EXPECT_FALSE(add_user_function(registry, "left", "a", "T(a)"));
  EXPECT_EQ(registry.find("LEFT")->routine, registry.listing()[2]->routine);
}

TEST(BuiltinRegistry, HostsReadTheProcessRegistry) {
  InitEval(0, 0, nullptr);
  AddEvalUserFunc("BrowserTwice", "a", "Join(a, a)");
  const int32_t count = GetEvalFuncCount();
  ASSERT_GE(count, 103);
  EVALFUNC info{};
  std::vector<std::string> builtins;
  bool saw_user = false;
  for (int32_t i = 0; i < count; ++i) {
    ASSERT_EQ(GetEvalFunc(i, &info), 1);
    ASSERT_NE(info.pszName, nullptr);
    const std::string name = info.pszName;
    if (name == "BrowserTwice") {
      saw_user = true;
      EXPECT_EQ(info.dwFlags, EVALFUNC_USER);
      EXPECT_STREQ(info.pszHelp, "<!--user func-->");
      EXPECT_STREQ(info.pszSecond, "Join(a, a)");
      EXPECT_EQ(info.nParams, 1);
    }
    if (name == "DCeil") {
      EXPECT_STREQ(info.pszSecond, " ceil(d1)");
    }
    if (name == "OR" || name == "AND" || name == "NOT") {
      EXPECT_EQ(info.dwFlags, EVALFUNC_SHADOWED) << name;
    }
    if (name == "Or" || name == "DSin" || name == "Tick") {
      EXPECT_EQ(info.dwFlags, 0u) << name;
    }
    if ((info.dwFlags & EVALFUNC_USER) == 0) builtins.push_back(name);
  }
  EXPECT_TRUE(saw_user);
  // The built-ins appear in table order (other test functions may sit among them).
  std::size_t next = 0;
  for (const std::string& name : builtins) {
    if (next < kOrder.size() && name == kOrder[next]) ++next;
  }
  EXPECT_EQ(next, kOrder.size());
  EXPECT_EQ(GetEvalFunc(count, &info), 0);
  EXPECT_EQ(GetEvalFunc(-1, &info), 0);
  EXPECT_EQ(GetEvalFunc(0, nullptr), -2);
}

}  // namespace
}  // namespace kerfline::script
