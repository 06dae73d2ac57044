// The texts that describe a mark set: the debugging dump and the HPGL trace.
#pragma once

#include <cstdint>
#include <string>

#include "kerfline/kerfline.h"

namespace kerfline::registration {

// The debugging dump of a set (job by job, measured marks as "Act:",
// designed marks as "Org:", one index counting across both halves).
std::string format_trace(const PROBEDATA& set);

// The HPGL that the trace file receives for a set in the given mode: every
// job starts the plotter afresh, its marks are circles of radius 100 plotter
// units. mode != 0 draws both halves (pens 6 and 8); mode 0 only the measured
// marks with a pen chosen by each mark's flag.
std::string format_plot(const PROBEDATA& set, std::int32_t mode);

}  // namespace kerfline::registration
