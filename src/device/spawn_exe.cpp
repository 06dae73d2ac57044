// Starting a helper program and waiting for it without freezing the host.
#include <atomic>
#include <cstdint>

#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/host_hooks.hpp"
#include "platform/process.hpp"

namespace kerfline::device {
namespace {

// How often the host gets to pump its messages during a wait.
constexpr std::uint32_t kPumpIntervalMs = 20;

// A cancel request ends every wait that started before it: each wait
// remembers the count it saw and stops when the count moves on.
std::atomic<std::uint64_t> g_cancel_requests{0};
std::atomic<std::int32_t> g_waits_running{0};
// The modal wait's state is library-wide on Windows; one at a time.
std::atomic<bool> g_modal_running{false};

class RunningWait {
 public:
  RunningWait() { g_waits_running.fetch_add(1); }
  ~RunningWait() { g_waits_running.fetch_sub(1); }
  RunningWait(const RunningWait&) = delete;
  RunningWait& operator=(const RunningWait&) = delete;

  [[nodiscard]] bool cancelled() const { return g_cancel_requests.load() != seen_; }

 private:
  std::uint64_t seen_ = g_cancel_requests.load();
};

class ModalSlot {
 public:
  explicit ModalSlot(bool wanted) {
    bool expected = false;
    held_ = wanted && g_modal_running.compare_exchange_strong(expected, true);
  }
  ~ModalSlot() {
    if (held_) g_modal_running.store(false);
  }
  ModalSlot(const ModalSlot&) = delete;
  ModalSlot& operator=(const ModalSlot&) = delete;
  [[nodiscard]] bool held() const { return held_; }

 private:
  bool held_ = false;
};

void wait_polling(platform::ChildProcess& child, const RunningWait& wait) {
  while (!child.wait_for(kPumpIntervalMs)) {
    platform::host::pump_messages();
    if (wait.cancelled()) {
      child.terminate();
      return;
    }
  }
}

std::int32_t spawn_and_wait(const char* command_line, std::int32_t show_command, bool modal) {
  if (command_line == nullptr) return 0;
  const ModalSlot slot(modal);
  if (modal && !slot.held()) return 0;  // another modal wait is running
  const RunningWait wait;
  auto child = platform::ChildProcess::spawn(command_line, show_command);
  if (!child) return 0;

  const platform::host::WaitCursor cursor;
  if (modal) {
    child->wait_with_watcher([] { platform::host::pump_messages(); }, [&wait] { return wait.cancelled(); },
                             kPumpIntervalMs);
  } else {
    wait_polling(*child, wait);
  }
  return 1;
}

}  // namespace
}  // namespace kerfline::device

extern "C" {

KERFLINE_API int32_t SpawnExe(char* commandLine, int32_t showCommand, void* mode) noexcept {
  // Only running out of memory before the child started can throw.
  return kerfline::platform::guarded_as(0, [commandLine, showCommand, mode] {
    return kerfline::device::spawn_and_wait(commandLine, showCommand, mode == nullptr);
  });
}

KERFLINE_API int32_t KerflineCancelSpawnExe(void) noexcept {
  const int32_t running = kerfline::device::g_waits_running.load();
  kerfline::device::g_cancel_requests.fetch_add(1);
  return running;
}

}  // extern "C"
