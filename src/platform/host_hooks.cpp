#include "platform/host_hooks.hpp"

#include <cstddef>
#include <cstring>
#include <mutex>

namespace kerfline::platform::host {
namespace {

struct Installed {
  std::mutex mutex;
  KERFLINE_HOST_HOOKS hooks{};
};

Installed& installed() {
  static Installed state;
  return state;
}

// A copy taken under the lock, so a hook replaced from another thread is
// never half-read.
KERFLINE_HOST_HOOKS snapshot() {
  Installed& state = installed();
  std::lock_guard lock(state.mutex);
  return state.hooks;
}

}  // namespace

bool install(const KERFLINE_HOST_HOOKS* hooks) {
  KERFLINE_HOST_HOOKS copy{};
  if (hooks != nullptr) {
    constexpr std::size_t kMinimum = offsetof(KERFLINE_HOST_HOOKS, pContext) + sizeof(void*);
    if (hooks->cbSize < kMinimum) return false;
    const std::size_t n = hooks->cbSize < sizeof(copy) ? hooks->cbSize : sizeof(copy);
    std::memcpy(&copy, hooks, n);
    copy.cbSize = sizeof(copy);
  }
  Installed& state = installed();
  std::lock_guard lock(state.mutex);
  state.hooks = copy;
  return true;
}

int message_box(const std::string& text, const std::string& caption, std::uint32_t type) {
  const KERFLINE_HOST_HOOKS h = snapshot();
  if (h.pfnMessageBox != nullptr) return h.pfnMessageBox(h.pContext, text.c_str(), caption.c_str(), type);
  return defaults::message_box(text, caption, type);
}

bool is_key_down(int virtual_key) {
  const KERFLINE_HOST_HOOKS h = snapshot();
  if (h.pfnIsKeyDown != nullptr) return h.pfnIsKeyDown(h.pContext, virtual_key) != 0;
  return defaults::is_key_down(virtual_key);
}

bool diagnostics_requested() { return is_key_down(KERFLINE_VK_CONTROL) && is_key_down(KERFLINE_VK_SHIFT); }

void pump_messages() {
  const KERFLINE_HOST_HOOKS h = snapshot();
  if (h.pfnPumpMessages != nullptr) {
    h.pfnPumpMessages(h.pContext);
  } else {
    defaults::pump_messages();
  }
}

std::intptr_t broadcast(const std::string& message, std::uintptr_t w_param, std::intptr_t l_param,
                        bool wait_for_answer) {
  const KERFLINE_HOST_HOOKS h = snapshot();
  if (h.pfnBroadcast != nullptr) {
    return h.pfnBroadcast(h.pContext, message.c_str(), w_param, l_param, wait_for_answer ? 1 : 0);
  }
  return defaults::broadcast(message, w_param, l_param, wait_for_answer);
}

void set_wait_cursor(bool on) {
  const KERFLINE_HOST_HOOKS h = snapshot();
  if (h.pfnSetWaitCursor != nullptr) {
    h.pfnSetWaitCursor(h.pContext, on ? 1 : 0);
  } else {
    defaults::set_wait_cursor(on);
  }
}

}  // namespace kerfline::platform::host

namespace kerfline::platform::host {

std::optional<std::string> prompt(const std::string& caption, std::size_t max_length) {
  const KERFLINE_HOST_HOOKS h = snapshot();
  if (h.pfnPrompt == nullptr || max_length == 0 || max_length > 0xFFFFFFF0u) return std::nullopt;
  std::string buffer(max_length + 1, '\0');
  if (h.pfnPrompt(h.pContext, caption.c_str(), buffer.data(), static_cast<std::uint32_t>(buffer.size())) ==
      0) {
    return std::nullopt;
  }
  buffer.back() = '\0';  // a host that forgot the terminator cannot make us overrun
  buffer.resize(std::char_traits<char>::length(buffer.c_str()));
  return buffer;
}

}  // namespace kerfline::platform::host
