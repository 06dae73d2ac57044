// The payload of each message class and how it reads and writes itself. The
// exported classes only hold a pointer to one of these, so no standard type
// shows in their interface.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"
#include "kerfline/remote_messages.hpp"

struct CSocketDataObject::Payload {
  explicit Payload(ESocketDataType t) : type(t) {}
  virtual ~Payload() = default;
  [[nodiscard]] virtual std::unique_ptr<Payload> clone() const = 0;
  virtual void write(kerfline::driver::ArchiveWriter& ar) const = 0;
  // Reads the fields in place; on ArchiveError the caller drops the payload.
  virtual void read(kerfline::driver::ArchiveReader& ar) = 0;
  const ESocketDataType type;
};

namespace kerfline::remote {

// The longest message accepted from a server; a Binary size beyond it is
// refused before a byte of the data is read.
inline constexpr std::size_t kMaxMessage = std::size_t{16} << 20;
// The most texts a received list may hold: each entry costs far more memory
// than its one byte on the wire, so the count is bounded on its own.
inline constexpr std::uint32_t kMaxListEntries = 65536;

// The payload for a wire type 1 to 6, or null for any other.
std::unique_ptr<CSocketDataObject::Payload> make_payload(std::uint32_t type);

template <typename Derived>
struct PayloadOf : CSocketDataObject::Payload {
  PayloadOf() : Payload(Derived::kType) {}
  [[nodiscard]] std::unique_ptr<Payload> clone() const override {
    return std::make_unique<Derived>(static_cast<const Derived&>(*this));
  }
};

struct StatePayload : PayloadOf<StatePayload> {
  static constexpr auto kType = CSocketDataObject::eSocketDataState;
  void write(driver::ArchiveWriter& ar) const override;
  void read(driver::ArchiveReader& ar) override;
  std::int32_t state = 0;
  std::uint32_t job = 0;
};

struct MsgPayload : PayloadOf<MsgPayload> {
  static constexpr auto kType = CSocketDataObject::eSocketDataMsg;
  void write(driver::ArchiveWriter& ar) const override;
  void read(driver::ArchiveReader& ar) override;
  std::string text;
};

struct BinaryPayload : PayloadOf<BinaryPayload> {
  static constexpr auto kType = CSocketDataObject::eSocketDataBinary;
  void write(driver::ArchiveWriter& ar) const override;
  void read(driver::ArchiveReader& ar) override;
  std::int32_t data1 = 0;
  std::int32_t data2 = 0;
  std::string text1;
  std::string text2;
  std::string bytes;  // its length is the size
};

struct StringListPayload : PayloadOf<StringListPayload> {
  static constexpr auto kType = CSocketDataObject::eSocketDataStringList;
  void write(driver::ArchiveWriter& ar) const override;
  void read(driver::ArchiveReader& ar) override;
  std::vector<std::string> texts;
};

struct QueryPayload : PayloadOf<QueryPayload> {
  static constexpr auto kType = CSocketDataObject::eSocketDataQuery;
  void write(driver::ArchiveWriter& ar) const override;
  void read(driver::ArchiveReader& ar) override;
  std::int32_t number = 0;
  std::uint32_t job = 0;
  std::string parm;
};

struct IntPayload : PayloadOf<IntPayload> {
  static constexpr auto kType = CSocketDataObject::eSocketDataInt;
  void write(driver::ArchiveWriter& ar) const override;
  void read(driver::ArchiveReader& ar) override;
  std::int32_t value = 0;
};

}  // namespace kerfline::remote

// Whole messages to and from an archive, for the socket code.
class CSocketDataObjectWire {
 public:
  // The type, then the payload (nothing more for a bare object).
  static void write(const CSocketDataObject& message, kerfline::driver::ArchiveWriter& ar);
  // Reads the type and, for 1 to 6, the payload into a new object. An
  // unknown type gives null after its 4 bytes; a short or impossible
  // payload throws ArchiveError.
  static std::unique_ptr<CSocketDataObject> read(kerfline::driver::ArchiveReader& ar);
  static CSocketDataObject::Payload* payload(CSocketDataObject& message) { return message.m_pPayload; }
};
