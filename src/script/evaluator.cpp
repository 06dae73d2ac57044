#include "script/evaluator.hpp"

#include <memory>

#include "platform/codepage.hpp"
#include "platform/host_hooks.hpp"
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

std::string_view Evaluator::evaluate_view(std::string_view text, std::int32_t channel, std::string& storage) {
  pass_counter_ = 0;
  escape_flag_.store(0);
  if (parent_ == nullptr) {
    for (WakeEvent& event : events_) event.reset();
  }
  error_ = false;
  channel_ = channel;
  try {
    const NestingGuard nesting(*this);
    if (template_pass_into(text, storage)) return storage;
    return text;
  } catch (const ScriptError& e) {
    last_error_ = e.printable();
  } catch (...) {
    last_error_ = printable_internal_error();
  }
  error_ = true;
  storage = last_error_;
  return storage;
}

std::string Evaluator::evaluate_for_output(std::string_view text) {
  std::string storage;
  const std::string_view result = evaluate_for_output(text, storage);
  return result.data() == storage.data() ? std::move(storage) : std::string(result);
}

std::string_view Evaluator::evaluate_for_output(std::string_view text, std::string& storage) {
  // A pass with nothing to replace leaves the text where it is: passthrough
  // text is copied once, into the caller's block.
  std::string blocks_done;
  if (text.find('{') != std::string_view::npos) {
    blocks_done = conditional_pass(text, false);
    text = blocks_done;
  }
  std::string calls_done;
  const std::string_view result = evaluate_view(text, -1, calls_done);
  if (result.find("%[") != std::string_view::npos) {
    storage = arithmetic_pass(result, 0);
  } else if (result.data() == calls_done.data()) {
    storage = std::move(calls_done);
  } else if (result.data() == blocks_done.data()) {
    storage = std::move(blocks_done);
  } else {
    return result;
  }
  return storage;
}

std::optional<std::string> Evaluator::evaluate_device_output(std::string_view text) {
  std::string blocks_done;
  if (text.find('{') != std::string_view::npos) {
    blocks_done = conditional_pass(text, false);
    text = blocks_done;
  }
  std::string result = evaluate(text, -1);
  if (error_ && show_error_box_) {
    const int answer = platform::host::message_box(last_error_, "Cutter Script Error:", KERFLINE_MB_OKCANCEL);
    if (answer == KERFLINE_IDCANCEL) show_error_box_ = false;
  }
  if (error_ || escaped()) return std::nullopt;
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
  return escape_flag_.load() != 0 || (parent_ != nullptr && parent_->escaped());
}

WaitResult Evaluator::wait(std::uint32_t ms, int event) {
  if (escaped()) return WaitResult::kEscaped;
  WakeEvent& target = root().events_[event == 1 ? 1 : 0];
  const bool woken = target.wait_for(std::chrono::milliseconds(ms), [this] { return escaped(); });
  if (escaped()) return WaitResult::kEscaped;
  return woken ? WaitResult::kSignalled : WaitResult::kTimedOut;
}

void Evaluator::signal(int event) { root().events_[event == 1 ? 1 : 0].signal(); }

Evaluator::DeviceRead::DeviceRead(Evaluator& e) : root_(e.root()) { root_.waiting_.fetch_add(1); }
Evaluator::DeviceRead::~DeviceRead() { root_.waiting_.fetch_sub(1); }

}  // namespace kerfline::script
