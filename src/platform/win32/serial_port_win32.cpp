#include <algorithm>
#include <cstring>

#include "platform/clock.hpp"
#include "platform/serial_port.hpp"
#include "platform/win32/pipe_io_win32.hpp"

namespace kerfline::platform::port {
namespace {

HANDLE handle_of(Handle h) { return reinterpret_cast<HANDLE>(h); }  // NOLINT

bool is_comm(HANDLE h) {
  DCB dcb{};
  dcb.DCBlength = sizeof(dcb);
  return GetCommState(h, &dcb) != 0;
}

// A named pipe is a line without line settings: reads and writes keep the
// comm port's time-outs by waiting on overlapped transfers themselves.
IoResult pipe_read(HANDLE h, unsigned char* out, std::size_t size, ReadTimeouts timeouts) {
  IoResult r;
  DWORD wait = timeouts.total_ms;
  while (r.count < size) {
    const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(size - r.count, 1U << 20));
    const auto t = win32::pipe_transfer(h, false, out + r.count, chunk, wait);
    r.count += t.count;
    if (t.error == ERROR_OPERATION_ABORTED || win32::peer_gone(t.error)) break;
    if (t.error != 0) {
      r.error = static_cast<int>(t.error);
      return r;
    }
    if (t.count == 0) break;
    wait = timeouts.interval_ms;
  }
  r.ok = true;
  return r;
}

IoResult pipe_write(HANDLE h, const unsigned char* in, std::size_t size, std::uint64_t budget_ms) {
  IoResult r;
  const std::uint64_t deadline = tick_ms64() + budget_ms;
  while (r.count < size) {
    const std::uint64_t now = tick_ms64();
    const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(size - r.count, 1U << 16));
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): WriteFile reads it only
    const auto t = win32::pipe_transfer(h, true, const_cast<unsigned char*>(in + r.count), chunk,
                                        now >= deadline ? 0 : static_cast<DWORD>(deadline - now));
    r.count += t.count;
    if (t.error != 0) {
      r.error = t.error == ERROR_OPERATION_ABORTED ? WAIT_TIMEOUT : static_cast<int>(t.error);
      return r;
    }
  }
  r.ok = true;
  return r;
}

}  // namespace

Result<Handle> open_existing(const std::string& path, Access access) {
  DWORD rights = GENERIC_READ | GENERIC_WRITE;
  DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE;
  if (access == Access::kRead) {
    rights = GENERIC_READ;
    share = FILE_SHARE_READ;
  } else if (access == Access::kWrite) {
    rights = GENERIC_WRITE;
    share = FILE_SHARE_WRITE;
  }
  HANDLE h = win32::is_pipe_name(path)
                 ? win32::open_pipe_client(path, rights)
                 : CreateFileA(path.c_str(), rights, share, nullptr, OPEN_EXISTING, 0, nullptr);
  if (h == INVALID_HANDLE_VALUE) return win32::last_error("CreateFile " + path);
  return reinterpret_cast<Handle>(h);  // NOLINT
}

bool close(Handle h) { return is_open_handle(h) && CloseHandle(handle_of(h)) != 0; }

IoResult read(Handle h, void* buffer, std::size_t size, ReadTimeouts timeouts) {
  IoResult r;
  if (!is_open_handle(h)) {
    r.error = ERROR_INVALID_HANDLE;
    return r;
  }
  if (win32::is_pipe(handle_of(h)))
    return pipe_read(handle_of(h), static_cast<unsigned char*>(buffer), size, timeouts);
  if (is_comm(handle_of(h))) {
    COMMTIMEOUTS t{};
    GetCommTimeouts(handle_of(h), &t);
    t.ReadIntervalTimeout = timeouts.interval_ms;
    t.ReadTotalTimeoutMultiplier = 0;
    t.ReadTotalTimeoutConstant = timeouts.total_ms;
    SetCommTimeouts(handle_of(h), &t);
  }
  DWORD got = 0;
  const DWORD want = size > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<DWORD>(size);
  if (ReadFile(handle_of(h), buffer, want, &got, nullptr) == 0) {
    r.error = static_cast<int>(GetLastError());
    r.count = got;
    return r;
  }
  r.ok = true;
  r.count = got;
  return r;
}

IoResult write(Handle h, const void* bytes, std::size_t size, std::uint32_t per_byte_ms,
               std::uint32_t total_ms) {
  IoResult r;
  if (!is_open_handle(h)) {
    r.error = ERROR_INVALID_HANDLE;
    return r;
  }
  if (win32::is_pipe(handle_of(h))) {
    return pipe_write(handle_of(h), static_cast<const unsigned char*>(bytes), size,
                      static_cast<std::uint64_t>(per_byte_ms) * size + total_ms);
  }
  if (is_comm(handle_of(h))) {
    COMMTIMEOUTS t{};
    GetCommTimeouts(handle_of(h), &t);
    t.WriteTotalTimeoutMultiplier = per_byte_ms;
    t.WriteTotalTimeoutConstant = total_ms;
    SetCommTimeouts(handle_of(h), &t);
  }
  DWORD done = 0;
  const DWORD want = size > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<DWORD>(size);
  if (WriteFile(handle_of(h), bytes, want, &done, nullptr) == 0) {
    r.error = static_cast<int>(GetLastError());
    r.count = done;
    return r;
  }
  r.ok = true;
  r.count = done;
  return r;
}

bool is_terminal(Handle h) { return is_open_handle(h) && is_comm(handle_of(h)); }

Result<std::uint32_t> input_count(Handle h) {
  if (is_open_handle(h) && win32::is_pipe(handle_of(h))) {
    DWORD available = 0;
    if (PeekNamedPipe(handle_of(h), nullptr, 0, nullptr, &available, nullptr) == 0) {
      return win32::last_error("PeekNamedPipe");
    }
    return static_cast<std::uint32_t>(available);
  }
  DWORD errors = 0;
  COMSTAT stat{};
  if (!is_open_handle(h) || ClearCommError(handle_of(h), &errors, &stat) == 0) {
    return win32::last_error("ClearCommError");
  }
  return static_cast<std::uint32_t>(stat.cbInQue);
}

bool purge(Handle h) {
  if (is_open_handle(h) && win32::is_pipe(handle_of(h))) {
    // What waits now is dropped; the pipe has no output queue of ours.
    auto waiting = input_count(h);
    std::uint32_t left = waiting.ok() ? waiting.value() : 0;
    char discard[512];
    while (left > 0) {
      const auto t =
          win32::pipe_transfer(handle_of(h), false, discard, std::min<DWORD>(left, sizeof discard), 0);
      if (t.count == 0) break;
      left -= std::min<std::uint32_t>(left, t.count);
    }
    return waiting.ok();
  }
  return is_open_handle(h) &&
         PurgeComm(handle_of(h), PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR) != 0;
}

// FlushFileBuffers on a pipe waits until the peer has read everything: a
// stopped peer would hang the caller, as a stopped line must not.
bool flush_buffers(Handle h) {
  if (is_open_handle(h) && win32::is_pipe(handle_of(h))) return true;
  return is_open_handle(h) && FlushFileBuffers(handle_of(h)) != 0;
}

bool apply_line_settings(Handle h, const LineSettings& s) {
  if (!is_terminal(h)) return false;
  DCB dcb{};
  dcb.DCBlength = sizeof(dcb);
  if (GetCommState(handle_of(h), &dcb) == 0) return false;
  dcb.BaudRate = s.baud;
  dcb.ByteSize = s.data_bits;
  dcb.fBinary = TRUE;
  dcb.fParity = s.parity != 'n';
  dcb.Parity = s.parity == 'e'   ? EVENPARITY
               : s.parity == 'o' ? ODDPARITY
               : s.parity == 'm' ? MARKPARITY
               : s.parity == 's' ? SPACEPARITY
                                 : NOPARITY;
  dcb.StopBits = s.stop_bits == 15 ? ONE5STOPBITS : s.stop_bits == 20 ? TWOSTOPBITS : ONESTOPBIT;
  dcb.fOutX = dcb.fInX = s.xon_xoff;
  dcb.fOutxCtsFlow = dcb.fOutxDsrFlow = s.rts_cts;
  dcb.fRtsControl = s.rts_cts ? RTS_CONTROL_HANDSHAKE : RTS_CONTROL_ENABLE;
  dcb.fDtrControl = s.dtr ? DTR_CONTROL_ENABLE : DTR_CONTROL_DISABLE;
  return SetCommState(handle_of(h), &dcb) != 0;
}

bool setup_serial(Handle h, std::string_view port_name, std::string_view mode_text) {
  if (!is_open_handle(h)) return false;
  HANDLE port = handle_of(h);
  SetupComm(port, 1024, 1024);
  DCB dcb;
  std::memset(&dcb, 0, sizeof(dcb));
  dcb.DCBlength = sizeof(dcb);
  const std::string definition = std::string(port_name) + std::string(mode_text);
  BuildCommDCBA(definition.c_str(), &dcb);
  if (mode_text.find('x') != std::string_view::npos) {
    dcb.fOutX = TRUE;
    dcb.fInX = TRUE;
    dcb.fOutxCtsFlow = FALSE;
    dcb.fOutxDsrFlow = FALSE;
    dcb.fDtrControl = DTR_CONTROL_ENABLE;
    dcb.fRtsControl = RTS_CONTROL_ENABLE;
    dcb.XonChar = 0x11;
    dcb.XoffChar = 0x13;
    dcb.XonLim = 128;
    dcb.XoffLim = 128;
  }
  if (mode_text.find('p') != std::string_view::npos) {
    dcb.fOutxCtsFlow = TRUE;
    dcb.fOutxDsrFlow = TRUE;
    dcb.fDtrControl = DTR_CONTROL_ENABLE;
    dcb.fRtsControl = RTS_CONTROL_HANDSHAKE;
  }
  const bool applied = SetCommState(port, &dcb) != 0;  // deliberately not a failure
  COMMTIMEOUTS t{};
  GetCommTimeouts(port, &t);
  t.ReadIntervalTimeout = 50;
  t.ReadTotalTimeoutMultiplier = 0;
  t.ReadTotalTimeoutConstant = 2000;
  t.WriteTotalTimeoutMultiplier = 5;
  t.WriteTotalTimeoutConstant = 1000;
  SetCommTimeouts(port, &t);
  SetCommMask(port, 0x2BD);
  return applied;
}

std::string map_port_name(std::string_view name) { return std::string(name); }

}  // namespace kerfline::platform::port
