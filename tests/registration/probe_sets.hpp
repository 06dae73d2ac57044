// Building mark sets for the tests. The records are packed: read their
// doubles by value (+job.dRotation), never bind references to them.
#pragma once

#include <initializer_list>

#include "kerfline/kerfline.h"

namespace kerfline::test {

inline PROBEPOS mark(double x, double y, int32_t flag = 0, double size = 5.0) {
  PROBEPOS m{};
  m.x = x;
  m.y = y;
  m.dSize = size;
  m.nFlag = flag;
  return m;
}

// A job whose marks were added one by one, as a host builds them.
inline PROBEJOB job_with(std::initializer_list<PROBEPOS> marks, int32_t flags = 0) {
  PROBEJOB job{};
  job.nFlags = flags;
  job.dRotation = 90.0;
  job.dMarkSize = 5.0;
  for (const PROBEPOS& m : marks) ProbeDataAddPos(&job, &m);
  return job;
}

// A set that frees itself (and every job added to it).
struct OwnedSet {
  PROBEDATA set{};
  ~OwnedSet() { ProbeDataFree(&set); }
  void add(const PROBEJOB& job) { ProbeDataAdd(&set, &job); }
  PROBEJOB& job(int i) { return set.pJobs[i]; }
};

}  // namespace kerfline::test
