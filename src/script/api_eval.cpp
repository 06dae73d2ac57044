// The evaluation exports: one evaluator object per process, created by the
// first InitEval and kept until the library is unloaded.
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/library_memory.hpp"
#include "script/process_state.hpp"

namespace {

using kerfline::script::Evaluator;
using kerfline::script::process_eval;

char* new_block(std::string_view text) {
  auto* block = static_cast<char*>(kerfline::platform::c_runtime_alloc(text.size() + 1));
  if (block == nullptr) return nullptr;
  std::memcpy(block, text.data(), text.size());
  block[text.size()] = '\0';
  return block;
}

void release_block(char* block) { std::free(block); }

int32_t init_eval(uint32_t mode, uint32_t log_target, void* owner, bool async) noexcept {
  // Never fails: an evaluator that could not be built leaves the others no-ops.
  kerfline::platform::guarded_void([mode, log_target, owner, async] {
    auto& state = process_eval();
    Evaluator& evaluator = state.ensure_evaluator();
    ++state.init_count;
    state.latest_mode = mode;
    if (mode != 0) evaluator.mode = mode;
    if (log_target != 0) evaluator.log_target = log_target;
    evaluator.owner = owner;
    evaluator.enable();
    // A new session: sockets of the previous one are closed.
    evaluator.reset_session();
    if (async || kerfline::script::is_async_io()) evaluator.async_io.store(1);
  });
  return 1;
}

}  // namespace

extern "C" {

KERFLINE_API int32_t InitEval(uint32_t mode, uint32_t logTarget, void* owner) noexcept {
  return init_eval(mode, logTarget, owner, false);
}

KERFLINE_API int32_t InitEvalAsync(uint32_t mode, uint32_t logTarget, void* owner) noexcept {
  return init_eval(mode, logTarget, owner, true);
}

KERFLINE_API int32_t IsAsyncIO(void) noexcept {
  return kerfline::platform::guarded_as(0, [] { return kerfline::script::is_async_io() ? 1 : 0; });
}

KERFLINE_API int32_t SetEvalLogFile(uint32_t logTarget) noexcept {
  return kerfline::platform::guarded_as(1, [logTarget] {
    if (Evaluator* e = process_eval().evaluator(); e != nullptr && logTarget != 0) e->log_target = logTarget;
    return 1;
  });
}

KERFLINE_API int32_t EscapeEval(void) noexcept {
  return kerfline::platform::guarded_as(1, [] {
    if (Evaluator* e = process_eval().evaluator()) e->escape();
    return 1;
  });
}

KERFLINE_API int32_t EnableEval(void) noexcept {
  return kerfline::platform::guarded_as(1, [] {
    if (Evaluator* e = process_eval().evaluator()) e->enable();
    return 1;
  });
}

KERFLINE_API char* DoEval(const char* text) noexcept {
  auto& state = process_eval();
  Evaluator* e = state.evaluator();
  if (text == nullptr) {
    const bool busy = (e != nullptr && e->device_read_waiting()) || state.busy.load() != 0;
    // The busy answer is the documented marker 1, not an address.
    return busy ? reinterpret_cast<char*>(static_cast<uintptr_t>(1)) : nullptr;
  }
  if (e == nullptr) return nullptr;
  state.busy.store(1);
  e->enable();
  char* block = nullptr;
  kerfline::platform::guarded_void([e, text, &block] {
    std::string storage;
    const std::string_view result = e->evaluate_for_output(text, storage);
    // Script errors are part of the text; only an error outside the passes
    // (the error flag) gives no result.
    if (!e->error() && !result.empty()) block = new_block(result);
  });
  e->enable();
  state.busy.store(0);
  return block;
}

KERFLINE_API char* GetEvalVar(const char* name) noexcept {
  Evaluator* e = process_eval().evaluator();
  if (e == nullptr || name == nullptr) return nullptr;
  return kerfline::platform::guarded_pointer([e, name] {
    const std::string value = e->lookup_or_name(name);
    return value.empty() ? nullptr : new_block(value);
  });
}

KERFLINE_API void FreeEval(char* block) noexcept { release_block(block); }

KERFLINE_API void FreeEvalVar(char* block) noexcept { release_block(block); }

KERFLINE_API int32_t ExitEval(void) noexcept { return 1; }

KERFLINE_API int32_t SetEvalVar(const char* name, const char* value, uint32_t mask) noexcept {
  if (name == nullptr || *name == '\0') return KERFLINE_BAD_ARGUMENT;
  return kerfline::platform::guarded(KERFLINE_OUT_OF_MEMORY, [name, value, mask] {
    auto& shared = process_eval().shared_variables();
    if (value == nullptr) {
      shared.remove(name);
    } else {
      shared.set(name, value, mask);
    }
    return KERFLINE_SUCCESS;
  });
}

KERFLINE_API int32_t AddEvalUserFunc(const char* name, const char* params, const char* body) noexcept {
  if (name == nullptr || *name == '\0' || body == nullptr) return KERFLINE_BAD_ARGUMENT;
  return kerfline::platform::guarded(KERFLINE_OUT_OF_MEMORY, [name, params, body] {
    return process_eval().add_user_function(name, params != nullptr ? params : "", body) ? 1 : 0;
  });
}

}  // extern "C"
