#include <signal.h>

#include <atomic>

#include "platform/stop_signal.hpp"

namespace kerfline::platform {

namespace {

std::atomic<bool> g_stop{false};

extern "C" void on_stop_signal(int) { g_stop.store(true); }

}  // namespace

void install_stop_signals() {
  struct sigaction sa {};
  sa.sa_handler = on_stop_signal;
  sigemptyset(&sa.sa_mask);
  sa.sa_flags = 0;  // no SA_RESTART: a poll in progress returns at once
  ::sigaction(SIGINT, &sa, nullptr);
  ::sigaction(SIGTERM, &sa, nullptr);
  ::signal(SIGPIPE, SIG_IGN);
}

bool stop_requested() { return g_stop.load(); }

}  // namespace kerfline::platform
