#include "platform/library_memory.hpp"

#include <cstdlib>
#include <cstring>

namespace kerfline::platform {

void* library_alloc(std::size_t n) { return std::malloc(n == 0 ? 1 : n); }

void library_free(void* block) { std::free(block); }

char* library_strdup(std::string_view text) {
  auto* copy = static_cast<char*>(library_alloc(text.size() + 1));
  if (copy == nullptr) return nullptr;
  std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

}  // namespace kerfline::platform
