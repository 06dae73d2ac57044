// The evaluator object: the state one evaluation runs on (flags, variable
// sets, pass counter, tokenizer settings, the events that waiting device
// functions block on) and the passes of the template language.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/byte_stream.hpp"
#include "platform/process.hpp"

#include "script/function_registry.hpp"
#include "script/tokenizer.hpp"
#include "script/variables.hpp"
#include "script/wake_event.hpp"

namespace kerfline::script {

enum class WaitResult { kTimedOut, kSignalled, kEscaped };

class Evaluator;

// One exchange with the device an evaluation talks to.
struct DialogueRequest {
  std::string instruction;
  std::uint32_t timeout_ms = 2000;
  // The answer is complete once this character arrives; '\0': at a CR or LF.
  char terminator = '\0';
  // Let the host handle its messages while the answer is awaited.
  bool pump_messages = false;
};

// The device the host named for the evaluations (SetEvalDevice). The device
// module provides it; the script functions only see this interface.
class DeviceDialogue {
 public:
  virtual ~DeviceDialogue() = default;
  // Sends the instruction, returns the answer (its line end or terminator
  // kept). Nothing when the device could not be reached, said nothing in time
  // or the evaluation was escaped. Waits end within 50 ms of an escape.
  virtual std::optional<std::string> query(Evaluator& e, const DialogueRequest& request) = 0;
  // "device NAME" for the trace.
  [[nodiscard]] virtual std::string name() const = 0;
};

// What the device functions keep per evaluator: TCP client sockets with small
// numbers, and mail programs that may still run (ended only when the
// evaluator goes, at unload).
struct DeviceSession {
  static constexpr int kMaxSockets = 8;
  std::array<platform::ByteStream, kMaxSockets> sockets;  // number n is sockets[n - 1]
  int current_socket = 0;                                 // the latest created, 0 none
  struct Mail {
    platform::ChildProcess child;
    std::string message_file;
  };
  std::vector<Mail> mails;
  // Closes the sockets; forgets mail programs that have ended.
  void reset();
  void collect_finished_mails();
};

class Evaluator {
 public:
  // registry and shared must outlive the evaluator.
  Evaluator(const FunctionRegistry& registry, const MaskedVariableSet& shared);
  Evaluator(const Evaluator&) = delete;
  Evaluator& operator=(const Evaluator&) = delete;

  // --- Entries -----------------------------------------------------------
  // The template pass under an error trap: resets the pass counter; an
  // error raised in the pass becomes the last error text and the pass's
  // whole output (pass_failed() tells). Outside any other evaluation this
  // is a top-level evaluation: it also clears the escape flag, the error
  // flag and the work budget.
  std::string evaluate(std::string_view text, std::int32_t channel);
  // The same; the result is text itself when no call was found, else held
  // in storage.
  std::string_view evaluate_view(std::string_view text, std::int32_t channel, std::string& storage);
  // Conditional pass, template pass, then (for a non-empty result) the
  // arithmetic pass with no decimals: what DoEval runs. Script errors stay
  // in the output as bracketed text; an error outside the passes sets the
  // error flag and makes the output the bracketed text.
  std::string evaluate_for_output(std::string_view text);
  // The same without copying text that no pass changed: the result is a
  // view of text or of storage.
  std::string_view evaluate_for_output(std::string_view text, std::string& storage);
  // The library's own output entry: conditional and template passes; an
  // error is shown in a "Cutter Script Error:" box (OK/Cancel; Cancel stops
  // the boxes for this evaluator's life). Nothing when the template pass
  // failed or the error or escape flag is set: error text never goes to a
  // device.
  std::optional<std::string> evaluate_device_output(std::string_view text);
  // Evaluates an imported text in a fresh evaluator that starts with copies
  // of this one's own and script variables (on channel -1).
  std::string evaluate_imported(std::string_view text);

  // --- Passes ------------------------------------------------------------
  std::string conditional_pass(std::string_view text, bool closed);
  std::string template_pass(std::string_view text);  // throws ScriptError
  // The same, writing into out; false (out unused) when no call was found.
  bool template_pass_into(std::string_view text, std::string& out);
  std::string arithmetic_pass(std::string_view text, int decimals);

  // --- Variables ---------------------------------------------------------
  // Shared, own, then script variables; masks tested against the channel.
  [[nodiscard]] const std::string* find_variable(std::string_view name) const;
  // The value, or the name itself when no set holds it.
  [[nodiscard]] std::string lookup_or_name(std::string_view name) const;
  void set_script_variable(std::string_view name, std::string value) {
    script_vars_.set(name, std::move(value));
  }
  MaskedVariableSet& own_variables() { return own_vars_; }

  // --- Escape and waiting (callable from another thread where noted) -----
  // Any thread: sets the escape flag and wakes every waiter.
  void escape();
  void enable() { escape_flag_.store(false); }
  [[nodiscard]] bool escaped() const;
  // Waits up to ms, or until the event is signalled or the evaluation is
  // escaped. Device functions use it for every wait they do.
  WaitResult wait(std::uint32_t ms, int event = 0);
  // Any thread: wakes a waiter on one of the two events.
  void signal(int event);
  // Marks a device read that waits for its answer (the busy query sees it).
  class DeviceRead {
   public:
    explicit DeviceRead(Evaluator& e);
    ~DeviceRead();
    DeviceRead(const DeviceRead&) = delete;
    DeviceRead& operator=(const DeviceRead&) = delete;

   private:
    Evaluator& root_;
  };
  // Any thread.
  [[nodiscard]] bool device_read_waiting() const { return root().waiting_.load() != 0; }

  // --- State -------------------------------------------------------------
  [[nodiscard]] bool error() const { return error_; }
  // The latest template pass ended in an error (its output is the text).
  [[nodiscard]] bool pass_failed() const { return pass_failed_; }
  // Counts work against the budget of the current top-level evaluation
  // (kMaxEvaluationsPerEntry, kMaxBytesPerEntry); past it the evaluation
  // is spent: every wait and call returns at once and the top-level result
  // becomes the recursion-limit text. Throws that error when spent.
  void charge(std::size_t evaluations, std::size_t bytes);
  [[nodiscard]] bool budget_spent() const { return root().budget_spent_.load(); }
  [[nodiscard]] const std::string& last_error() const { return last_error_; }
  [[nodiscard]] bool show_error_box() const { return show_error_box_; }
  [[nodiscard]] std::int32_t channel() const { return channel_; }
  [[nodiscard]] int pass_counter() const { return pass_counter_; }
  void set_pass_counter(int value) { pass_counter_ = value; }
  [[nodiscard]] const FunctionRegistry& registry() const { return registry_; }
  [[nodiscard]] const Tokenizer& tokenizer() const { return tokenizer_; }
  void set_raw_escapes(bool on) { tokenizer_ = Tokenizer(on); }

  // Settings kept for the device-dialogue functions.
  std::uint32_t mode = 0;
  // Where the device functions write their trace: a handle (a file
  // descriptor on POSIX) open for writing that the host owns; 0 none.
  std::uint32_t log_target = 0;
  void* owner = nullptr;
  std::atomic<std::int32_t> async_io{0};

  // The device the host named (null: none), shared with imported texts.
  [[nodiscard]] DeviceDialogue* device() const { return root().device_.get(); }
  void set_device(std::shared_ptr<DeviceDialogue> device) { root().device_ = std::move(device); }
  DeviceSession& session() { return root().session_; }
  // A new session (InitEval): the sockets are closed.
  void reset_session() { session().reset(); }
  // One line to the log target (a line end is added).
  void trace(std::string_view line) const;

 private:
  friend class NestingGuard;
  friend class EntryScope;
  Evaluator& root() { return parent_ == nullptr ? *this : *parent_; }
  [[nodiscard]] const Evaluator& root() const { return parent_ == nullptr ? *this : *parent_; }
  std::string decide_block(std::string_view content, bool closed, int depth);
  std::string evaluate_call(std::string_view source, const std::vector<Token>& tokens);

  const FunctionRegistry& registry_;
  const MaskedVariableSet& shared_;
  MaskedVariableSet own_vars_;
  ScriptVariableSet script_vars_;
  Tokenizer tokenizer_;
  Evaluator* parent_ = nullptr;  // the evaluator an imported text came from
  int nesting_ = 0;

  std::atomic<std::int32_t> escape_flag_{0};
  std::atomic<std::int32_t> waiting_{0};
  std::array<WakeEvent, 2> events_;
  std::int32_t channel_ = -1;
  int pass_counter_ = 0;
  bool error_ = false;
  bool pass_failed_ = false;
  int entries_ = 0;  // evaluations running on this root (top level when 0)
  std::size_t spent_evaluations_ = 0;
  std::size_t spent_bytes_ = 0;
  std::atomic<bool> budget_spent_{false};
  std::string last_error_;
  bool show_error_box_ = true;
  std::shared_ptr<DeviceDialogue> device_;
  DeviceSession session_;
};

// Marks an evaluation on the root evaluator. The outermost one resets the
// escape flag, the error flag and the work budget when it starts, and turns
// a spent budget into the recursion-limit text when it ends.
class EntryScope {
 public:
  explicit EntryScope(Evaluator& e);
  ~EntryScope() {
    --root_.entries_;
    if (outermost_) root_.budget_spent_.store(false);
  }
  EntryScope(const EntryScope&) = delete;
  EntryScope& operator=(const EntryScope&) = delete;
  [[nodiscard]] bool outermost() const { return outermost_; }
  // The top-level result: the recursion-limit text when the budget ran out.
  void finish(std::string& storage, std::string_view& result) const;

 private:
  Evaluator& root_;
  bool outermost_;
};

// Counts one level of nested evaluation; throws the recursion-limit error
// beyond kMaxNestedEvaluations.
class NestingGuard {
 public:
  explicit NestingGuard(Evaluator& e);
  ~NestingGuard() { --evaluator_.nesting_; }
  NestingGuard(const NestingGuard&) = delete;
  NestingGuard& operator=(const NestingGuard&) = delete;

 private:
  Evaluator& evaluator_;
};

}  // namespace kerfline::script
