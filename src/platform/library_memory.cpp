#include "platform/library_memory.hpp"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace kerfline::platform {

namespace {

std::atomic<long> g_allocations_to_failure{0};

}  // namespace

long fail_nth_allocation(long n) { return g_allocations_to_failure.exchange(n < 0 ? 0 : n); }

bool allocation_fails() {
  long left = g_allocations_to_failure.load(std::memory_order_relaxed);
  while (left > 0) {
    if (g_allocations_to_failure.compare_exchange_weak(left, left - 1)) return left == 1;
  }
  return false;
}

void* library_alloc(std::size_t n) {
  if (allocation_fails()) return nullptr;
  return std::malloc(n == 0 ? 1 : n);
}

void* c_runtime_alloc(std::size_t n) {
  if (allocation_fails()) return nullptr;
  return std::malloc(n == 0 ? 1 : n);
}

void library_free(void* block) { std::free(block); }

char* library_strdup(std::string_view text) {
  auto* copy = static_cast<char*>(library_alloc(text.size() + 1));
  if (copy == nullptr) return nullptr;
  std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

}  // namespace kerfline::platform
