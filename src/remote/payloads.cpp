#include "remote/payloads.hpp"

namespace kerfline::remote {

void StatePayload::write(driver::ArchiveWriter& ar) const {
  ar.write_long(state);
  ar.write_dword(job);
}

void StatePayload::read(driver::ArchiveReader& ar) {
  state = ar.read_long();
  job = ar.read_dword();
}

void MsgPayload::write(driver::ArchiveWriter& ar) const { ar.write_string(text); }

void MsgPayload::read(driver::ArchiveReader& ar) { text = ar.read_string(); }

// The size goes second on the wire, between the two integers.
void BinaryPayload::write(driver::ArchiveWriter& ar) const {
  ar.write_long(data1);
  ar.write_dword(static_cast<std::uint32_t>(bytes.size()));
  ar.write_long(data2);
  ar.write_string(text1);
  ar.write_string(text2);
  for (const char c : bytes) ar.write_byte(static_cast<std::uint8_t>(c));
}

void BinaryPayload::read(driver::ArchiveReader& ar) {
  data1 = ar.read_long();
  const std::uint32_t size = ar.read_dword();
  data2 = ar.read_long();
  text1 = ar.read_string();
  text2 = ar.read_string();
  if (size > kMaxMessage) throw driver::ArchiveError("binary data of " + std::to_string(size) + " bytes");
  // One byte at a time: the reader would otherwise be asked for all of a
  // hostile size before a byte of it had arrived.
  bytes.clear();
  for (std::uint32_t i = 0; i < size; ++i) bytes.push_back(static_cast<char>(ar.read_byte()));
}

void StringListPayload::write(driver::ArchiveWriter& ar) const {
  ar.write_count(static_cast<std::uint32_t>(texts.size()));
  for (const std::string& t : texts) ar.write_string(t);
}

void StringListPayload::read(driver::ArchiveReader& ar) {
  const std::uint32_t count = ar.read_count(0);
  if (count > kMaxListEntries) {
    throw driver::ArchiveError("list of " + std::to_string(count) + " texts");
  }
  texts.clear();
  for (std::uint32_t i = 0; i < count; ++i) texts.push_back(ar.read_string());
}

// Only queries 2 and 5 carry the parameter and only 3 the job number.
void QueryPayload::write(driver::ArchiveWriter& ar) const {
  ar.write_long(number);
  if (number == 2 || number == 5) ar.write_string(parm);
  if (number == 3) ar.write_dword(job);
}

void QueryPayload::read(driver::ArchiveReader& ar) {
  number = ar.read_long();
  if (number == 2 || number == 5) parm = ar.read_string();
  if (number == 3) job = ar.read_dword();
}

void IntPayload::write(driver::ArchiveWriter& ar) const { ar.write_long(value); }

void IntPayload::read(driver::ArchiveReader& ar) { value = ar.read_long(); }

std::unique_ptr<CSocketDataObject::Payload> make_payload(std::uint32_t type) {
  switch (type) {
    case CSocketDataObject::eSocketDataState:
      return std::make_unique<StatePayload>();
    case CSocketDataObject::eSocketDataMsg:
      return std::make_unique<MsgPayload>();
    case CSocketDataObject::eSocketDataBinary:
      return std::make_unique<BinaryPayload>();
    case CSocketDataObject::eSocketDataStringList:
      return std::make_unique<StringListPayload>();
    case CSocketDataObject::eSocketDataQuery:
      return std::make_unique<QueryPayload>();
    case CSocketDataObject::eSocketDataInt:
      return std::make_unique<IntPayload>();
    default:
      return nullptr;
  }
}

}  // namespace kerfline::remote
