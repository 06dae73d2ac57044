// The registry as the tables fill it: order, texts, shadowing, and the
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

struct TextRow {
  const char* name;
  int parameters;
  const char* parameter_text;
  const char* second;
  const char* help;
};

// Every entry with a leading or trailing blank, a quote, a bar, a percent
// sign or a bracket in its texts, and a few plain ones.
const TextRow kTexts[] = {
    {"Upper", 1, "Text", "", "Convert \"Text\" to upper case"},
    {"Mid", 3, "Text, i, n", "", "First 'i' characters of \"Text\", starting at character 'n'"},
    {"Repl", 3, "Text, t1, t2", "",
     "Replace all occurances of \"t1\" in \"Text\" with \"t2\" (case insensitive)"},
    {"Find", 2, "t1, t2", "",
     "Find text \"t2\" in text \"t1\". Returns position of t2 in t1 (starting at 0), else -1."},
    {"Eql", 2, "x, y", "", "If x = y, output \"1\" , else \"0\""},
    {"NEql", 2, "x, y", "", "If x = y, output \"0\" , else \"1\""},
    {"VarSet", 2, "\"Var\", Val", "",
     "Create a variable, \"Var\", with value \"Val\". Variable name must be in quotes."},
    {"Msg", 2, "\"Msg\", \"Title\"", "", "Shows Messagebox with Msg and Title"},
    {"Tick", 0, "", "", "Current system tick ms"},
    {"AddNChar", 3, "sz, c, n", "", "Adds char 'c' n times to sz"},
    {"FExist", 1, "file", "", "If \"file\" exists output \"1\", else \"0\""},
    {"OR", 2, "A, B", "", "OR A, B"},
    {"BITNOT", 1, "A", "", "NOT A (DWORD)"},
    {"FWrite", 3, "Path, Text, Flags", "", "Path, Text, [empty|Append]"},
    {"DAdd", 2, "d1, d2", "res = d1 + d2", "double Addition"},
    {"DRound", 2, "d1, n", "n Digits", "Round"},
    {"DCeil", 1, "d1", " ceil(d1)", "ceil of d1"},
    {"DFloor", 1, "d1", " floor", "floor of d1"},
    {"DAbs", 1, "d1", " abs(d1)", "absolute"},
    {"DMod", 2, "d1, d2", " fmode(d1, d2)", "Modulo mod(10,3) -> 1"},
    {"DFract", 1, "d1", " fract(d1)", "DFract(12.01) -> 0.01"},
    {"DInt", 1, "d1", " Int(d1)", "DInt(12.01) -> 12"},
    {"DSin", 1, "d1", " sin(d1)", "Sinus"},
    {"DCos", 1, "d1", " cos(d1)", "Cosinus"},
    {"DTan", 1, "d1", " tan(d1)", "Tangens"},
    {"DaSin", 1, "d1", " asin(d1)", "arcus sinus"},
    {"DaCos", 1, "d1", " acos(d1)", "arcus cosinus"},
    {"DaTan", 1, "x", " atan(d1)", "arcus tangens"},
    {"DaTan2", 2, "y,x", " atan(y/x)", "arcus tangens (y/x)"},
    {"DSinh", 1, "x", " sinh(d1)", "sinus hyperbolicus"},
    {"DCosh", 1, "x", " cosh(d1)", "cosinus hyperbolicus"},
    {"DTanh", 1, "x", " atanh(d1)", "tangens hyperbolicus"},
    {"DSqrt", 1, "x", " sqrt(d1)", "squareroot"},
    {"DPow", 2, "x,y", " pow(x,y)", "pow x hoch y"},
    {"DLn", 1, "x", " ln(d1)", "logarithmus naturalis"},
    {"DLog", 1, "x", " log(d1)", "logarithmus base 10"},
    {"While", 2, "while(C, I) not implemented yet!!!", "", "while"},
    {"FrmtTime", 2, "msecs,Frmt: !h ->(hour) !m ->(min) !s ->(seks) !Ms ->(millisec)",
     "Timespan: !h (hour) !m (min) !s (seks) !Ms (millisec)", "FrmtTime"},
    {"FrmtTime2", 2, "msecs,Frmt: %H ->(hour) %M ->(min) %S ->(secs) (s. Mfc CTime)",
     "Time: %H ->(hour) %M ->(min) %S ->(secs) (s. Mfc CTime)", "FrmtTime2"},
    {"FrmtTime3", 2, "msecs,Frmt: %H ->(hour) %M ->(min) %S ->(secs) (s. Mfc CTime)",
     "Time: %H ->(hour) %M ->(min) %S ->(secs) (s. Mfc CTime)", "FrmtTime3"},
    {"IAR", 9, "(Count,xAct,yAct,xCenter,yCenter,Arc Grad, Templ %x%,%y%, scaleX,scalY )",
     "Interpolates AR with Lines", "IAR"},
    {"ILineY", 5, "(xStart,yStart,xEnd,yEnd,Length)",
     "Interpolates Line form xStart to xEnd, returns interpolated y", "ILineY"},
    {"AddIsoLineNr", 6, "FilePath,  Format, FirstLine, StartVal, Inc, EndOfLineString", "",
     "FilePath, Format, FirstLine, StartVal, Inc, EndOfLineString"},
    {"AddIsoLineNrExt", 8, "FilePath, Pre,Post, Format, FirstLine, StartVal, Inc, EndOfLineString", "",
     "FilePath, Pre,Post,Format, FirstLine, StartVal, Inc, EndOfLineString"},
    {"ReadVar", 4, "Instr, Frmt, VarName, VarDef", "", "OH;, %[0-9]%, %PosX%, 0"},
    {"ReadVarTerm", 4, "Instr, Frmt, Terminator char, VarDef", "", "OA;, %[0-9]%, ;, 0"},
    {"ReadVarTM", 5, "Instr, Frmt, VarName, VarDef, TimeOut(sec)", "", "OH;, %[0-9]%, %PosX%, 0, 100"},
    {"ReadReg", 2, "Key, DefVal", "", ""},
    {"SendMail", 6, "(Doit,Addr,cc,Subject,Text,File)", "Sends an email ", "SendMail"},
    {"ZundToolOffset", 1, "Reserved", " ZundToolOffset( )",
     "Read act Tool Offset (Zuend, fills vars: ztoX,ztoY) ("},
    {"ReadSocket", 3, "Send, Ret.-Frmt, Res", "", "Send, Ret.-Frmt, Res"},
    {"WriteSocket", 2, "Send, Res. Var", "", "Send, Res. Var"},
};

TEST(BuiltinRegistry, KeepsTheBrowserTextsExactly) {
  FunctionRegistry registry;
  register_builtin_tables(registry);
  for (const TextRow& row : kTexts) {
    const FunctionRecord* found = nullptr;
    for (const FunctionRecord* r : registry.listing()) {
      if (r->name == row.name) found = r;
    }
    ASSERT_NE(found, nullptr) << row.name;
    EXPECT_EQ(found->parameter_count, row.parameters) << row.name;
    EXPECT_EQ(found->parameters, row.parameter_text) << row.name;
    EXPECT_EQ(found->second_text, row.second) << row.name;
    EXPECT_EQ(found->help, row.help) << row.name;
  }
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
