// Reading the host's mark records safely: a count that does not fit its
// array (negative, or an array that is null) means no entries, so no export
// ever reads outside what the host handed over.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kerfline/kerfline.h"

namespace kerfline::registration {

inline std::int32_t job_count(const PROBEDATA& set) {
  return set.pJobs == nullptr || set.nJobCount < 0 ? 0 : set.nJobCount;
}

inline std::int32_t mark_count(const PROBEJOB& job) {
  return job.pMarks == nullptr || job.nMarkCount < 0 ? 0 : job.nMarkCount;
}

// The first half (rounded down) are the measured marks, the rest the designed.
inline std::int32_t measured_count(const PROBEJOB& job) { return mark_count(job) / 2; }

// Grows a C run-time array of `count` elements by one and copies `item` into
// the new last slot. Returns false (array and count unchanged) when the array
// cannot grow.
bool append_element(void*& array, std::int32_t& count, const void* item, std::size_t item_size);

}  // namespace kerfline::registration
