// The evaluation exports: one evaluator object per process, created by the
// first InitEval and kept until the library is unloaded.
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "kerfline/kerfline.h"
#include "script/process_state.hpp"

namespace {

using kerfline::script::Evaluator;
using kerfline::script::process_eval;

char* new_block(std::string_view text) {
  auto* block = static_cast<char*>(std::malloc(text.size() + 1));
  if (block == nullptr) return nullptr;
  std::memcpy(block, text.data(), text.size());
  block[text.size()] = '\0';
  return block;
}

void release_block(char* block) { std::free(block); }

int32_t init_eval(uint32_t mode, uint32_t log_target, void* owner, bool async) {
  try {
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
  } catch (...) {
    // Never fails: an evaluator that could not be built leaves the others no-ops.
  }
  return 1;
}

}  // namespace

extern "C" {

KERFLINE_API int32_t InitEval(uint32_t mode, uint32_t logTarget, void* owner) {
  return init_eval(mode, logTarget, owner, false);
}

KERFLINE_API int32_t InitEvalAsync(uint32_t mode, uint32_t logTarget, void* owner) {
  return init_eval(mode, logTarget, owner, true);
}

KERFLINE_API int32_t IsAsyncIO(void) {
  try {
    return kerfline::script::is_async_io() ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

KERFLINE_API int32_t SetEvalLogFile(uint32_t logTarget) {
  if (Evaluator* e = process_eval().evaluator(); e != nullptr && logTarget != 0) e->log_target = logTarget;
  return 1;
}

KERFLINE_API int32_t EscapeEval(void) {
  if (Evaluator* e = process_eval().evaluator()) e->escape();
  return 1;
}

KERFLINE_API int32_t EnableEval(void) {
  if (Evaluator* e = process_eval().evaluator()) e->enable();
  return 1;
}

KERFLINE_API char* DoEval(const char* text) {
  auto& state = process_eval();
  Evaluator* e = state.evaluator();
  if (text == nullptr) {
    const bool busy = (e != nullptr && e->device_read_waiting()) || state.busy.load() != 0;
    return busy ? reinterpret_cast<char*>(static_cast<uintptr_t>(1)) : nullptr;
  }
  if (e == nullptr) return nullptr;
  state.busy.store(1);
  e->enable();
  char* block = nullptr;
  try {
    std::string storage;
    const std::string_view result = e->evaluate_for_output(text, storage);
    // Script errors are part of the text; only an error outside the passes
    // (the error flag) gives no result.
    if (!e->error() && !result.empty()) block = new_block(result);
  } catch (...) {
    block = nullptr;
  }
  e->enable();
  state.busy.store(0);
  return block;
}

KERFLINE_API char* GetEvalVar(const char* name) {
  Evaluator* e = process_eval().evaluator();
  if (e == nullptr || name == nullptr) return nullptr;
  try {
    const std::string value = e->lookup_or_name(name);
    return value.empty() ? nullptr : new_block(value);
  } catch (...) {
    return nullptr;
  }
}

KERFLINE_API void FreeEval(char* block) { release_block(block); }

KERFLINE_API void FreeEvalVar(char* block) { release_block(block); }

KERFLINE_API int32_t ExitEval(void) { return 1; }

KERFLINE_API int32_t SetEvalVar(const char* name, const char* value, uint32_t mask) {
  if (name == nullptr || *name == '\0') return -2;
  try {
    auto& shared = process_eval().shared_variables();
    if (value == nullptr) {
      shared.remove(name);
    } else {
      shared.set(name, value, mask);
    }
    return 1;
  } catch (...) {
    return -3;
  }
}

KERFLINE_API int32_t AddEvalUserFunc(const char* name, const char* params, const char* body) {
  if (name == nullptr || *name == '\0' || body == nullptr) return -2;
  try {
    return process_eval().add_user_function(name, params != nullptr ? params : "", body) ? 1 : 0;
  } catch (...) {
    return -3;
  }
}

}  // extern "C"
