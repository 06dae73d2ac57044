// A pseudo-terminal pair for serving as a serial device: this side keeps the
// master, the device path (the slave) is handed to whoever should open it as
// a serial port. The slave starts in raw mode (no echo, no line editing, no
// CR/LF translation) so bytes pass unchanged both ways.
#pragma once

#include <memory>
#include <string>

#include "platform/byte_stream.hpp"
#include "platform/os_error.hpp"

namespace kerfline::platform {

class PseudoTerminal {
 public:
  static Result<PseudoTerminal> open();

  PseudoTerminal(PseudoTerminal&&) noexcept;
  PseudoTerminal& operator=(PseudoTerminal&&) noexcept;
  ~PseudoTerminal();

  // The device path a peer opens ("/dev/pts/3").
  [[nodiscard]] const std::string& device_path() const;

  // The master side. While this side still holds its own copy of the slave,
  // a peer that closes the device is not seen; after release_slave() the
  // last peer's close reads as the end of the stream.
  ByteStream& master();
  void release_slave();

 private:
  struct Impl;
  explicit PseudoTerminal(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace kerfline::platform
