// The client end of a remote plot-manager link: one TCP connection over
// which whole messages are sent and received.
//
// The server is untrusted. A receive waits at most the receive time-out for
// the rest of a message, refuses a message longer than kMaxMessage (or a
// list longer than kMaxListEntries) before reading it, and holds no more
// than the bytes that actually arrived plus one read chunk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kerfline/remote_messages.hpp"
#include "platform/byte_stream.hpp"
#include "remote/payloads.hpp"

namespace kerfline::remote {

// Bytes asked for in one socket read.
inline constexpr std::size_t kReadChunk = 4096;
// Default waits, in milliseconds.
inline constexpr int kDefaultConnectTimeout = 5000;
inline constexpr int kDefaultReceiveTimeout = 30000;
inline constexpr int kDefaultSendTimeout = 30000;

enum class ReceiveStatus {
  Message,       // a message came
  UnknownType,   // a type other than 1 to 6: its 4 bytes are gone, the rest stays
  NotConnected,  // no connection (also after any of the failures below)
  TimedOut,      // the rest did not come in time; what came is kept for the next call
  Closed,        // the server closed; the connection is released
  Malformed,     // an impossible length or count; the connection is released
};

class Link {
 public:
  Link() = default;
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  [[nodiscard]] bool connected() const { return stream_.is_open(); }

  // One attempt to connect; keeps an existing connection. The error text
  // when it fails.
  bool connect(const std::string& host, std::uint16_t port, std::string* error);

  // Takes over a connection made elsewhere (the server side of a link).
  void attach(platform::ByteStream stream);

  // Writes the whole message; false (and the connection released) when the
  // server does not take it in time or has gone.
  bool send(const CSocketDataObject& message);
  // Writes several messages with one write, so that they arrive together.
  bool send(const std::vector<const CSocketDataObject*>& messages);

  // Waits for one whole message.
  std::unique_ptr<CSocketDataObject> receive(ReceiveStatus* status);

  // Takes what the server has sent without waiting and discards every whole
  // message in it: those were not asked for. A partial message stays.
  // Returns the number of messages (and unknown types) dropped.
  int discard_pending();

  // Bytes received and not yet read as messages.
  [[nodiscard]] std::size_t buffered() const { return buffer_.size() - start_; }

  // Closes the connection and forgets what was buffered.
  void release();

  void set_receive_timeout(int ms) { receive_timeout_ms_ = ms; }
  [[nodiscard]] int receive_timeout() const { return receive_timeout_ms_; }
  void set_connect_timeout(int ms) { connect_timeout_ms_ = ms; }

 private:
  class Source;
  std::unique_ptr<CSocketDataObject> read_one(int timeout_ms, ReceiveStatus* status);

  platform::ByteStream stream_;
  std::string buffer_;
  std::size_t start_ = 0;  // first unread byte in buffer_
  int connect_timeout_ms_ = kDefaultConnectTimeout;
  int receive_timeout_ms_ = kDefaultReceiveTimeout;
};

}  // namespace kerfline::remote
