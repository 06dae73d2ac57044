// The registry tables, in registration order, with the texts a host's
// function browser shows. The basic table comes first, so its Or, And and
// Not shadow the extended table's OR, AND and NOT.
#include "script/builtins.hpp"
#include "script/special_functions.hpp"

namespace kerfline::script {
namespace {

// clang-format off
constexpr BuiltinEntry kBasic[] = {
    {"Upper", builtin::upper, 1, "Text", "", "Convert \"Text\" to upper case"},
    {"Lower", builtin::lower, 1, "Text", "", "Convert \"Text\" to lower case"},
    {"Left", builtin::left, 2, "Text, n", "", "Leftmost 'n' characters of \"Text\""},
    {"Right", builtin::right, 2, "Text, n", "", "Rightmost 'n' characters of \"Text\""},
    {"Mid", builtin::mid, 3, "Text, i, n", "", "First 'i' characters of \"Text\", starting at character 'n'"},
    {"Repl", builtin::repl, 3, "Text, t1, t2", "", "Replace all occurances of \"t1\" in \"Text\" with \"t2\" (case insensitive)"},
    {"Len", builtin::len, 1, "Text", "", "Text Length"},
    {"Find", builtin::find, 2, "t1, t2", "", "Find text \"t2\" in text \"t1\". Returns position of t2 in t1 (starting at 0), else -1."},
    {"Import", import_routine, 1, "Path", "", "Import text from file \"Path\""},
    {"Join", builtin::join, 2, "t1, t2", "", "Concatenate text \"t1\" and \"t2\""},
    {"Add", builtin::add, 2, "x, y", "", "Add x and y"},
    {"Sub", builtin::sub, 2, "x, y", "", "Subtract y from x"},
    {"Mul", builtin::mul, 2, "x, y", "", "Multiply x and y"},
    {"Div", builtin::div, 2, "x, y", "", "Divide x by y"},
    {"Rand", builtin::rand, 2, "x, y", "", "Generate a random number between x and y"},
    {"If", builtin::if_, 3, "x, A, B", "", "If x does not equal 0 or is non-empty, output A, else B"},
    {"Or", builtin::or_, 2, "x, y", "", "If one of x, y is not equal to 0 or is non-empty, output \"1\", else \"0\""},
    {"And", builtin::and_, 2, "x, y", "", "If both x and y are not equal to 0 and non-empty, output \"1\", else \"0\""},
    {"Eql", builtin::eql, 2, "x, y", "", "If x = y, output \"1\" , else \"0\""},
    {"NEql", builtin::neql, 2, "x, y", "", "If x = y, output \"0\" , else \"1\""},
    {"Not", builtin::not_, 1, "x", "", "If x equals 0 or is empty, output \"1\", else \"0\""},
    {"Less", builtin::less, 2, "x, y", "", "If x is less than y, output \"1\", else \"0\""},
    {"Grtr", builtin::grtr, 2, "x, y", "", "If x is greater than y, output \"1\", else \"0\""},
    {"LEql", builtin::leql, 2, "x, y", "", "If x is less than or equal to y, output \"1\", else \"0\""},
    {"GEql", builtin::geql, 2, "x, y", "", "If x is greater than or equal to y, output \"1\", else \"0\""},
    {"T", builtin::t, 1, "Text", "", "Output \"Text\""},
    {"VarSet", varset_routine, 2, "\"Var\", Val", "", "Create a variable, \"Var\", with value \"Val\". Variable name must be in quotes."},
    {"Msg", builtin::msg, 2, "\"Msg\", \"Title\"", "", "Shows Messagebox with Msg and Title"},
};

constexpr BuiltinEntry kExtended[] = {
    {"DC4", builtin::dc4, 4, "val, off, start, length", "", "Decodes 4bit: val, off, start, length"},
    {"Tick", builtin::tick, 0, "", "", "Current system tick ms"},
    {"SysDate", builtin::sys_date, 0, "", "", "Current system date"},
    {"SysTime", builtin::sys_time, 0, "", "", "Current system time"},
    {"Size", builtin::size, 1, "Path", "", "File size, in bytes"},
    {"SizeK", builtin::size_k, 1, "Path", "", "File size, in kilobytes"},
    {"Date", builtin::date, 1, "Path", "", "File modification date"},
    {"Time", builtin::time, 1, "Path", "", "File modification time"},
    {"Join3", builtin::join3, 3, "A, B, C", "", "Concatenate A, B and C to ABC"},
    {"AddNChar", builtin::add_n_char, 3, "sz, c, n", "", "Adds char 'c' n times to sz"},
    {"Q", builtin::q, 1, "Text", "", "Output text in double quotes"},
    {"FExist", builtin::f_exist, 1, "file", "", "If \"file\" exists output \"1\", else \"0\""},
    {"XOR", builtin::xor_, 2, "A, B", "", "XOR A, B"},
    {"OR", builtin::or_, 2, "A, B", "", "OR A, B"},
    {"AND", builtin::and_, 2, "A, B", "", "AND A, B"},
    {"NOT", builtin::not_, 1, "A", "", "NOT A"},
    {"BITXOR", builtin::bit_xor, 2, "A, B", "", "XOR A, B (DWORD)"},
    {"BITOR", builtin::bit_or, 2, "A, B", "", "OR A, B (DWORD)"},
    {"BITAND", builtin::bit_and, 2, "A, B", "", "AND A, B (DWORD)"},
    {"BITNOT", builtin::bit_not, 1, "A", "", "NOT A (DWORD)"},
    {"FWrite", builtin::f_write, 3, "Path, Text, Flags", "", "Path, Text, [empty|Append]"},
    {"AppDir", builtin::app_dir, 0, "", "", "Application directory"},
    {"DAdd", builtin::d_add, 2, "d1, d2", "res = d1 + d2", "double Addition"},
    {"DSub", builtin::d_sub, 2, "d1, d2", "res = d1 - d2", "double Subtraction"},
    {"DMul", builtin::d_mul, 2, "d1, d2", "res = d1 * d2", "double Multiplication"},
    {"DDiv", builtin::d_div, 2, "d1, d2", "res = d1 / d2", "double Division"},
    {"DRound", builtin::d_round, 2, "d1, n", "n Digits", "Round"},
    {"DCeil", builtin::d_ceil, 1, "d1", " ceil(d1)", "ceil of d1"},
    {"DFloor", builtin::d_floor, 1, "d1", " floor", "floor of d1"},
    {"DAbs", builtin::d_abs, 1, "d1", " abs(d1)", "absolute"},
    {"DMod", builtin::d_mod, 2, "d1, d2", " fmode(d1, d2)", "Modulo mod(10,3) -> 1"},
    {"DFract", builtin::d_fract, 1, "d1", " fract(d1)", "DFract(12.01) -> 0.01"},
    {"DInt", builtin::d_int, 1, "d1", " Int(d1)", "DInt(12.01) -> 12"},
    {"DSin", builtin::d_sin, 1, "d1", " sin(d1)", "Sinus"},
    {"DCos", builtin::d_cos, 1, "d1", " cos(d1)", "Cosinus"},
    {"DTan", builtin::d_tan, 1, "d1", " tan(d1)", "Tangens"},
    {"DaSin", builtin::d_asin, 1, "d1", " asin(d1)", "arcus sinus"},
    {"DaCos", builtin::d_acos, 1, "d1", " acos(d1)", "arcus cosinus"},
    {"DaTan", builtin::d_atan, 1, "x", " atan(d1)", "arcus tangens"},
    {"DaTan2", builtin::d_atan2, 2, "y,x", " atan(y/x)", "arcus tangens (y/x)"},
    {"DSinh", builtin::d_sinh, 1, "x", " sinh(d1)", "sinus hyperbolicus"},
    {"DCosh", builtin::d_cosh, 1, "x", " cosh(d1)", "cosinus hyperbolicus"},
    {"DTanh", builtin::d_tanh, 1, "x", " atanh(d1)", "tangens hyperbolicus"},
    {"DSqrt", builtin::d_sqrt, 1, "x", " sqrt(d1)", "squareroot"},
    {"DPow", builtin::d_pow, 2, "x,y", " pow(x,y)", "pow x hoch y"},
    {"DLn", builtin::d_ln, 1, "x", " ln(d1)", "logarithmus naturalis"},
    {"DLog", builtin::d_log, 1, "x", " log(d1)", "logarithmus base 10"},
    {"While", builtin::while_, 2, "while(C, I) not implemented yet!!!", "", "while"},
    {"FrmtTime", builtin::frmt_time, 2, "msecs,Frmt: !h ->(hour) !m ->(min) !s ->(seks) !Ms ->(millisec)", "Timespan: !h (hour) !m (min) !s (seks) !Ms (millisec)", "FrmtTime"},
    {"FrmtTime2", builtin::frmt_time2, 2, "msecs,Frmt: %H ->(hour) %M ->(min) %S ->(secs) (s. Mfc CTime)", "Time: %H ->(hour) %M ->(min) %S ->(secs) (s. Mfc CTime)", "FrmtTime2"},
    {"FrmtTime3", builtin::frmt_time3, 2, "msecs,Frmt: %H ->(hour) %M ->(min) %S ->(secs) (s. Mfc CTime)", "Time: %H ->(hour) %M ->(min) %S ->(secs) (s. Mfc CTime)", "FrmtTime3"},
    {"IAR", builtin::iar, 9, "(Count,xAct,yAct,xCenter,yCenter,Arc Grad, Templ %x%,%y%, scaleX,scalY )", "Interpolates AR with Lines", "IAR"},
    {"ILineX", builtin::i_line_x, 5, "(xStart,yStart,xEnd,yEnd,Length)", "Interpolates Line form xStart to xEnd, returns interpolated x", "ILineX"},
    {"ILineY", builtin::i_line_y, 5, "(xStart,yStart,xEnd,yEnd,Length)", "Interpolates Line form xStart to xEnd, returns interpolated y", "ILineY"},
    {"AddIsoLineNr", builtin::add_iso_line_nr, 6, "FilePath,  Format, FirstLine, StartVal, Inc, EndOfLineString", "", "FilePath, Format, FirstLine, StartVal, Inc, EndOfLineString"},
    {"AddIsoLineNrExt", builtin::add_iso_line_nr_ext, 8, "FilePath, Pre,Post, Format, FirstLine, StartVal, Inc, EndOfLineString", "", "FilePath, Pre,Post,Format, FirstLine, StartVal, Inc, EndOfLineString"},
    // Device dialogue, sockets, registry, mail and job control.
    {"ReadVarRet", builtin::read_var_ret, 3, "Instr, Ret, ModeFlags", "", "XYZ, Ready, 0"},
    {"ReadVar", builtin::read_var, 4, "Instr, Frmt, VarName, VarDef", "", "OH;, %[0-9]%, %PosX%, 0"},
    {"ReadVarTerm", builtin::read_var_term, 4, "Instr, Frmt, Terminator char, VarDef", "", "OA;, %[0-9]%, ;, 0"},
    {"ReadVarT", builtin::read_var_t, 5, "Instr, Frmt, VarName, VarDef, TimeOut(sec)", "", "OH;, %[0-9]%, %PosX%, 0, 100"},
    {"ReadVarTM", builtin::read_var_tm, 5, "Instr, Frmt, VarName, VarDef, TimeOut(sec)", "", "OH;, %[0-9]%, %PosX%, 0, 100"},
    {"WaitCmd", builtin::wait_cmd, 4, "Instr, Frmt, Cond, MaxWaitTime", "", "xxx"},
    {"WrtPPS", builtin::wrt_pps, 4, "File, Section, Key, Val", "", "xxx"},
    {"ReadPPS", builtin::read_pps, 4, "File, Section, Key, DefVal", "", "xxx"},
    {"ReadReg", builtin::read_reg, 2, "Key, DefVal", "", ""},
    {"SendMail", builtin::send_mail, 6, "(Doit,Addr,cc,Subject,Text,File)", "Sends an email ", "SendMail"},
    {"ZundToolOffset", builtin::zund_tool_offset, 1, "Reserved", " ZundToolOffset( )", "Read act Tool Offset (Zuend, fills vars: ztoX,ztoY) ("},
    {"ReadSocket", builtin::read_socket, 3, "Send, Ret.-Frmt, Res", "", "Send, Ret.-Frmt, Res"},
    {"QuerySocket", builtin::query_socket, 4, "Send, Ret.-Frmt, Value, MaxTime", "", "Send, Ret.-Frmt, Value, MaxTime"},
    {"WriteSocket", builtin::write_socket, 2, "Send, Res. Var", "", "Send, Res. Var"},
    {"CreateSocket", builtin::create_socket, 2, "Addr, Port", "", "Addr, Port"},
    {"CloseSocket", builtin::close_socket, 2, "SockNr, Flags", "", "SockNr, Flags"},
    {"MsgExt", builtin::msg_ext, 3, "Txt, Title, Flags", "", "Txt, Title, Flags"},
    {"TermJob", builtin::term_job, 1, "Flags", "", "Flags"},
};
// clang-format on

static_assert(std::size(kBasic) == 28);
static_assert(std::size(kExtended) == 74);

void register_table(FunctionRegistry& registry, std::span<const BuiltinEntry> table) {
  for (const BuiltinEntry& entry : table) {
    FunctionRecord record;
    record.name = entry.name;
    record.routine = entry.routine;
    record.parameter_count = entry.parameter_count;
    record.parameters = entry.parameters;
    record.second_text = entry.second_text;
    record.help = entry.help;
    registry.add(std::move(record));
  }
}

}  // namespace

std::span<const BuiltinEntry> basic_table() { return kBasic; }
std::span<const BuiltinEntry> extended_table() { return kExtended; }

void register_builtin_tables(FunctionRegistry& registry) {
  register_table(registry, kBasic);
  register_table(registry, kExtended);
}

}  // namespace kerfline::script
