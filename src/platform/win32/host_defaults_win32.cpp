// Defaults for a host that installed no hooks: the real Win32 user
// interface, as a Windows host of the suite expects from its driver library.
#include <atomic>

#include "platform/host_hooks.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform::host::defaults {

int message_box(const std::string& text, const std::string& caption, std::uint32_t type) {
  // Owned by the active window, so the box is modal to the host's window.
  return MessageBoxA(GetActiveWindow(), text.c_str(), caption.c_str(), type);
}

bool is_key_down(int virtual_key) { return (GetKeyState(virtual_key) & 0x8000) != 0; }

void pump_messages() {
  MSG msg{};
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&msg);
    DispatchMessageA(&msg);
  }
}

// Sent broadcasts give up on programs that hang: a hung window must not
// freeze the host. Every top-level window answers a broadcast, so the
// result is that of the call, not one program's answer.
std::intptr_t broadcast(const std::string& message, std::uintptr_t w_param, std::intptr_t l_param,
                        bool wait_for_answer) {
  const UINT id = RegisterWindowMessageA(message.c_str());
  if (id == 0) return -1;
  if (!wait_for_answer) {
    return PostMessageA(HWND_BROADCAST, id, static_cast<WPARAM>(w_param), static_cast<LPARAM>(l_param)) ? 0 : -1;
  }
  DWORD_PTR answer = 0;
  const LRESULT ok = SendMessageTimeoutA(HWND_BROADCAST, id, static_cast<WPARAM>(w_param),
                                         static_cast<LPARAM>(l_param), SMTO_ABORTIFHUNG | SMTO_BLOCK, 5000, &answer);
  return ok != 0 ? static_cast<std::intptr_t>(answer) : -1;
}

void set_wait_cursor(bool on) {
  // Nested waits keep the cursor until the outermost one ends.
  static std::atomic<int> depth{0};
  static std::atomic<HCURSOR> previous{nullptr};
  if (on) {
    if (depth.fetch_add(1) == 0) previous = SetCursor(LoadCursor(nullptr, IDC_WAIT));
  } else if (depth.load() > 0 && depth.fetch_sub(1) == 1) {
    HCURSOR back = previous.exchange(nullptr);
    SetCursor(back != nullptr ? back : LoadCursor(nullptr, IDC_ARROW));
  }
}

}  // namespace kerfline::platform::host::defaults
