// The standard streams of a command-line program.
#pragma once

namespace kerfline::platform {

// Standard output and error in binary mode, so what a program writes there
// (driver files, device commands, JSON) arrives byte for byte and lines end
// in "\n" on every system. Windows otherwise turns each "\n" into "\r\n";
// POSIX streams are binary already.
void binary_standard_streams();

}  // namespace kerfline::platform
