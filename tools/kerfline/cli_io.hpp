// Input, output and text encoding of the tool: files read with the system's
// reason on failure, output to a file or standard output, and the
// Windows-1252 <-> UTF-8 conversion at the terminal.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace kerfline::cli {

// Reads a whole file ("-" is standard input). On failure prints one line
// naming the file and the system's reason, and returns nothing.
std::optional<std::string> read_input(const std::string& path, const char* what);

// Where a command's output goes: a file, or standard output for "" and "-".
class Output {
 public:
  explicit Output(const std::string& path);
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  [[nodiscard]] bool ok() const { return stream_ != nullptr; }
  void write(std::string_view bytes);
  // Flushes and reports a failed write (a full disk, a closed pipe); false
  // when something was lost.
  bool finish();

 private:
  std::string path_;
  std::FILE* stream_ = nullptr;
  bool owned_ = false;
};

// A command-line text (UTF-8) as the library holds it (Windows-1252); prints
// why (repeating the text when `echo`) and returns nothing when the text is
// no UTF-8 or 1252 has no such character.
std::optional<std::string> from_terminal(const std::string& utf8, const char* what, bool echo = true);

// A driver text as the terminal shows it.
std::string to_terminal(std::string_view cp1252);

// Flushes standard output; false (with a message) when the output was lost.
bool stdout_intact();

// A name as a variable record holds it: at most 63 bytes.
constexpr std::size_t kMaxNameBytes = 63;

}  // namespace kerfline::cli
