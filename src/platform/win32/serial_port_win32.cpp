#include <cstring>

#include "platform/serial_port.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform::port {
namespace {

HANDLE handle_of(Handle h) { return reinterpret_cast<HANDLE>(h); }  // NOLINT

bool is_comm(HANDLE h) {
  DCB dcb{};
  dcb.DCBlength = sizeof(dcb);
  return GetCommState(h, &dcb) != 0;
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
  HANDLE h = CreateFileA(path.c_str(), rights, share, nullptr, OPEN_EXISTING, 0, nullptr);
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
  DWORD errors = 0;
  COMSTAT stat{};
  if (!is_open_handle(h) || ClearCommError(handle_of(h), &errors, &stat) == 0) {
    return win32::last_error("ClearCommError");
  }
  return static_cast<std::uint32_t>(stat.cbInQue);
}

bool purge(Handle h) {
  return is_open_handle(h) &&
         PurgeComm(handle_of(h), PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR) != 0;
}

bool flush_buffers(Handle h) { return is_open_handle(h) && FlushFileBuffers(handle_of(h)) != 0; }

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
