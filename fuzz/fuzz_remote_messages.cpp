// The remote-link message reader on arbitrary bytes, as a server would send
// them: messages one after another, arriving in small pieces. Every message
// read must write back to bytes that read back the same.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"
#include "remote/payloads.hpp"

namespace drv = kerfline::driver;

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

// Hands out the input a few bytes at a time, like a socket would.
class Trickle : public drv::ArchiveSource {
 public:
  Trickle(std::string_view all, std::size_t step)
      : shown_(std::min(all.size(), step)), all_(all), step_(step) {}
  [[nodiscard]] std::string_view first() const { return all_.substr(0, shown_); }
  std::string_view extend(std::size_t total) override {
    check(total > shown_);
    if (total > kerfline::remote::kMaxMessage) throw drv::ArchiveError("too long");
    while (shown_ < total && shown_ < all_.size()) shown_ = std::min(all_.size(), shown_ + step_);
    if (shown_ < total) throw drv::ArchiveError("closed");
    return all_.substr(0, shown_);
  }
  std::size_t shown_ = 0;

 private:
  std::string_view all_;
  std::size_t step_;
};

std::string write(const CSocketDataObject& m) {
  drv::ArchiveWriter ar;
  CSocketDataObjectWire::write(m, ar);
  return ar.take_bytes();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t step = 1 + data[0] % 16;
  std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  for (int messages = 0; messages < 64 && !rest.empty(); ++messages) {
    Trickle source(rest, step);
    drv::ArchiveReader ar(source.first(), source);
    std::unique_ptr<CSocketDataObject> m;
    try {
      m = CSocketDataObjectWire::read(ar);
    } catch (const drv::ArchiveError&) {
      break;
    }
    check(ar.position() <= rest.size());
    if (m) {
      const std::string again = write(*m);
      drv::ArchiveReader back(again);
      const auto copy = CSocketDataObjectWire::read(back);
      check(copy != nullptr && back.at_end() && write(*copy) == again);
    }
    rest.remove_prefix(ar.position());
  }
  return 0;
}
