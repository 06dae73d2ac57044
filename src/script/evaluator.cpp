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
  pass_counter_ = 0;
  escape_flag_.store(0);
  if (parent_ == nullptr) {
    for (WakeEvent& event : events_) event.reset();
  }
  error_ = false;
  channel_ = channel;
  try {
    const NestingGuard nesting(*this);
    return template_pass(text);
  } catch (const ScriptError& e) {
    last_error_ = e.printable();
  } catch (...) {
    last_error_ = printable_internal_error();
  }
  error_ = true;
  return last_error_;
}

std::string Evaluator::evaluate_for_output(std::string_view text) {
  std::string result = conditional_pass(text, false);
  result = evaluate(result, -1);
  if (!result.empty()) result = arithmetic_pass(result, 0);
  return result;
}

std::optional<std::string> Evaluator::evaluate_device_output(std::string_view text) {
  std::string result = conditional_pass(text, false);
  result = evaluate(result, -1);
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
