// The host's user interface, as the rest of the library calls it. Each call
// goes to the hook the host installed, or to this OS's default; callers never
// check for missing hooks themselves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "kerfline/kerfline.h"

namespace kerfline::platform::host {

// Shows a message box; type is MB_* bits, the answer an ID* value.
int message_box(const std::string& text, const std::string& caption, std::uint32_t type);

// True while the virtual key (VK_SHIFT, VK_CONTROL) is held.
bool is_key_down(int virtual_key);

// Ctrl and Shift both held: the user asks for diagnostic logs.
bool diagnostics_requested();

// Lets the host handle its messages during a long wait.
void pump_messages();

// Sends (wait) or posts a registered message to the suite's programs;
// returns the answer, -1 when nobody answered.
std::intptr_t broadcast(const std::string& message, std::uintptr_t w_param, std::intptr_t l_param,
                        bool wait_for_answer);

void set_wait_cursor(bool on);

// Asks the user for a line of text (at most max_length bytes); nothing when
// the host has no prompt or the user cancelled.
std::optional<std::string> prompt(const std::string& caption, std::size_t max_length);

// Shows the wait cursor for the lifetime of the object.
class WaitCursor {
 public:
  WaitCursor() { set_wait_cursor(true); }
  ~WaitCursor() { set_wait_cursor(false); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

// Installs a copy of the host's hooks (null: the defaults again). False when
// the record is too small to be one.
bool install(const KERFLINE_HOST_HOOKS* hooks);

// This OS's defaults, used for every hook the host left null.
namespace defaults {
int message_box(const std::string& text, const std::string& caption, std::uint32_t type);
bool is_key_down(int virtual_key);
void pump_messages();
std::intptr_t broadcast(const std::string& message, std::uintptr_t w_param, std::intptr_t l_param,
                        bool wait_for_answer);
void set_wait_cursor(bool on);
}  // namespace defaults

}  // namespace kerfline::platform::host
