#include <atomic>

#include "platform/stop_signal.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

namespace {

std::atomic<bool> g_stop{false};

BOOL WINAPI on_console_event(DWORD) {
  g_stop.store(true);
  return TRUE;
}

}  // namespace

void install_stop_signals() { ::SetConsoleCtrlHandler(on_console_event, TRUE); }

bool stop_requested() { return g_stop.load(); }

}  // namespace kerfline::platform
