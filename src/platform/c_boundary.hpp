// The one exception boundary of the C exports: every export runs its body
// through guarded() so that nothing thrown ever reaches the host, and out of
// memory is told apart from the export's own failure.
#pragma once

#include <cstdint>
#include <new>
#include <type_traits>

#include "kerfline/kerfline.h"

namespace kerfline::platform {

// The body's result; KERFLINE_OUT_OF_MEMORY when it runs out of memory;
// `failure` (the export's documented failure result) for any other
// exception.
template <typename Body>
std::int32_t guarded(std::int32_t failure, Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return KERFLINE_OUT_OF_MEMORY;
  } catch (...) {
    return failure;
  }
}

// For exports whose documentation has no out-of-memory result (or whose
// result is not a result code): `failure` for every exception.
template <typename Result, typename Body>
Result guarded_as(Result failure, Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return failure;
  }
}

// For exports with nothing to report: an exception ends the body quietly.
template <typename Body>
void guarded_void(Body&& body) noexcept {
  try {
    body();
  } catch (...) {
  }
}

// For exports that hand out a pointer: null for any exception.
template <typename Body>
auto guarded_pointer(Body&& body) noexcept -> decltype(body()) {
  static_assert(std::is_pointer_v<decltype(body())>);
  try {
    return body();
  } catch (...) {
    return nullptr;
  }
}

}  // namespace kerfline::platform
