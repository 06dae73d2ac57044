// Blocks the library hands to hosts that are released through QuickFree (or
// a Free... export) rather than the host's free(): one allocator for all of
// them, so a host's C run-time never has to match ours. Every module hands
// out its blocks through here, so one allocation point serves the library.
#pragma once

#include <cstddef>
#include <string_view>

namespace kerfline::platform {

// A block of n bytes (null when memory is short).
void* library_alloc(std::size_t n);
void library_free(void* block);

// A zero-terminated copy of the text from library_alloc (null when short).
char* library_strdup(std::string_view text);

}  // namespace kerfline::platform
