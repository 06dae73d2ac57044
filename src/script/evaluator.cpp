#include "script/evaluator.hpp"

#include <filesystem>
#include <memory>
#include <system_error>

#include "platform/codepage.hpp"
#include "platform/host_hooks.hpp"
#include "platform/serial_port.hpp"
#include "script/expression_parser.hpp"
#include "script/limits.hpp"
#include "script/postfix.hpp"
#include "script/script_error.hpp"

namespace kerfline::script {

NestingGuard::NestingGuard(Evaluator& e) : evaluator_(e) {
  if (evaluator_.nesting_ >= kMaxNestedEvaluations) throw ScriptError(kRecursionLimit, "");
  ++evaluator_.nesting_;
}

Evaluator::Evaluator(const FunctionRegistry& registry, const MaskedVariableSet& shared)
    : registry_(registry), shared_(shared) {}

std::string Evaluator::evaluate(std::string_view text, std::int32_t channel) {
  std::string storage;
  const std::string_view result = evaluate_view(text, channel, storage);
  return result.data() == storage.data() ? std::move(storage) : std::string(result);
}

EntryScope::EntryScope(Evaluator& e) : root_(e.root()), outermost_(root_.entries_++ == 0) {
  if (!outermost_) return;
  root_.escape_flag_.store(0);
  for (WakeEvent& event : root_.events_) event.reset();
  root_.error_ = false;
  root_.spent_evaluations_ = 0;
  root_.spent_bytes_ = 0;
  root_.budget_spent_.store(false);
}

void EntryScope::finish(std::string& storage, std::string_view& result) const {
  if (!outermost_ || !root_.budget_spent_.load()) return;
  storage = ScriptError(kRecursionLimit, "").printable();
  root_.last_error_ = storage;
  root_.pass_failed_ = true;
  result = storage;
}

void Evaluator::charge(std::size_t evaluations, std::size_t bytes) {
  Evaluator& r = root();
  if (!r.budget_spent_.load()) {
    r.spent_evaluations_ += evaluations;
    r.spent_bytes_ += bytes;
    if (r.spent_evaluations_ <= kMaxEvaluationsPerEntry && r.spent_bytes_ <= kMaxBytesPerEntry) return;
    r.budget_spent_.store(true);
    for (WakeEvent& event : r.events_) event.signal();
  }
  throw ScriptError(kRecursionLimit, "");
}

std::string_view Evaluator::evaluate_view(std::string_view text, std::int32_t channel, std::string& storage) {
  const EntryScope entry(*this);
  pass_counter_ = 0;
  pass_failed_ = false;
  channel_ = channel;
  std::string_view result = text;
  try {
    const NestingGuard nesting(*this);
    charge(1, 0);
    if (template_pass_into(text, storage)) {
      charge(0, storage.size());
      result = storage;
    }
  } catch (const ScriptError& e) {
    last_error_ = e.printable();
    pass_failed_ = true;
    storage = last_error_;
    result = storage;
  } catch (...) {
    last_error_ = printable_internal_error();
    pass_failed_ = true;
    storage = last_error_;
    result = storage;
  }
  entry.finish(storage, result);
  return result;
}

std::string Evaluator::evaluate_for_output(std::string_view text) {
  std::string storage;
  const std::string_view result = evaluate_for_output(text, storage);
  return result.data() == storage.data() ? std::move(storage) : std::string(result);
}

std::string_view Evaluator::evaluate_for_output(std::string_view text, std::string& storage) {
  const EntryScope entry(*this);
  std::string_view result;
  try {
    // A pass with nothing to replace leaves the text where it is: passthrough
    // text is copied once, into the caller's block.
    std::string blocks_done;
    if (text.find('{') != std::string_view::npos) {
      blocks_done = conditional_pass(text, false);
      text = blocks_done;
    }
    std::string calls_done;
    result = evaluate_view(text, -1, calls_done);
    if (result.find("%[") != std::string_view::npos) {
      storage = arithmetic_pass(result, 0);
      result = storage;
    } else if (result.data() == calls_done.data()) {
      storage = std::move(calls_done);
      result = storage;
    } else if (result.data() == blocks_done.data()) {
      storage = std::move(blocks_done);
      result = storage;
    }
  } catch (const ScriptError& e) {
    error_ = !budget_spent();  // a spent budget ends with its own text
    last_error_ = e.printable();
    storage = last_error_;
    result = storage;
  } catch (...) {
    error_ = true;
    last_error_ = printable_internal_error();
    storage = last_error_;
    result = storage;
  }
  entry.finish(storage, result);
  return result;
}

std::optional<std::string> Evaluator::evaluate_device_output(std::string_view text) {
  const EntryScope entry(*this);
  std::string result;
  try {
    std::string blocks_done;
    if (text.find('{') != std::string_view::npos) {
      blocks_done = conditional_pass(text, false);
      text = blocks_done;
    }
    result = evaluate(text, -1);
  } catch (const ScriptError& e) {
    error_ = !budget_spent();
    last_error_ = e.printable();
  } catch (...) {
    error_ = true;
    last_error_ = printable_internal_error();
  }
  std::string_view ignored;
  entry.finish(result, ignored);
  if ((error_ || pass_failed_) && show_error_box_) {
    const int answer = platform::host::message_box(last_error_, "Cutter Script Error:", KERFLINE_MB_OKCANCEL);
    if (answer == KERFLINE_IDCANCEL) show_error_box_ = false;
  }
  if (error_ || pass_failed_ || escaped()) return std::nullopt;
  return result;
}

std::string Evaluator::evaluate_imported(std::string_view text) {
  auto child = std::make_unique<Evaluator>(registry_, shared_);
  child->own_vars_ = own_vars_;
  child->script_vars_ = script_vars_;
  child->parent_ = &root();
  child->nesting_ = nesting_;
  child->mode = mode;
  child->log_target = log_target;
  child->owner = owner;
  child->async_io.store(async_io.load());
  return child->evaluate(text, -1);
}

std::string Evaluator::evaluate_call(std::string_view source, const std::vector<Token>& tokens) {
  charge(1, 0);
  PostfixQueue queue;
  ExpressionParser(*this).parse(source, tokens, queue);
  return evaluate_postfix(queue, *this);
}

const std::string* Evaluator::find_variable(std::string_view name) const {
  const std::string upper = platform::cp1252::to_upper(name);
  if (const std::string* v = shared_.find(upper, channel_)) return v;
  if (const std::string* v = own_vars_.find(upper, channel_)) return v;
  return script_vars_.find(upper);
}

std::string Evaluator::lookup_or_name(std::string_view name) const {
  const std::string* value = find_variable(name);
  return value != nullptr ? *value : std::string(name);
}

void Evaluator::escape() {
  escape_flag_.store(1);
  for (WakeEvent& event : events_) event.signal();
}

bool Evaluator::escaped() const {
  return escape_flag_.load() != 0 || budget_spent_.load() || (parent_ != nullptr && parent_->escaped());
}

WaitResult Evaluator::wait(std::uint32_t ms, int event) {
  if (escaped()) return WaitResult::kEscaped;
  WakeEvent& target = root().events_[event == 1 ? 1 : 0];
  const bool woken = target.wait_for(std::chrono::milliseconds(ms), [this] { return escaped(); });
  if (escaped()) return WaitResult::kEscaped;
  return woken ? WaitResult::kSignalled : WaitResult::kTimedOut;
}

void DeviceSession::reset() {
  for (platform::ByteStream& s : sockets) s.close();
  current_socket = 0;
  collect_finished_mails();
}

void DeviceSession::collect_finished_mails() {
  std::erase_if(mails, [](Mail& m) {
    if (!m.child.has_ended()) return false;
    std::error_code ignored;
    std::filesystem::remove(m.message_file, ignored);
    return true;
  });
}

void Evaluator::trace(std::string_view line) const {
  const Evaluator& r = root();
  if (r.log_target == 0) return;
  std::string text(line);
  text += "\r\n";
  platform::port::write(static_cast<platform::port::Handle>(r.log_target), text.data(), text.size());
}

void Evaluator::signal(int event) { root().events_[event == 1 ? 1 : 0].signal(); }

Evaluator::DeviceRead::DeviceRead(Evaluator& e) : root_(e.root()) { root_.waiting_.fetch_add(1); }
Evaluator::DeviceRead::~DeviceRead() { root_.waiting_.fetch_sub(1); }

}  // namespace kerfline::script
