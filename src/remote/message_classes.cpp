// Accessors of the six message classes. Each object's payload is of its own
// class's kind from construction on (assignment keeps it so), hence the
// unchecked casts.
#include <cstring>
#include <new>

#include "platform/library_memory.hpp"
#include "remote/payloads.hpp"

namespace rm = kerfline::remote;
using kerfline::platform::library_alloc;
using kerfline::platform::library_free;
using kerfline::platform::library_strdup;

namespace {

template <typename P>
P& body(CSocketDataObject::Payload* p) {
  return *static_cast<P*>(p);
}

// Texts given as null mean "".
std::string text_or_empty(const char* s) { return s != nullptr ? std::string(s) : std::string(); }

// Runs a setter; short memory leaves the object unchanged.
template <typename F>
void guarded(F&& f) {
  try {
    f();
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace

// Class names a class and its constructors, which parentheses would break.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define KERFLINE_MESSAGE_BASICS(Class, PayloadType)              \
  Class::Class() : CSocketDataObject(new rm::PayloadType) {}     \
  Class::Class(const Class& other) : CSocketDataObject(other) {} \
  Class& Class::operator=(const Class& other) {                  \
    CSocketDataObject::operator=(other);                         \
    return *this;                                                \
  }                                                              \
  Class::~Class() = default;
// NOLINTEND(bugprone-macro-parentheses)

KERFLINE_MESSAGE_BASICS(CSocketDataObjectState, StatePayload)
KERFLINE_MESSAGE_BASICS(CSocketDataObjectMsg, MsgPayload)
KERFLINE_MESSAGE_BASICS(CSocketDataObjectBinary, BinaryPayload)
KERFLINE_MESSAGE_BASICS(CSocketDataObjectStringList, StringListPayload)
KERFLINE_MESSAGE_BASICS(CSocketDataObjectQuery, QueryPayload)
KERFLINE_MESSAGE_BASICS(CSocketDataObjectInt, IntPayload)

#undef KERFLINE_MESSAGE_BASICS

int32_t CSocketDataObjectState::GetState() const { return body<rm::StatePayload>(m_pPayload).state; }
void CSocketDataObjectState::SetState(int32_t nState) { body<rm::StatePayload>(m_pPayload).state = nState; }
uint32_t CSocketDataObjectState::GetJobNr() const { return body<rm::StatePayload>(m_pPayload).job; }
void CSocketDataObjectState::SetJobNr(uint32_t nJobNr) { body<rm::StatePayload>(m_pPayload).job = nJobNr; }

const char* CSocketDataObjectMsg::GetMsg() const { return body<rm::MsgPayload>(m_pPayload).text.c_str(); }
void CSocketDataObjectMsg::SetMsg(const char* szMsg) {
  guarded([&] { body<rm::MsgPayload>(m_pPayload).text = text_or_empty(szMsg); });
}

int32_t CSocketDataObjectBinary::GetData(SOCKBINDATA* pOut) const {
  if (pOut == nullptr) return 0;
  *pOut = SOCKBINDATA{};
  const rm::BinaryPayload& p = body<rm::BinaryPayload>(m_pPayload);
  SOCKBINDATA out{};
  out.nSize = static_cast<uint32_t>(p.bytes.size());
  out.nData1 = p.data1;
  out.nData2 = p.data2;
  if (!p.bytes.empty()) {
    out.pData = library_alloc(p.bytes.size());
    if (out.pData != nullptr) std::memcpy(out.pData, p.bytes.data(), p.bytes.size());
  }
  out.szText1 = library_strdup(p.text1);
  out.szText2 = library_strdup(p.text2);
  if ((out.pData == nullptr && !p.bytes.empty()) || out.szText1 == nullptr || out.szText2 == nullptr) {
    FreeData(&out);
    return 0;
  }
  *pOut = out;
  return 1;
}

void CSocketDataObjectBinary::SetData(const SOCKBINDATA* pIn) {
  if (pIn == nullptr) return;
  guarded([&] {
    std::string text1 = text_or_empty(pIn->szText1);
    std::string text2 = text_or_empty(pIn->szText2);
    std::string bytes;
    if (pIn->pData != nullptr) bytes.assign(static_cast<const char*>(pIn->pData), pIn->nSize);
    rm::BinaryPayload& p = body<rm::BinaryPayload>(m_pPayload);
    p.data1 = pIn->nData1;
    p.data2 = pIn->nData2;
    p.text1.swap(text1);
    p.text2.swap(text2);
    p.bytes.swap(bytes);
  });
}

void CSocketDataObjectBinary::FreeData(SOCKBINDATA* pData) {
  if (pData == nullptr) return;
  library_free(pData->pData);
  library_free(pData->szText1);
  library_free(pData->szText2);
  *pData = SOCKBINDATA{};
}

int32_t CSocketDataObjectStringList::GetCount() const {
  return static_cast<int32_t>(body<rm::StringListPayload>(m_pPayload).texts.size());
}

const char* CSocketDataObjectStringList::GetAt(int32_t nIndex) const {
  const auto& texts = body<rm::StringListPayload>(m_pPayload).texts;
  if (nIndex < 0 || static_cast<std::size_t>(nIndex) >= texts.size()) return nullptr;
  return texts[static_cast<std::size_t>(nIndex)].c_str();
}

void CSocketDataObjectStringList::SetData(const char* const* pTexts, int32_t nCount) {
  guarded([&] {
    std::vector<std::string> fresh;
    if (pTexts != nullptr && nCount > 0) {
      fresh.reserve(static_cast<std::size_t>(nCount));
      for (int32_t i = 0; i < nCount; ++i) fresh.push_back(text_or_empty(pTexts[i]));
    }
    body<rm::StringListPayload>(m_pPayload).texts = std::move(fresh);
  });
}

void CSocketDataObjectStringList::AddTail(const char* szText) {
  guarded([&] { body<rm::StringListPayload>(m_pPayload).texts.push_back(text_or_empty(szText)); });
}

int32_t CSocketDataObjectQuery::GetQueryNr() const { return body<rm::QueryPayload>(m_pPayload).number; }
void CSocketDataObjectQuery::SetQueryNr(int32_t nQueryNr) {
  body<rm::QueryPayload>(m_pPayload).number = nQueryNr;
}
uint32_t CSocketDataObjectQuery::GetJobNr() const { return body<rm::QueryPayload>(m_pPayload).job; }
void CSocketDataObjectQuery::SetJobNr(uint32_t nJobNr) { body<rm::QueryPayload>(m_pPayload).job = nJobNr; }
const char* CSocketDataObjectQuery::GetQueryParm() const {
  return body<rm::QueryPayload>(m_pPayload).parm.c_str();
}
void CSocketDataObjectQuery::SetQueryParm(const char* szParm) {
  guarded([&] { body<rm::QueryPayload>(m_pPayload).parm = text_or_empty(szParm); });
}

int32_t CSocketDataObjectInt::GetData() const { return body<rm::IntPayload>(m_pPayload).value; }
void CSocketDataObjectInt::SetData(int32_t nValue) { body<rm::IntPayload>(m_pPayload).value = nValue; }
