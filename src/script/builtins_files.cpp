// File functions. Paths come from templates written on Windows: separators
// are converted and existing names found without regard to case. A file
// that cannot be opened gives "<!-- Can't open file: <path> -->".
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/codepage.hpp"
#include "platform/file_io.hpp"
#include "platform/paths.hpp"
#include "script/builtins.hpp"
#include "script/evaluator.hpp"
#include "script/limits.hpp"
#include "script/numbers.hpp"

namespace kerfline::script {
namespace {

namespace fs = std::filesystem;

std::string cannot_open(std::string_view path) {
  return "<!-- Can't open file: " + std::string(path) + " -->";
}

bool is_regular(const std::string& path) {
  std::error_code ec;
  return !path.empty() && fs::is_regular_file(fs::path(path), ec);
}

// A regular file that opens for reading.
bool opens(const std::string& path) {
  if (!is_regular(path)) return false;
  const std::ifstream in(path, std::ios::binary);
  return in.good();
}

bool file_bytes(const std::string& path, std::uintmax_t& bytes) {
  if (!opens(path)) return false;
  std::error_code ec;
  bytes = fs::file_size(fs::path(path), ec);
  return !ec;
}

bool contains_no_case(std::string_view text, std::string_view word) {
  return platform::cp1252::to_upper(text).find(platform::cp1252::to_upper(word)) != std::string::npos;
}

// Milliseconds since 1970 of the file's last change.
bool modified_ms(const std::string& path, std::int64_t& ms) {
  std::error_code ec;
  const fs::file_time_type when = fs::last_write_time(fs::path(path), ec);
  if (ec) return false;
  const auto since_epoch = std::chrono::file_clock::to_sys(when).time_since_epoch();
  ms = std::chrono::duration_cast<std::chrono::milliseconds>(since_epoch).count();
  return true;
}

// "\r", "\n", "\t" and "\\" written out in a template stand for the
// characters; the language's literals cannot hold line breaks otherwise.
std::string unescape_line_end(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) {
      const char next = text[i + 1];
      const char actual = next == 'r'    ? '\r'
                          : next == 'n'  ? '\n'
                          : next == 't'  ? '\t'
                          : next == '\\' ? '\\'
                                         : 0;
      if (actual != 0) {
        out.push_back(actual);
        ++i;
        continue;
      }
    }
    out.push_back(text[i]);
  }
  return out;
}

// The number through a printf-like format: the first %d, %i or %u (with
// the flags "-" and "0" and a width up to 32) takes it, "%%" is a percent
// sign; without a conversion the number follows the format.
std::string format_line_number(std::string_view format, std::int64_t number) {
  std::string out;
  bool used = false;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 == format.size()) {
      out.push_back(format[i]);
      continue;
    }
    if (format[i + 1] == '%') {
      out.push_back('%');
      ++i;
      continue;
    }
    std::size_t j = i + 1;
    bool left = false;
    bool zero = false;
    for (; j < format.size() && (format[j] == '-' || format[j] == '0'); ++j)
      (format[j] == '-' ? left : zero) = true;
    std::size_t width = 0;
    for (; j < format.size() && format[j] >= '0' && format[j] <= '9'; ++j)
      width = std::min<std::size_t>(width * 10 + static_cast<std::size_t>(format[j] - '0'), 32);
    if (used || j == format.size() || (format[j] != 'd' && format[j] != 'i' && format[j] != 'u')) {
      out.push_back('%');  // not a conversion we fill: kept as written
      continue;
    }
    std::string digits = std::to_string(number);
    if (digits.size() < width) {
      const std::size_t fill = width - digits.size();
      if (left) {
        digits.append(fill, ' ');
      } else if (zero) {
        digits.insert(digits.front() == '-' ? 1 : 0, fill, '0');
      } else {
        digits.insert(0, fill, ' ');
      }
    }
    out += digits;
    used = true;
    i = j;
  }
  if (!used) out += std::to_string(number);
  return out;
}

bool write_whole_file(const std::string& path, std::string_view text) {
  // The library's one way to replace a file: a fresh temporary name created
  // exclusively, flushed, renamed over the file; a failure leaves the old one.
  return static_cast<bool>(platform::file_io::replace_atomically(path, text));
}

// Numbers the lines of a file from line first_line (1-based) on, empty
// lines excepted: pre, the formatted number, post, then the line, each line
// ended with line_end. Lines are read up to LF, a CR before it dropped.
std::string number_lines(const std::string& path_text, std::string_view pre, std::string_view post,
                         std::string_view format, const std::string& first_line_text,
                         const std::string& start_text, const std::string& inc_text,
                         std::string_view line_end_text) {
  const std::string path = script_path(path_text);
  std::string text;
  if (!read_whole_file(path, text)) return cannot_open(path_text);
  std::string line_end = unescape_line_end(line_end_text);
  if (line_end.empty()) line_end = "\r\n";
  const std::int64_t first_line = text_to_int64(first_line_text);
  const std::int64_t increment = text_to_int64(inc_text);
  std::int64_t number = text_to_int64(start_text);
  const std::size_t limit = text.size() + kMaxFunctionResultBytes;
  std::string out;
  std::int64_t line_no = 0;
  std::size_t from = 0;
  while (from < text.size()) {
    std::size_t end = text.find('\n', from);
    const std::size_t next = end == std::string::npos ? text.size() : end + 1;
    if (end == std::string::npos) end = text.size();
    std::string_view line(text.data() + from, end - from);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    ++line_no;
    if (line_no >= first_line && !line.empty()) {
      out += pre;
      out += format_line_number(format, number);
      out += post;
      // Wraps rather than overflows on absurd increments.
      number = static_cast<std::int64_t>(static_cast<std::uint64_t>(number) +
                                         static_cast<std::uint64_t>(increment));
    }
    out += line;
    out += line_end;
    if (out.size() > limit) return {};  // left unchanged: see docs/script-functions.md
    from = next;
  }
  if (!write_whole_file(path, out)) return cannot_open(path_text);
  return {};
}

}  // namespace

std::string script_path(std::string_view path) {
  std::string native = platform::native_separators(path);
  if (native.empty()) return native;
  if (auto found = platform::resolve_case_insensitive(native)) return *found;
  const std::size_t separator = native.find_last_of(platform::path_separator());
  if (separator != std::string::npos && separator > 0) {
    if (auto dir = platform::resolve_case_insensitive(native.substr(0, separator)))
      return *dir + native.substr(separator);
  }
  return native;
}

bool read_whole_file(const std::string& path, std::string& text) {
  if (!is_regular(path)) return false;
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}

namespace builtin {

std::string size(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const std::string given = args.pop();
  std::uintmax_t bytes = 0;
  if (!file_bytes(script_path(given), bytes)) return cannot_open(given);
  return std::to_string(bytes);
}

std::string size_k(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const std::string given = args.pop();
  std::uintmax_t bytes = 0;
  if (!file_bytes(script_path(given), bytes)) return cannot_open(given);
  return format_fixed(static_cast<double>(bytes) / 1024.0, 1);
}

std::string date(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const std::string given = args.pop();
  const std::string path = script_path(given);
  std::int64_t ms = 0;
  if (!opens(path) || !modified_ms(path, ms)) return cannot_open(given);
  return format_calendar("%b %d %Y", local_calendar(ms));
}

std::string time(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const std::string given = args.pop();
  const std::string path = script_path(given);
  std::int64_t ms = 0;
  if (!opens(path) || !modified_ms(path, ms)) return cannot_open(given);
  return format_calendar("%H:%M:%S", local_calendar(ms));
}

// A file or a directory.
std::string f_exist(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const std::string path = script_path(args.pop());
  std::error_code ec;
  return truth_text(!path.empty() && fs::exists(fs::path(path), ec));
}

// FWrite(Path, Text, Flags): Flags may hold "Append" and "WaitForRemoved"
// (any case). WaitForRemoved waits, after writing, until another program
// has taken the file away; escaping the evaluation ends the wait at once.
std::string f_write(ArgStack& args, const FunctionRecord&, Evaluator& evaluator) {
  const auto [given, text, flags] = pop_args<3>(args);
  const bool append = contains_no_case(flags, "Append");
  const bool wait_for_removed = contains_no_case(flags, "WaitForRemoved");
  const std::string path = script_path(given);
  if (path.empty()) return cannot_open(given);
  if (append) {
    std::ofstream out(path, std::ios::binary | std::ios::app);
    if (!out) return cannot_open(given);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!out.flush()) return cannot_open(given);
  } else if (!write_whole_file(path, text)) {
    // A program watching for the file never sees it half written.
    return cannot_open(given);
  }
  if (wait_for_removed) {
    constexpr std::uint32_t kPollMs = 100;
    std::error_code ec;
    while (fs::exists(fs::path(path), ec) && !ec) {
      if (evaluator.wait(kPollMs) == WaitResult::kEscaped) break;
    }
  }
  return {};
}

std::string app_dir(ArgStack&, const FunctionRecord&, Evaluator&) { return platform::home_dir(); }

std::string add_iso_line_nr(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [path, format, first_line, start, inc, line_end] = pop_args<6>(args);
  return number_lines(path, {}, {}, format, first_line, start, inc, line_end);
}

std::string add_iso_line_nr_ext(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [path, pre, post, format, first_line, start, inc, line_end] = pop_args<8>(args);
  return number_lines(path, pre, post, format, first_line, start, inc, line_end);
}

}  // namespace builtin
}  // namespace kerfline::script
