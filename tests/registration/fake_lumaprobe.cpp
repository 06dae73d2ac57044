// A stand-in for the scanner application's plug-in that records what it was
// called with. FAKE_PROBE_FULL builds every entry, else only ProbeDoCommand
// and ProbeExit; FAKE_PROBE_POSITIONS is the count it reports.
#include <cstdint>
#include <cstdio>
#include <string>

#define FAKE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {
std::string g_log;
std::int32_t g_positions = FAKE_PROBE_POSITIONS;
std::int32_t g_filled = FAKE_PROBE_POSITIONS;

void record(const char* name, long long a = 0, long long b = 0, long long c = 0) {
  char line[160];
  std::snprintf(line, sizeof line, "%s(%lld,%lld,%lld);", name, a, b, c);
  g_log += line;
}
}  // namespace

FAKE_EXPORT const char* FakeProbeLog() { return g_log.c_str(); }
FAKE_EXPORT void FakeProbeReset(std::int32_t positions, std::int32_t filled) {
  g_log.clear();
  g_positions = positions;
  g_filled = filled;
}

FAKE_EXPORT std::int32_t ProbeDoCommand(std::int32_t a, std::int32_t b, std::int32_t c) {
  record("ProbeDoCommand", a, b, c);
  return a + b + c;
}
FAKE_EXPORT std::int32_t ProbeExit() {
  record("ProbeExit");
  return 0;
}

#ifdef FAKE_PROBE_FULL
struct Position {
  double x, y;
};

FAKE_EXPORT std::int32_t ProbeInitDigitizer(std::int32_t v) {
  record("ProbeInitDigitizer", v);
  return v + 100;
}
FAKE_EXPORT std::int32_t ProbeInit(void* p) {
  record("ProbeInit", p != nullptr ? *static_cast<std::int32_t*>(p) : -1);
  return 7;
}
FAKE_EXPORT std::int32_t ProbeGetDigitizerPos(std::int32_t count, Position* buffer) {
  record("ProbeGetDigitizerPos", count, buffer != nullptr);
  if (count == 0) return g_positions;
  for (std::int32_t i = 0; i < count; ++i) buffer[i] = Position{i + 0.5, -i * 2.0};
  return g_filled;
}
FAKE_EXPORT std::int32_t ProbeFreeDigitizer() {
  record("ProbeFreeDigitizer");
  return 5;
}
FAKE_EXPORT std::int32_t ProbeRead(void* p) {
  record("ProbeRead", p != nullptr ? *static_cast<std::int32_t*>(p) : -1);
  return 9;
}
FAKE_EXPORT std::int32_t Process() {
  record("Process");
  return 11;
}
FAKE_EXPORT std::int32_t HandleUI(void* window, std::int32_t a, std::int32_t b, std::int32_t c) {
  record("HandleUI", reinterpret_cast<std::intptr_t>(window), a, b);
  return a * b * c;
}
#endif
