// Child processes: a helper program started from one command-line text, the
// way Windows hosts hand it to the library, and waited for.
//
// The command line is split by the rules Windows programs use for their
// arguments (split_command_line); the first argument names the program,
// which is looked up on the search path. No shell is involved, the child
// inherits no descriptor beyond standard input, output and error, and it
// gets the caller's environment and working directory.
//
// A ChildProcess never leaves a child behind: its destructor ends a child
// that is still running and collects it, so no zombie remains.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/os_error.hpp"

namespace kerfline::platform {

// Splits a command line into arguments by the Windows rules:
//  - blanks and tabs separate arguments outside double quotes;
//  - a double quote starts or ends a quoted stretch and is dropped; inside a
//    quoted stretch, two double quotes in a row give one literal quote;
//  - 2n backslashes before a double quote give n backslashes and the quote
//    acts as above; 2n+1 backslashes give n backslashes and a literal quote;
//  - backslashes not followed by a double quote are literal;
//  - a quote left open runs to the end of the line (not an error);
//  - the first argument (the program name) follows the simpler rule Windows
//    applies to it: it ends at the first blank outside quotes, quotes are
//    dropped and backslashes are always literal.
// Cost is linear in the length of the line.
std::vector<std::string> split_command_line(std::string_view command_line);

// One argument quoted so that split_command_line gives it back unchanged
// (not for the program name, which follows the simpler rule above).
std::string quote_command_argument(std::string_view argument);

class ChildProcess {
 public:
  // Starts the program the command line names. show_command is the Windows
  // SW_* value; only Windows uses it. Fails with EINVAL for a line that
  // names no program, else with the error of the start.
  static Result<ChildProcess> spawn(std::string_view command_line, int show_command);
  // As spawn, with standard input from the null device and standard output
  // and error both written to output_file (created, or emptied first); an
  // empty name: as spawn. The window is hidden on Windows.
  static Result<ChildProcess> spawn_captured(std::string_view command_line, const std::string& output_file);

  ChildProcess(ChildProcess&&) noexcept;
  ChildProcess& operator=(ChildProcess&&) noexcept;
  // Ends a child that still runs (terminate()) and collects it.
  ~ChildProcess();

  // Blocks until the child has ended, then collects it. Safe to call from
  // one thread (a watcher) while another calls terminate() or has_ended().
  void wait();

  // The modal wait: a watcher thread of its own waits for the child, while
  // the calling thread calls pump() about every interval_ms and sleeps in
  // between. When stop() returns true the child is terminated. The watcher
  // has ended when this returns. True when the child ended by itself.
  bool wait_with_watcher(const std::function<void()>& pump, const std::function<bool()>& stop,
                         std::uint32_t interval_ms);

  // Waits at most timeout_ms for the child to end; true once it has ended.
  // Sleeps while it waits.
  bool wait_for(std::uint32_t timeout_ms);

  // True once the child has ended (collects it without blocking).
  bool has_ended();

  // Asks a running child to stop and, when it has not stopped within a
  // short grace time, kills it. Does nothing once the child has ended.
  void terminate();

  // The exit status once the child has ended by returning; a child ended by
  // a signal reports 128 + the signal number, as shells do.
  [[nodiscard]] std::optional<int> exit_code() const;

  // The OS's id of the child (pid / process id).
  [[nodiscard]] std::int64_t id() const;

 private:
  struct Impl;
  explicit ChildProcess(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace kerfline::platform
