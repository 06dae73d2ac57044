// Builds a ByteStream from POSIX descriptors (for the other POSIX files of
// the platform layer).
#pragma once

#include "platform/byte_stream.hpp"

namespace kerfline::platform {

// Takes ownership of both descriptors (the same one twice for a two-way
// descriptor; -1 where a direction is missing) and makes them non-blocking.
ByteStream make_fd_stream(int read_fd, int write_fd, bool is_socket);

}  // namespace kerfline::platform
