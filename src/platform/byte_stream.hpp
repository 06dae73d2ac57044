// A two-way byte stream with time-outs: a connected socket, a pseudo-terminal
// master or a FIFO pair. Every wait sleeps in the system's poll with the
// caller's time-out; nothing spins. Reads are bounded by the caller's buffer.
#pragma once

#include <cstddef>
#include <memory>

#include "platform/os_error.hpp"

namespace kerfline::platform {

// What one read brought: bytes, the end of the stream, or neither (the
// time-out passed or a signal interrupted the wait).
struct ReadResult {
  std::size_t count = 0;
  bool closed = false;  // the peer closed or hung up; no more bytes will come
  [[nodiscard]] bool timed_out() const { return count == 0 && !closed; }
};

class ByteStream {
 public:
  ByteStream();  // an empty stream: reads report closed, writes fail
  ByteStream(ByteStream&&) noexcept;
  ByteStream& operator=(ByteStream&&) noexcept;
  ~ByteStream();  // closes

  [[nodiscard]] bool is_open() const;

  // Waits at most timeout_ms (negative: no limit) for bytes and reads up to
  // size of them into buffer.
  Result<ReadResult> read(char* buffer, std::size_t size, int timeout_ms);

  // Writes size bytes, waiting at most timeout_ms in total while the peer
  // does not take them. Returns how many were written: fewer than size when
  // the time ran out. A peer that went away is an error (never a signal).
  Result<std::size_t> write(const char* data, std::size_t size, int timeout_ms);

  // Closes now; the stream is empty afterwards.
  void close();

  struct Impl;
  explicit ByteStream(std::unique_ptr<Impl> impl);

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace kerfline::platform
