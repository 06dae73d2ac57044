#include "registration/trace_text.hpp"

#include "registration/hpgl_text.hpp"
#include "registration/mark_arrays.hpp"

namespace kerfline::registration {

namespace {

constexpr double kTraceRadius = 100.0;  // plotter units, whatever the mark's size

void append_mark_lines(std::string& out, const char* tag, const char* y_sep, std::int32_t index,
                       const PROBEPOS& m) {
  out += tag;
  out += " x(";
  append_int(out, index);
  out += "): ";
  append_fixed(out, m.x);
  out += '\n';
  out += tag;
  out += " y(";
  append_int(out, index);
  out += ')';
  out += y_sep;
  append_fixed(out, m.y);
  out += " Size: ";
  append_fixed(out, m.dSize);
  out += " Flag: ";
  append_int(out, m.nFlag);
  out += '\n';
}

// The pen a measured mark is drawn with in mode 0, by its flag.
const char* pen_for_flag(std::int32_t flag) {
  switch (flag) {
    case 8:
      return "PU;\r\nSP7;";
    case 16:
      return "PU;\r\nSP9;";
    case 4:
      return "PU;\r\nSP5;";
    case 1:
      return "PU;\r\nSP10;";
    default:
      return "";
  }
}

void append_trace_circle(std::string& out, const PROBEPOS& m) {
  const double x = m.x * kPlotterUnitsPerMark;
  const double y = m.y * kPlotterUnitsPerMark;
  append_circle(out, x + kTraceRadius, x, y);
}

}  // namespace

std::string format_trace(const PROBEDATA& set) {
  std::string out = "JobCount: ";
  append_int(out, set.nJobCount);
  out += "\nFlags:";
  append_int(out, static_cast<std::int32_t>(set.dwFlags));
  out += '\n';
  const std::int32_t jobs = job_count(set);
  for (std::int32_t j = 0; j < jobs; ++j) {
    const PROBEJOB& job = set.pJobs[j];
    out += "Eintrag: ";
    append_int(out, j);
    out += "\nMarkCount: ";
    append_int(out, job.nMarkCount);
    out += "\nMarkSize: ";
    append_fixed(out, job.dMarkSize);
    out += "\nRotation: ";
    append_fixed(out, job.dRotation);
    out += "\nFlags: ";
    append_int(out, job.nFlags);
    out += '\n';
    const std::int32_t count = mark_count(job);
    const std::int32_t measured = measured_count(job);
    for (std::int32_t i = 0; i < count; ++i) {
      if (i < measured) {
        append_mark_lines(out, "Act:", ": ", i, job.pMarks[i]);
      } else {
        append_mark_lines(out, "Org:", ":", i, job.pMarks[i]);
      }
    }
  }
  return out;
}

std::string format_plot(const PROBEDATA& set, std::int32_t mode) {
  std::string out;
  const std::int32_t jobs = job_count(set);
  for (std::int32_t j = 0; j < jobs; ++j) {
    const PROBEJOB& job = set.pJobs[j];
    const std::int32_t count = mark_count(job);
    const std::int32_t measured = measured_count(job);
    out += mode != 0 ? "IN;\r\nPA;\r\nSP6;" : "IN;\r\nPA;\r\nSP7;";
    for (std::int32_t i = 0; i < measured; ++i) {
      if (mode == 0) out += pen_for_flag(job.pMarks[i].nFlag);
      append_trace_circle(out, job.pMarks[i]);
    }
    if (mode != 0) {
      out += "PU;\r\nSP8;";
      for (std::int32_t i = measured; i < count; ++i) append_trace_circle(out, job.pMarks[i]);
    }
  }
  return out;
}

}  // namespace kerfline::registration
