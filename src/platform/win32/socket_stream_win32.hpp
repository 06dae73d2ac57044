// Builds a ByteStream from a connected Winsock socket (for the other Win32
// files of the platform layer), and starts Winsock once per process.
#pragma once

#include "platform/byte_stream.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

ByteStream make_socket_stream(SOCKET s);

// WSAStartup once; the error code of the start-up, 0 when it worked.
int ensure_winsock();

}  // namespace kerfline::platform
