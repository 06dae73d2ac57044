// Named pipes (FIFOs): the stand-in for USB pipes on POSIX.
#pragma once

#include <string>

#include "platform/byte_stream.hpp"
#include "platform/os_error.hpp"

namespace kerfline::platform {

// Creates a FIFO at path (owner read/write); an existing FIFO is kept, any
// other existing file is an error.
Result<bool> make_fifo(const std::string& path);

// Opens the reading end without waiting for a writer. The stream reads as
// closed once a writer that came has gone again (reopen to wait for the next).
Result<ByteStream> open_fifo_reader(const std::string& path);

// Opens the writing end without waiting for a reader and without ever
// failing for lack of one: this side also holds a read reference, so bytes
// nobody reads stay in the pipe (up to its capacity; then writes time out).
Result<ByteStream> open_fifo_writer(const std::string& path);

}  // namespace kerfline::platform
