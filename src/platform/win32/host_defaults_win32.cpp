// Defaults for a host that installed no hooks: the real Win32 user
// interface, as a Windows host of the suite expects from its driver library.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/host_hooks.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform::host::defaults {

int message_box(const std::string& text, const std::string& caption, std::uint32_t type) {
  // Owned by the active window, so the box is modal to the host's window.
  const int answer = MessageBoxA(GetActiveWindow(), text.c_str(), caption.c_str(), type);
  if (answer > 0) return answer;
  // No desktop to show it on (a service, a headless session): say it where
  // someone may read it and take the safe answer, as a library without
  // windows does; a caption that already ends in a colon gets no second one.
  const bool has_colon = !caption.empty() && caption.back() == ':';
  std::fprintf(stderr, "%s%s %s\n", caption.c_str(), has_colon ? "" : ":", text.c_str());
  std::fflush(stderr);
  const std::uint32_t buttons = type & 0x0FU;
  return buttons == KERFLINE_MB_YESNO || buttons == KERFLINE_MB_YESNOCANCEL ? KERFLINE_IDNO : KERFLINE_IDOK;
}

// KERFLINE_DIAG=1 holds Ctrl and Shift here too, so diagnostic logs can be
// asked for where nobody can press keys (a scheduled job, a test).
bool is_key_down(int virtual_key) {
  if (virtual_key == KERFLINE_VK_CONTROL || virtual_key == KERFLINE_VK_SHIFT) {
    const char* diag = std::getenv("KERFLINE_DIAG");
    if (diag != nullptr && std::strcmp(diag, "1") == 0) return true;
  }
  return (GetKeyState(virtual_key) & 0x8000) != 0;
}

void pump_messages() {
  MSG msg{};
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&msg);
    DispatchMessageA(&msg);
  }
}

namespace {

struct Broadcast {
  UINT id = 0;
  WPARAM w_param = 0;
  LPARAM l_param = 0;
  std::intptr_t answer = -1;
};

// A window that does not know a registered message answers 0 through
// DefWindowProc: the first other answer is the one that counts.
BOOL CALLBACK ask_window(HWND window, LPARAM context) {
  auto* b = reinterpret_cast<Broadcast*>(context);
  DWORD_PTR answer = 0;
  if (SendMessageTimeoutA(window, b->id, b->w_param, b->l_param, SMTO_ABORTIFHUNG | SMTO_BLOCK, 2000,
                          &answer) &&
      answer != 0 && b->answer == -1) {
    b->answer = static_cast<std::intptr_t>(answer);
  }
  return TRUE;
}

}  // namespace

std::intptr_t broadcast(const std::string& message, std::uintptr_t w_param, std::intptr_t l_param,
                        bool wait_for_answer) {
  const UINT id = RegisterWindowMessageA(message.c_str());
  if (id == 0) return -1;
  if (!wait_for_answer) {
    return PostMessageA(HWND_BROADCAST, id, static_cast<WPARAM>(w_param), static_cast<LPARAM>(l_param)) ? 0
                                                                                                        : -1;
  }
  // A sent HWND_BROADCAST keeps no answer, so every top-level window is
  // asked in turn; a hung one is given up on rather than freezing the host.
  Broadcast b{id, static_cast<WPARAM>(w_param), static_cast<LPARAM>(l_param), -1};
  EnumWindows(ask_window, reinterpret_cast<LPARAM>(&b));
  return b.answer;
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
