// The tool's message-box hook: the library's messages go to standard error
// as "caption text", and a command can ask whether an error was shown (the
// library reports some failures, such as a driver it could not store, only
// that way).
#pragma once

namespace kerfline::cli {

void install_message_boxes();

// How many error messages the library has shown so far.
int error_boxes_shown();

}  // namespace kerfline::cli
