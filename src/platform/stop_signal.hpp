// A process-wide "please stop" flag raised by the interrupt and terminate
// signals (Ctrl-C, SIGTERM; the console's close events on Windows), for
// programs that serve until told to stop. Writing to a vanished pipe peer
// becomes an error instead of a signal. A wait in progress returns early
// (a read reports a time-out), so a loop checks stop_requested() after it.
#pragma once

namespace kerfline::platform {

void install_stop_signals();
[[nodiscard]] bool stop_requested();

}  // namespace kerfline::platform
