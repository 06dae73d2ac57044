// A line with two ends, for serving as a serial device: this side keeps its
// end as a stream and hands the device name to whoever should open it as a
// port. On POSIX it is a pseudo-terminal in raw mode (no echo, no line
// editing, no CR/LF translation; the name is the slave's path). On Windows
// it is a named pipe, "\\.\pipe\kerfline-line-<process>-<n>", whose server
// end this side holds: one peer at a time, and a pipe has no line settings
// (no DCB), so speed and framing do not apply there.
#pragma once

#include <memory>
#include <string>

#include "platform/byte_stream.hpp"
#include "platform/os_error.hpp"

namespace kerfline::platform {

class LinePair {
 public:
  static Result<LinePair> open();

  LinePair(LinePair&&) noexcept;
  LinePair& operator=(LinePair&&) noexcept;
  ~LinePair();

  // The name a peer opens ("/dev/pts/3", "\\.\pipe\kerfline-line-42-1").
  [[nodiscard]] const std::string& device_path() const;

  // This side's end. Until release_device(), a peer that closes the device
  // is not seen (the next peer may open it); after it, the last peer's
  // close reads as the end of the stream.
  ByteStream& stream();
  void release_device();

 private:
  struct Impl;
  explicit LinePair(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

// Opens a line's device name as its peer does, read-write, as one stream.
Result<ByteStream> open_line_device(const std::string& path);

}  // namespace kerfline::platform
