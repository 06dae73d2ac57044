// The built-in functions of the script language: the two registration
// tables, the routines family by family, and the value conventions they
// share (number test, truth, integer reading, number printing).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/clock.hpp"
#include "script/function_registry.hpp"
#include "script/postfix.hpp"

namespace kerfline::script {

// --- Tables --------------------------------------------------------------

struct BuiltinEntry {
  const char* name;
  NativeRoutine routine;
  std::int32_t parameter_count;
  const char* parameters;
  const char* second_text;
  const char* help;
};

// The basic table (28 entries) and the extended table (74 entries), each in
// registration order.
std::span<const BuiltinEntry> basic_table();
std::span<const BuiltinEntry> extended_table();

// Registers the basic table, then the extended table; the first
// registration of a name wins, so the extended OR, AND and NOT are shadowed.
void register_builtin_tables(FunctionRegistry& registry);

// --- Values --------------------------------------------------------------

// Empty, or decimal digits and points after at most one leading "-".
bool is_number_text(std::string_view value);
// Empty is false, a non-number true, a number true when not 0.
bool is_true(std::string_view value);
inline std::string truth_text(bool value) { return value ? "1" : "0"; }
// As atoi: blanks, sign, digits; 0 without digits; clamped to the type.
std::int64_t text_to_int64(std::string_view value);
std::int32_t text_to_int(std::string_view value);
// A whole-number result: truncated toward zero and printed with "%d"; a
// value outside the 32-bit range (or NaN) prints as -2147483648, the value
// a 32-bit conversion of it gives.
std::string whole_number_text(double value);
// Plain decimal notation with up to 15 significant digits and at most 10
// decimals (rounded half away from zero), trailing zeros and a trailing
// point dropped, never "-0"; "???" for NaN and infinity.
std::string double_text(double value);
// value rounded half away from zero to `decimals` places (0 to 100, taken
// from its 15-significant-digit decimal form), printed with exactly that
// many decimals; "???" for NaN and infinity.
std::string rounded_text(double value, int decimals);
// A 32-bit word: decimal (a negative value wraps) or "0x" hexadecimal.
std::uint32_t text_to_dword(std::string_view value);

// Appends piece to out without letting out pass kMaxFunctionResultBytes.
void append_capped(std::string& out, std::string_view piece);

// Pops a routine's N arguments; element 0 is the first parameter.
template <std::size_t N>
std::array<std::string, N> pop_args(ArgStack& args) {
  std::array<std::string, N> values;
  for (std::size_t i = N; i-- > 0;) values[i] = args.pop();
  return values;
}

// --- Time ----------------------------------------------------------------

// Where the time functions and Rand get "now". Tests install their own.
struct TimeSource {
  std::uint64_t (*file_time_now)();  // Windows file time, UTC
  std::uint32_t (*tick_ms)();
  std::uint64_t (*high_resolution_counter)();
  bool (*local_time)(std::uint64_t file_time, platform::CalendarTime& out);
};

// Null restores the system's. The record must outlive its use.
void set_time_source(const TimeSource* source);
const TimeSource& time_source();

// Calendar fields of a Unix time in milliseconds, in UTC (any value).
platform::CalendarTime utc_calendar(std::int64_t unix_ms);
// The same moment in local time (through the time source); UTC where the
// OS cannot represent it or beyond the year 3000.
platform::CalendarTime local_calendar(std::int64_t unix_ms);
// Formats with the codes of a calendar-time object (%a %A %b %B %c %d %H
// %I %j %m %M %p %S %U %w %W %x %X %y %Y %z %Z %%, "#" drops leading
// zeros), English names whatever the locale.
std::string format_calendar(std::string_view format, const platform::CalendarTime& time);
// "!h" hours, "!m" minutes, "!s" seconds ("%02d"), "!Ms" milliseconds
// ("%03d") of a duration; a negative duration counts as 0.
std::string format_duration(std::int64_t ms, std::string_view format);

// Rand's result for one seed: three draws of the MSVC generator averaged,
// scaled onto [min(a, b), max(a, b)] by the truncating formula.
std::int64_t random_in_range(std::uint32_t seed, std::int32_t a, std::int32_t b);

// --- Routines ------------------------------------------------------------

namespace builtin {
#define KERFLINE_ROUTINE(name) \
  std::string name(ArgStack& args, const FunctionRecord& record, Evaluator& evaluator)
// text
KERFLINE_ROUTINE(upper);
KERFLINE_ROUTINE(lower);
KERFLINE_ROUTINE(left);
KERFLINE_ROUTINE(right);
KERFLINE_ROUTINE(mid);
KERFLINE_ROUTINE(repl);
KERFLINE_ROUTINE(len);
KERFLINE_ROUTINE(find);
KERFLINE_ROUTINE(join);
KERFLINE_ROUTINE(join3);
KERFLINE_ROUTINE(add_n_char);
KERFLINE_ROUTINE(t);
KERFLINE_ROUTINE(q);
// logic
KERFLINE_ROUTINE(if_);
KERFLINE_ROUTINE(or_);
KERFLINE_ROUTINE(and_);
KERFLINE_ROUTINE(not_);
KERFLINE_ROUTINE(xor_);
KERFLINE_ROUTINE(eql);
KERFLINE_ROUTINE(neql);
KERFLINE_ROUTINE(less);
KERFLINE_ROUTINE(grtr);
KERFLINE_ROUTINE(leql);
KERFLINE_ROUTINE(geql);
KERFLINE_ROUTINE(bit_xor);
KERFLINE_ROUTINE(bit_or);
KERFLINE_ROUTINE(bit_and);
KERFLINE_ROUTINE(bit_not);
KERFLINE_ROUTINE(while_);
// whole numbers
KERFLINE_ROUTINE(add);
KERFLINE_ROUTINE(sub);
KERFLINE_ROUTINE(mul);
KERFLINE_ROUTINE(div);
KERFLINE_ROUTINE(rand);
KERFLINE_ROUTINE(dc4);
// doubles and interpolation
KERFLINE_ROUTINE(d_add);
KERFLINE_ROUTINE(d_sub);
KERFLINE_ROUTINE(d_mul);
KERFLINE_ROUTINE(d_div);
KERFLINE_ROUTINE(d_round);
KERFLINE_ROUTINE(d_ceil);
KERFLINE_ROUTINE(d_floor);
KERFLINE_ROUTINE(d_abs);
KERFLINE_ROUTINE(d_mod);
KERFLINE_ROUTINE(d_fract);
KERFLINE_ROUTINE(d_int);
KERFLINE_ROUTINE(d_sin);
KERFLINE_ROUTINE(d_cos);
KERFLINE_ROUTINE(d_tan);
KERFLINE_ROUTINE(d_asin);
KERFLINE_ROUTINE(d_acos);
KERFLINE_ROUTINE(d_atan);
KERFLINE_ROUTINE(d_atan2);
KERFLINE_ROUTINE(d_sinh);
KERFLINE_ROUTINE(d_cosh);
KERFLINE_ROUTINE(d_tanh);
KERFLINE_ROUTINE(d_sqrt);
KERFLINE_ROUTINE(d_pow);
KERFLINE_ROUTINE(d_ln);
KERFLINE_ROUTINE(d_log);
KERFLINE_ROUTINE(i_line_x);
KERFLINE_ROUTINE(i_line_y);
KERFLINE_ROUTINE(iar);
// files
KERFLINE_ROUTINE(size);
KERFLINE_ROUTINE(size_k);
KERFLINE_ROUTINE(date);
KERFLINE_ROUTINE(time);
KERFLINE_ROUTINE(f_exist);
KERFLINE_ROUTINE(f_write);
KERFLINE_ROUTINE(app_dir);
KERFLINE_ROUTINE(add_iso_line_nr);
KERFLINE_ROUTINE(add_iso_line_nr_ext);
// time
KERFLINE_ROUTINE(tick);
KERFLINE_ROUTINE(sys_date);
KERFLINE_ROUTINE(sys_time);
KERFLINE_ROUTINE(frmt_time);
KERFLINE_ROUTINE(frmt_time2);
KERFLINE_ROUTINE(frmt_time3);
// host and device
KERFLINE_ROUTINE(msg);
KERFLINE_ROUTINE(read_var_ret);
KERFLINE_ROUTINE(read_var);
KERFLINE_ROUTINE(read_var_term);
KERFLINE_ROUTINE(read_var_t);
KERFLINE_ROUTINE(read_var_tm);
KERFLINE_ROUTINE(wait_cmd);
KERFLINE_ROUTINE(wrt_pps);
KERFLINE_ROUTINE(read_pps);
KERFLINE_ROUTINE(read_reg);
KERFLINE_ROUTINE(send_mail);
KERFLINE_ROUTINE(zund_tool_offset);
KERFLINE_ROUTINE(read_socket);
KERFLINE_ROUTINE(query_socket);
KERFLINE_ROUTINE(write_socket);
KERFLINE_ROUTINE(create_socket);
KERFLINE_ROUTINE(close_socket);
KERFLINE_ROUTINE(msg_ext);
KERFLINE_ROUTINE(term_job);
#undef KERFLINE_ROUTINE
}  // namespace builtin

// A path as a template writes it (Windows separators, any case) turned into
// one for this OS: separators converted, and an existing file or directory
// found without regard to case. A path to a new file keeps its leaf as
// written below its case-resolved directory.
std::string script_path(std::string_view path);

// Reads a whole regular file (a path already through script_path); false
// when it cannot be opened or read, or is no regular file.
bool read_whole_file(const std::string& path, std::string& text);

}  // namespace kerfline::script
