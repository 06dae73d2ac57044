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

// A block from the C run-time's malloc, for the texts a host is documented
// to release with free(); the same failure switch as library_alloc.
void* c_runtime_alloc(std::size_t n);

// Out-of-memory testing: arms the failure of the nth allocation from now
// (1 = the next) made through library_alloc, or through a test program's own
// operator new that asks allocation_fails(); 0 disarms. Returns how many
// allocations were still to go before the armed failure (0: it happened, or
// nothing was armed). One relaxed atomic load per allocation when disarmed.
long fail_nth_allocation(long n);
// Counts one allocation; true when it is the one armed to fail.
bool allocation_fails();

}  // namespace kerfline::platform
