#include "remote/link.hpp"

#include <algorithm>
#include <chrono>

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"
#include "platform/tcp_socket.hpp"
#include "remote/payloads.hpp"

namespace kerfline::remote {

namespace {

using Clock = std::chrono::steady_clock;

// Milliseconds left until the deadline, at least 0.
int remaining_ms(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return left > 0 ? static_cast<int>(std::min<long long>(left, 1 << 30)) : 0;
}

}  // namespace

// Feeds the archive reader from the socket until the message is whole or
// the deadline passes. Every failure is an ArchiveError to the reader, with
// the reason kept here for the link.
class Link::Source : public driver::ArchiveSource {
 public:
  Source(Link& link, int timeout_ms)
      : link_(link), deadline_(Clock::now() + std::chrono::milliseconds(timeout_ms)) {}

  std::string_view extend(std::size_t total) override {
    if (total > kMaxMessage) fail(ReceiveStatus::Malformed, "message longer than the bound");
    while (link_.buffered() < total) {
      const std::size_t old = link_.buffer_.size();
      link_.buffer_.resize(old + kReadChunk);
      auto got = link_.stream_.read(link_.buffer_.data() + old, kReadChunk, remaining_ms(deadline_));
      const std::size_t count = got ? got->count : 0;
      link_.buffer_.resize(old + count);
      if (!got || got->closed) fail(ReceiveStatus::Closed, "connection closed");
      if (count == 0 && remaining_ms(deadline_) == 0) fail(ReceiveStatus::TimedOut, "time-out");
    }
    return view();
  }

  [[nodiscard]] std::string_view view() const { return std::string_view(link_.buffer_).substr(link_.start_); }

  ReceiveStatus reason = ReceiveStatus::Malformed;

 private:
  [[noreturn]] void fail(ReceiveStatus why, const char* what) {
    reason = why;
    throw driver::ArchiveError(what);
  }

  Link& link_;
  Clock::time_point deadline_;
};

bool Link::connect(const std::string& host, std::uint16_t port, std::string* error) {
  if (connected()) return true;
  auto stream = platform::tcp_connect(host, port, connect_timeout_ms_);
  if (!stream) {
    if (error != nullptr) *error = stream.error().message;
    return false;
  }
  stream_ = std::move(*stream);
  buffer_.clear();
  start_ = 0;
  return true;
}

void Link::attach(platform::ByteStream stream) {
  release();
  stream_ = std::move(stream);
}

bool Link::send(const CSocketDataObject& message) {
  return send(std::vector<const CSocketDataObject*>{&message});
}

bool Link::send(const std::vector<const CSocketDataObject*>& messages) {
  if (!connected()) return false;
  driver::ArchiveWriter ar;
  for (const CSocketDataObject* m : messages) CSocketDataObjectWire::write(*m, ar);
  const std::string& bytes = ar.bytes();
  auto written = stream_.write(bytes.data(), bytes.size(), kDefaultSendTimeout);
  if (!written || *written != bytes.size()) {
    release();
    return false;
  }
  return true;
}

std::unique_ptr<CSocketDataObject> Link::read_one(int timeout_ms, ReceiveStatus* status) {
  Source source(*this, timeout_ms);
  driver::ArchiveReader ar(source.view(), source);
  std::unique_ptr<CSocketDataObject> message;
  try {
    message = CSocketDataObjectWire::read(ar);
  } catch (const driver::ArchiveError&) {
    *status = source.reason;
    // After a time-out the partial message stays for the next call; after
    // anything else the stream cannot be trusted to be in step.
    if (source.reason != ReceiveStatus::TimedOut) release();
    return nullptr;
  }
  start_ += ar.position();
  if (start_ == buffer_.size()) {
    buffer_.clear();
    start_ = 0;
  } else if (start_ > 16 * kReadChunk && start_ > buffer_.size() / 2) {
    buffer_.erase(0, start_);
    start_ = 0;
  }
  *status = message ? ReceiveStatus::Message : ReceiveStatus::UnknownType;
  return message;
}

std::unique_ptr<CSocketDataObject> Link::receive(ReceiveStatus* status) {
  ReceiveStatus ignored{};
  if (status == nullptr) status = &ignored;
  if (!connected()) {
    *status = ReceiveStatus::NotConnected;
    return nullptr;
  }
  return read_one(receive_timeout_ms_, status);
}

int Link::discard_pending() {
  int dropped = 0;
  std::size_t consumed = 0;
  // A server that floods the link cannot keep the caller here: one call
  // reads at most one bound's worth.
  while (connected() && consumed < kMaxMessage) {
    const std::size_t before = buffered();
    ReceiveStatus status{};
    const auto message = read_one(0, &status);
    if (status != ReceiveStatus::Message && status != ReceiveStatus::UnknownType) break;
    ++dropped;
    consumed += std::max<std::size_t>(before > buffered() ? before - buffered() : 4, 4);
  }
  return dropped;
}

void Link::release() {
  stream_.close();
  buffer_.clear();
  buffer_.shrink_to_fit();
  start_ = 0;
}

}  // namespace kerfline::remote
