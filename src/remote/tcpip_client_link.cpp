// The remote-link members of CTcpIpClientDeviceSettings: the connection lives
// in the settings' private state as a Link.
#include <memory>
#include <new>
#include <string>

#include "devconfig/settings_data.hpp"
#include "driver/text_dictionary.hpp"
#include "kerfline/device_settings.hpp"
#include "platform/host_hooks.hpp"
#include "remote/link.hpp"

namespace {

using kerfline::remote::Link;

// The configured "IP_PORT" is an offset from this port.
constexpr std::int32_t kPortBase = 7867;
constexpr std::uint32_t kRetryTextId = 1604;
constexpr std::uint32_t kRetryCaptionId = 1200;

Link* link_of(CTcpIpClientDeviceSettings::Data* data) {
  return data != nullptr ? static_cast<Link*>(data->link.get()) : nullptr;
}

bool ask_to_retry() {
  namespace text = kerfline::driver;
  const int answer = kerfline::platform::host::message_box(text::dictionary_text(kRetryTextId),
                                                           text::dictionary_text(kRetryCaptionId) + ":",
                                                           KERFLINE_MB_YESNO | KERFLINE_MB_ICONQUESTION);
  return answer == KERFLINE_IDYES;
}

}  // namespace

int32_t CTcpIpClientDeviceSettings::Connect(const char* szHost, int32_t nPort) {
  try {
    if (m_pTcpIp == nullptr) return 0;
    Link* link = link_of(m_pTcpIp);
    if (link != nullptr && link->connected()) return 1;
    if (nPort < 1 - kPortBase || nPort > 65535 - kPortBase) return 0;
    if (link == nullptr) {
      m_pTcpIp->link = std::make_shared<Link>();
      link = link_of(m_pTcpIp);
    }
    const std::string host = szHost != nullptr ? szHost : "";
    const auto port = static_cast<std::uint16_t>(nPort + kPortBase);
    while (!link->connect(host, port, nullptr)) {
      if (!ask_to_retry()) {
        FreeSocketMem();
        return 0;
      }
    }
    return 1;
  } catch (const std::bad_alloc&) {
    FreeSocketMem();
    return 0;
  }
}

int32_t CTcpIpClientDeviceSettings::DisConnect() {
  CSocketDataObjectState request;
  request.SetState(1);
  request.SetJobNr(0);
  SendMsg(&request);
  const std::unique_ptr<CSocketDataObject> answer(ReceiveMsg());
  FreeSocketMem();
  return answer != nullptr && answer->GetType() == CSocketDataObject::eSocketDataState ? 1 : 0;
}

int32_t CTcpIpClientDeviceSettings::SendMsg(const CSocketDataObject* pMsg) {
  Link* link = link_of(m_pTcpIp);
  if (link == nullptr || !link->connected() || pMsg == nullptr) return 0;
  try {
    ProcessPendingRead();
    return link->send(*pMsg) ? 1 : 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

CSocketDataObject* CTcpIpClientDeviceSettings::ReceiveMsg() {
  Link* link = link_of(m_pTcpIp);
  if (link == nullptr) return nullptr;
  try {
    return link->receive(nullptr).release();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void CTcpIpClientDeviceSettings::SetReceiveTimeout(int32_t nMilliseconds) {
  if (m_pTcpIp == nullptr) return;
  try {
    if (m_pTcpIp->link == nullptr) m_pTcpIp->link = std::make_shared<Link>();
    link_of(m_pTcpIp)->set_receive_timeout(nMilliseconds > 0 ? nMilliseconds : 1);
  } catch (const std::bad_alloc&) {
  }
}

int32_t CTcpIpClientDeviceSettings::GetReceiveTimeout() const {
  const Link* link = link_of(m_pTcpIp);
  return link != nullptr ? link->receive_timeout() : kerfline::remote::kDefaultReceiveTimeout;
}

void CTcpIpClientDeviceSettings::ProcessPendingRead() {
  Link* link = link_of(m_pTcpIp);
  if (link == nullptr) return;
  try {
    link->discard_pending();
  } catch (const std::bad_alloc&) {
  }
}

void CTcpIpClientDeviceSettings::FreeSocketMem() {
  if (Link* link = link_of(m_pTcpIp)) link->release();
}
