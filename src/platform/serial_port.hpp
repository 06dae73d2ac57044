// Ports and device files: serial lines, printer and USB device nodes, FIFOs
// and plain files, reached through one pointer-sized handle that the host may
// hold (a HANDLE on Windows, the file descriptor on POSIX).
//
// Contract:
// - kInvalidHandle (-1) is what a failed open gives; 0 is the null handle and
//   names no descriptor: every operation on it fails and nothing is written
//   to descriptor 0. An open never hands out 0, 1 or 2.
// - Reads and writes never block longer than the time-outs given; every wait
//   sleeps in the OS (poll / overlapped time-outs), none spins.
// - Serial set-up applies only where the handle is a terminal or comm port.
//   A mode text that does not parse leaves the line as it is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/os_error.hpp"

namespace kerfline::platform::port {

using Handle = std::intptr_t;
inline constexpr Handle kInvalidHandle = -1;
inline constexpr Handle kNullHandle = 0;

// True for a handle that may name an open port (not null, not invalid).
constexpr bool is_open_handle(Handle h) { return h != kInvalidHandle && h != kNullHandle; }

enum class Access { kRead, kWrite, kReadWrite };

// Opens an existing path (never creates it) without becoming its
// controlling terminal, closed on exec.
Result<Handle> open_existing(const std::string& path, Access access);

// Closes the handle; false for the null or invalid handle.
bool close(Handle h);

struct IoResult {
  bool ok = false;          // the call itself succeeded
  std::uint32_t count = 0;  // bytes moved
  int error = 0;            // errno / GetLastError when !ok
};

// Read time-outs as Win32 COMMTIMEOUTS has them: wait up to total_ms for
// the first byte, then stop when the line stays quiet for interval_ms or the
// buffer is full. 0 bytes with ok set means nothing came (or end of file).
struct ReadTimeouts {
  std::uint32_t interval_ms = 50;
  std::uint32_t total_ms = 2000;
};

IoResult read(Handle h, void* buffer, std::size_t size, ReadTimeouts timeouts = {});

// Writes as much as the device takes within total_ms + per_byte_ms * size.
IoResult write(Handle h, const void* bytes, std::size_t size, std::uint32_t per_byte_ms = 5,
               std::uint32_t total_ms = 1000);

// Bytes waiting to be read on a terminal or comm port; an error on anything
// else (a pipe, a file), as ClearCommError fails there.
Result<std::uint32_t> input_count(Handle h);

// Drops whatever waits in both directions (terminals only).
bool purge(Handle h);

// Pushes buffered output towards the device (fsync on files; a terminal's
// output is not waited for, so a stopped line cannot hang the caller).
bool flush_buffers(Handle h);

// True when the handle is a terminal or comm port.
bool is_terminal(Handle h);

// The line settings of a mode text in either form BuildCommDCB takes:
// "9600,n,8,1,x" or "baud=9600 parity=N data=8 stop=1". Nothing when the
// text does not parse ("FILE" does not).
struct LineSettings {
  std::uint32_t baud = 0;
  char parity = 'n';  // n e o m s
  std::uint8_t data_bits = 8;
  std::uint8_t stop_bits = 10;  // in tenths: 10, 15, 20
  bool xon_xoff = false;
  bool rts_cts = false;  // CTS output flow, RTS handshake
  bool dtr = true;
};
std::optional<LineSettings> parse_mode(std::string_view text);

// The settings the serial set-up applies for a "ports" profile value: the
// parsed text, then "x" anywhere switches XON/XOFF on and "p" anywhere
// RTS/CTS, "p" last. Nothing when the text does not parse.
std::optional<LineSettings> line_settings_for(std::string_view mode_text);

// Applies settings to a terminal; false (and nothing changed) otherwise.
bool apply_line_settings(Handle h, const LineSettings& settings);

// The whole serial set-up of an opened port: queue sizes, the control block
// from `port_name` (with its colon) and `mode_text`, the "x"/"p" flow
// controls, read time-outs 50 ms interval / 2000 ms total, write 5 ms a byte
// + 1000 ms, and the event mask. Failures are ignored: a file or printer
// port keeps its defaults. False when nothing was applied.
bool setup_serial(Handle h, std::string_view port_name, std::string_view mode_text);

// The path a Windows port name stands for here: "COM<n>" / "COM<n>:" and
// "LPT<n>" map to this OS's serial and printer devices, anything else is a
// path and comes back unchanged.
std::string map_port_name(std::string_view name);

}  // namespace kerfline::platform::port
