// A stand-in for the scanner application's plug-in that records what it was
// called with. FAKE_PROBE_FULL builds every entry, else only ProbeDoCommand
// and ProbeExit; FAKE_PROBE_POSITIONS is the count it reports.
#include <cstdint>
#include <string>

#define FAKE_EXPORT extern "C" __attribute__((visibility("default")))
using I32 = std::int32_t;

namespace {
std::string g_log;
I32 g_positions = FAKE_PROBE_POSITIONS;
I32 g_filled = FAKE_PROBE_POSITIONS;

void record(const char* name, long long a = 0, long long b = 0, long long c = 0) {
  g_log +=
      std::string(name) + "(" + std::to_string(a) + "," + std::to_string(b) + "," + std::to_string(c) + ");";
}
}  // namespace

FAKE_EXPORT const char* FakeProbeLog() { return g_log.c_str(); }
FAKE_EXPORT void FakeProbeReset(I32 positions, I32 filled) {
  g_log.clear();
  g_positions = positions;
  g_filled = filled;
}

// clang-format off
FAKE_EXPORT I32 ProbeDoCommand(I32 a, I32 b, I32 c) { record("ProbeDoCommand", a, b, c); return a + b + c; }
FAKE_EXPORT I32 ProbeExit() { record("ProbeExit"); return 0; }
#ifdef FAKE_PROBE_FULL
struct Position { double x, y; };
static I32 deref(void* p) { return p != nullptr ? *static_cast<I32*>(p) : -1; }
FAKE_EXPORT I32 ProbeInitDigitizer(I32 v) { record("ProbeInitDigitizer", v); return v + 100; }
FAKE_EXPORT I32 ProbeInit(void* p) { record("ProbeInit", deref(p)); return 7; }
FAKE_EXPORT I32 ProbeFreeDigitizer() { record("ProbeFreeDigitizer"); return 5; }
FAKE_EXPORT I32 ProbeRead(void* p) { record("ProbeRead", deref(p)); return 9; }
FAKE_EXPORT I32 Process() { record("Process"); return 11; }
FAKE_EXPORT I32 HandleUI(void* window, I32 a, I32 b, I32 c) {
  record("HandleUI", reinterpret_cast<std::intptr_t>(window), a, b);
  return a * b * c;
}
FAKE_EXPORT I32 ProbeGetDigitizerPos(I32 count, Position* buffer) {
  record("ProbeGetDigitizerPos", count, buffer != nullptr);
  if (count == 0) return g_positions;
  for (I32 i = 0; i < count; ++i) buffer[i] = Position{i + 0.5, -i * 2.0};
  return g_filled;
}
#endif
// clang-format on
