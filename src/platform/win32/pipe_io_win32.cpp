#include <cctype>

#include "platform/win32/pipe_io_win32.hpp"

namespace kerfline::platform::win32 {

bool is_pipe_name(std::string_view path) {
  constexpr std::string_view kPrefix = "\\\\.\\pipe\\";
  if (path.size() <= kPrefix.size()) return false;
  for (std::size_t i = 0; i < kPrefix.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(path[i])) != kPrefix[i]) return false;
  }
  return true;
}

HANDLE create_pipe_instance(const std::string& name, bool first) {
  const DWORD open_mode =
      PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | (first ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0);
  return CreateNamedPipeA(name.c_str(), open_mode,
                          PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS,
                          PIPE_UNLIMITED_INSTANCES, 65536, 65536, 0, nullptr);
}

bool is_pipe(HANDLE h) { return GetFileType(h) == FILE_TYPE_PIPE; }

HANDLE open_pipe_client(const std::string& path, DWORD rights) {
  for (int attempt = 0;; ++attempt) {
    HANDLE h = CreateFileA(path.c_str(), rights, 0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    if (h != INVALID_HANDLE_VALUE || GetLastError() != ERROR_PIPE_BUSY || attempt == 2) return h;
    if (WaitNamedPipeA(path.c_str(), 2000) == 0) return INVALID_HANDLE_VALUE;
  }
}

PipeTransfer pipe_transfer(HANDLE h, bool writing, void* buffer, DWORD size, DWORD timeout_ms) {
  PipeTransfer r;
  OVERLAPPED ov{};
  UniqueHandle event(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  if (!event.valid()) {
    r.error = GetLastError();
    return r;
  }
  ov.hEvent = event.get();
  BOOL done = writing ? WriteFile(h, buffer, size, nullptr, &ov) : ReadFile(h, buffer, size, nullptr, &ov);
  DWORD error = done != 0 ? 0 : GetLastError();
  if (done != 0 || error == ERROR_IO_PENDING) {
    if (done == 0 && WaitForSingleObject(ov.hEvent, timeout_ms) != WAIT_OBJECT_0) CancelIoEx(h, &ov);
    done = GetOverlappedResult(h, &ov, &r.count, TRUE);
    error = done != 0 ? 0 : GetLastError();
  }
  r.error = error;
  return r;
}

bool peer_gone(DWORD error) {
  return error == ERROR_BROKEN_PIPE || error == ERROR_PIPE_NOT_CONNECTED || error == ERROR_NO_DATA;
}

}  // namespace kerfline::platform::win32
