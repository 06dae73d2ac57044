// The common base of the remote-link messages and whole-message reading and
// writing.
#include <cstring>
#include <new>
#include <typeinfo>

#include "remote/payloads.hpp"

namespace drv = kerfline::driver;

CSocketDataObject::CSocketDataObject() : m_pPayload(nullptr) {}

CSocketDataObject::CSocketDataObject(Payload* pPayload) : m_pPayload(pPayload) {}

CSocketDataObject::CSocketDataObject(const CSocketDataObject& other)
    : m_pPayload(other.m_pPayload != nullptr ? other.m_pPayload->clone().release() : nullptr) {}

CSocketDataObject& CSocketDataObject::operator=(const CSocketDataObject& other) {
  if (this == &other) return *this;
  const bool bare = typeid(*this) == typeid(CSocketDataObject);
  if (!bare && GetType() != other.GetType()) return *this;
  try {
    Payload* copy = other.m_pPayload != nullptr ? other.m_pPayload->clone().release() : nullptr;
    delete m_pPayload;
    m_pPayload = copy;
  } catch (const std::bad_alloc&) {
  }
  return *this;
}

CSocketDataObject::~CSocketDataObject() { delete m_pPayload; }

CSocketDataObject::ESocketDataType CSocketDataObject::GetType() const {
  return m_pPayload != nullptr ? m_pPayload->type : eSocketDataNone;
}

int32_t CSocketDataObject::Serialize(unsigned char* pBuffer, uint32_t nSize) const {
  try {
    drv::ArchiveWriter ar;
    CSocketDataObjectWire::write(*this, ar);
    const std::string& bytes = ar.bytes();
    if (bytes.size() > INT32_MAX) return -3;
    if (pBuffer == nullptr || bytes.size() > nSize) return -static_cast<int32_t>(bytes.size());
    // NOLINTNEXTLINE(bugprone-not-null-terminated-result): message bytes, not a text
    std::memcpy(pBuffer, bytes.data(), bytes.size());
    return static_cast<int32_t>(bytes.size());
  } catch (const std::bad_alloc&) {
    return -3;
  }
}

int32_t CSocketDataObject::Read(const unsigned char* pBytes, uint32_t nSize) {
  if (m_pPayload == nullptr) return 0;
  if (pBytes == nullptr) nSize = 0;
  try {
    drv::ArchiveReader ar(std::string_view(reinterpret_cast<const char*>(pBytes), nSize));
    std::unique_ptr<Payload> fresh = m_pPayload->clone();
    fresh->read(ar);
    if (ar.position() > INT32_MAX) return -1;
    delete m_pPayload;
    m_pPayload = fresh.release();
    return static_cast<int32_t>(ar.position());
  } catch (const drv::ArchiveError&) {
    return -1;
  } catch (const std::bad_alloc&) {
    return -1;
  }
}

CSocketDataObject* CSocketDataObject::CreateObject(const unsigned char* pBytes, uint32_t nSize,
                                                   uint32_t* pnUsed) {
  if (pnUsed != nullptr) *pnUsed = 0;
  if (pBytes == nullptr) nSize = 0;
  try {
    drv::ArchiveReader ar(std::string_view(reinterpret_cast<const char*>(pBytes), nSize));
    std::unique_ptr<CSocketDataObject> message = CSocketDataObjectWire::read(ar);
    if (pnUsed != nullptr) *pnUsed = static_cast<uint32_t>(ar.position());
    return message.release();
  } catch (const drv::ArchiveError&) {
    return nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void CSocketDataObjectWire::write(const CSocketDataObject& message, drv::ArchiveWriter& ar) {
  ar.write_dword(static_cast<std::uint32_t>(message.GetType()));
  if (message.m_pPayload != nullptr) message.m_pPayload->write(ar);
}

std::unique_ptr<CSocketDataObject> CSocketDataObjectWire::read(drv::ArchiveReader& ar) {
  const std::uint32_t type = ar.read_dword();
  std::unique_ptr<CSocketDataObject::Payload> payload = kerfline::remote::make_payload(type);
  if (!payload) return nullptr;
  payload->read(ar);
  std::unique_ptr<CSocketDataObject> message;
  switch (type) {
    case CSocketDataObject::eSocketDataState:
      message = std::make_unique<CSocketDataObjectState>();
      break;
    case CSocketDataObject::eSocketDataMsg:
      message = std::make_unique<CSocketDataObjectMsg>();
      break;
    case CSocketDataObject::eSocketDataBinary:
      message = std::make_unique<CSocketDataObjectBinary>();
      break;
    case CSocketDataObject::eSocketDataStringList:
      message = std::make_unique<CSocketDataObjectStringList>();
      break;
    case CSocketDataObject::eSocketDataQuery:
      message = std::make_unique<CSocketDataObjectQuery>();
      break;
    default:
      message = std::make_unique<CSocketDataObjectInt>();
      break;
  }
  delete message->m_pPayload;
  message->m_pPayload = payload.release();
  return message;
}
