// Named pipes for the other Win32 files: the client open that waits out a
// busy pipe, overlapped transfers with time-outs, and streams on pipe ends.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <string_view>

#include "platform/byte_stream.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform::win32 {

// "\\.\pipe\..." in any case.
bool is_pipe_name(std::string_view path);

// True for a pipe handle (GetFileType; comm ports are character devices).
bool is_pipe(HANDLE h);

// Opens the client end of a named pipe for overlapped I/O. A pipe whose one
// instance is busy (its server has not taken the last client's close yet)
// is waited for, at most a few seconds.
HANDLE open_pipe_client(const std::string& path, DWORD rights);

// One overlapped read or write, waited for at most timeout_ms; one still
// waiting then is cancelled, keeping what it moved. error is 0, or
// ERROR_OPERATION_ABORTED when the time ran out, or the call's error.
struct PipeTransfer {
  DWORD count = 0;
  DWORD error = 0;
};
PipeTransfer pipe_transfer(HANDLE h, bool writing, void* buffer, DWORD size, DWORD timeout_ms);

// True when the error means the peer has gone.
bool peer_gone(DWORD error);

// A server instance of the byte pipe `name` for overlapped I/O (the first
// one fails when the name exists), local clients only.
HANDLE create_pipe_instance(const std::string& name, bool first);

// A stream on a pipe handle opened for overlapped I/O; it owns the handle.
// With `released` the handle is the server end of `server_name`: it waits
// for a client before each transfer, and a client's close makes room for the
// next one until *released is set; after that the close reads as the end.
ByteStream make_pipe_stream(HANDLE pipe, std::string server_name,
                            std::shared_ptr<std::atomic<bool>> released);

}  // namespace kerfline::platform::win32
