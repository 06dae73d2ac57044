// Number and circle formatting for the HPGL trace, independent of the
// process locale (the point is always the decimal separator).
#pragma once

#include <cstdint>
#include <string>

namespace kerfline::registration {

// Mark units to plotter units.
inline constexpr double kPlotterUnitsPerMark = 0.4;

// Appends v as printf's "%f" would in the C locale (six decimals).
void append_fixed(std::string& out, double v);

// Appends v as printf's "%d" would.
void append_int(std::string& out, std::int64_t v);

// Appends "PU <pen_x>,<y>;\r\nAA <x>,<y>,360;\r\n": the pen goes up onto the
// circle at (pen_x, y), then draws a full arc around (x, y). Plotter units.
void append_circle(std::string& out, double pen_x, double x, double y);

}  // namespace kerfline::registration
