// Mark data sets: building, reading and moving the marks of printed jobs.
#include <cstdlib>
#include <cstring>
#include <limits>

#include "kerfline/kerfline.h"
#include "registration/mark_arrays.hpp"

namespace kerfline::registration {

bool append_element(void*& array, std::int32_t& count, const void* item, std::size_t item_size) {
  const std::int32_t have = array == nullptr || count < 0 ? 0 : count;
  if (have == std::numeric_limits<std::int32_t>::max()) return false;
  const auto wanted = static_cast<std::size_t>(have) + 1;
  if (wanted > std::numeric_limits<std::size_t>::max() / item_size) return false;
  void* grown = std::realloc(array, wanted * item_size);
  if (grown == nullptr) return false;
  std::memcpy(static_cast<char*>(grown) + static_cast<std::size_t>(have) * item_size, item, item_size);
  array = grown;
  count = have + 1;
  return true;
}

}  // namespace kerfline::registration

namespace kr = kerfline::registration;

namespace {

// Mark-by-mark changes over [first, last) of a job's marks.
template <typename Change>
void for_marks(PROBEJOB& job, std::int32_t first, std::int32_t last, Change change) {
  for (std::int32_t i = first; i < last; ++i) change(job.pMarks[i]);
}

}  // namespace

extern "C" {

KERFLINE_API int32_t ProbeDataInit(PROBEDATA* set) noexcept {
  if (set == nullptr) return KERFLINE_BAD_ARGUMENT;
  std::memset(set, 0, sizeof(*set));
  return 1;
}

KERFLINE_API int32_t ProbeDataFree(PROBEDATA* set) noexcept {
  if (set == nullptr) return KERFLINE_BAD_ARGUMENT;
  const std::int32_t jobs = kr::job_count(*set);
  for (std::int32_t i = 0; i < jobs; ++i) {
    std::free(set->pJobs[i].pMarks);
    set->pJobs[i].pMarks = nullptr;
    set->pJobs[i].nMarkCount = 0;
  }
  std::free(set->pJobs);
  set->pJobs = nullptr;
  set->nJobCount = 0;
  return 1;
}

KERFLINE_API void ProbeDataAdd(PROBEDATA* set, const PROBEJOB* job) noexcept {
  if (set == nullptr || job == nullptr) return;
  void* array = set->pJobs;
  if (kr::append_element(array, set->nJobCount, job, sizeof(PROBEJOB))) {
    set->pJobs = static_cast<PROBEJOB*>(array);
  }
}

KERFLINE_API int32_t ProbeDataGetAt(const PROBEDATA* set, int32_t index, PROBEJOB* job) noexcept {
  if (set == nullptr || job == nullptr) return KERFLINE_BAD_ARGUMENT;
  if (index < 0 || index >= kr::job_count(*set)) return 0;
  std::memcpy(job, &set->pJobs[index], sizeof(PROBEJOB));
  return 1;
}

KERFLINE_API int32_t ProbeDataCopy(PROBEDATA* dst, const PROBEDATA* src) noexcept {
  if (dst == nullptr || src == nullptr) return KERFLINE_BAD_ARGUMENT;
  const std::uint32_t flags = src->dwFlags;  // dst may be src
  ProbeDataInit(dst);
  dst->dwFlags = flags;
  // Jobs are copied only while the index is below dst's count, which is now
  // 0: hosts rely on getting an empty set that carries the flags.
  return 1;
}

KERFLINE_API void ProbeDataAddPos(PROBEJOB* job, const PROBEPOS* pos) noexcept {
  if (job == nullptr || pos == nullptr) return;
  void* array = job->pMarks;
  if (kr::append_element(array, job->nMarkCount, pos, sizeof(PROBEPOS))) {
    job->pMarks = static_cast<PROBEPOS*>(array);
  }
}

KERFLINE_API int32_t ProbeDataGetPosAt(const PROBEJOB* job, int32_t index, PROBEPOS* pos) noexcept {
  if (job == nullptr || pos == nullptr) return KERFLINE_BAD_ARGUMENT;
  if (index < 0 || index >= kr::mark_count(*job)) return 0;
  std::memcpy(pos, &job->pMarks[index], sizeof(PROBEPOS));
  return 1;
}

KERFLINE_API int32_t ProbeDataSetPosAt(PROBEJOB* job, int32_t index, const PROBEPOS* pos) noexcept {
  if (job == nullptr || pos == nullptr) return KERFLINE_BAD_ARGUMENT;
  if (index < 0 || index >= kr::mark_count(*job)) return 0;
  std::memcpy(&job->pMarks[index], pos, sizeof(PROBEPOS));
  return 1;
}

KERFLINE_API int32_t ProbeDataXeneTecGetPosAt(const PROBEJOB* job, int32_t index, PROBEPOS* pos,
                                              double height) noexcept {
  const int32_t result = ProbeDataGetPosAt(job, index, pos);
  if (result == 1) pos->y = height - pos->y;
  return result;
}

KERFLINE_API int32_t ProbeDataTransformXene(PROBEDATA* set, double height) noexcept {
  if (set == nullptr) return KERFLINE_BAD_ARGUMENT;
  const std::int32_t jobs = kr::job_count(*set);
  for (std::int32_t j = 0; j < jobs; ++j) {
    PROBEJOB& job = set->pJobs[j];
    for_marks(job, 0, kr::mark_count(job), [height](PROBEPOS& m) { m.y = height - m.y; });
  }
  return 1;
}

KERFLINE_API int32_t ProbeDataOffsetJob(PROBEJOB* job, double dx, double dy) noexcept {
  if (job == nullptr) return KERFLINE_BAD_ARGUMENT;
  for_marks(*job, 0, kr::mark_count(*job), [dx, dy](PROBEPOS& m) {
    m.x += dx;
    m.y += dy;
  });
  return 1;
}

KERFLINE_API int32_t ProbeDataOffsetJobMarks(PROBEJOB* job, double dx, double dy) noexcept {
  if (job == nullptr) return KERFLINE_BAD_ARGUMENT;
  for_marks(*job, 0, kr::measured_count(*job), [dx, dy](PROBEPOS& m) {
    m.x += dx;
    m.y += dy;
  });
  return 1;
}

KERFLINE_API int32_t GetCellFromArray(int32_t index, int32_t rows, int32_t columns, int32_t* row,
                                      int32_t* column) noexcept {
  if (row == nullptr || column == nullptr) return KERFLINE_BAD_ARGUMENT;
  // In 64 bits: rows * columns must not wrap into a small or negative bound.
  const std::int64_t cells = static_cast<std::int64_t>(rows) * columns;
  if (index < 0 || index >= cells) return -1;
  *row = index / columns;  // columns != 0: cells would be 0 otherwise
  *column = index % columns;
  return 1;
}

}  // extern "C"
