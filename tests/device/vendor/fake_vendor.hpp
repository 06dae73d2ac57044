// What the fake vendor libraries share: behaviour from the environment,
// set by the test that loads them.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace fake {

inline int env_int(const char* name) {
  const char* v = std::getenv(name);
  return v != nullptr ? std::atoi(v) : 0;
}

inline std::string env_text(const char* name) {
  const char* v = std::getenv(name);
  return v != nullptr ? v : "";
}

// Appends what the library was sent to FAKE_VENDOR_LOG, one line a call.
inline void log_call(const std::string& line) {
  const std::string path = env_text("FAKE_VENDOR_LOG");
  if (path.empty()) return;
  if (std::FILE* f = std::fopen(path.c_str(), "ab")) {
    std::fprintf(f, "%s\n", line.c_str());
    std::fclose(f);
  }
}

}  // namespace fake

#ifdef _WIN32
#  define FAKE_EXPORT extern "C" __declspec(dllexport)
#else
#  define FAKE_EXPORT extern "C" __attribute__((visibility("default")))
#endif
