// CRemoteDeviceSettings and CTcpIpClientDeviceSettings: devices reached
// through another plot manager.
#include <new>

#include "devconfig/settings_data.hpp"
#include "devconfig/spool_paths.hpp"
#include "platform/ini.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::devconfig::guarded;
using kerfline::devconfig::text_of;

namespace {

const CRemoteDeviceSettings::Data kEmptyRemote{};
const CTcpIpClientDeviceSettings::Data kEmptyTcpIp{};

template <typename T>
const T& view(const T* d, const T& empty) {
  return d != nullptr ? *d : empty;
}

}  // namespace

// --- CRemoteDeviceSettings ---------------------------------------------------

CRemoteDeviceSettings::CRemoteDeviceSettings() : m_pRemote(new (std::nothrow) Data) {
  SetDeviceType(DEVTYPE_REMOTE);
}

CRemoteDeviceSettings::~CRemoteDeviceSettings() { delete m_pRemote; }

void CRemoteDeviceSettings::ReadFromIni(const char* szIniFile) {
  CDriverDeviceSettings::ReadFromIni(szIniFile);
  if (m_pRemote == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    using kerfline::devconfig::read_text;
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    Data d;
    d.remote_index_file = read_text(s, "DevRemoteIndexFile", "", file);
    d.remote_ini = read_text(s, "DevRemoteIni", "", file);
    d.server_device_name = read_text(s, "DevRemoteDevName", "", file);
    d.server_drv_file_name = read_text(s, "DevDrvFileName", "", file);
    d.server_drv_info = read_text(s, "DevDrvInfo", "", file);
    *m_pRemote = std::move(d);
  });
}

void CRemoteDeviceSettings::WriteToIni(const char* szIniFile) {
  CDriverDeviceSettings::WriteToIni(szIniFile);
  if (m_pRemote == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    const Data& d = *m_pRemote;
    ini::write_value(s, "DevRemoteIndexFile", d.remote_index_file, file);
    ini::write_value(s, "DevRemoteIni", d.remote_ini, file);
    ini::write_value(s, "DevRemoteDevName", d.server_device_name, file);
    ini::write_value(s, "DevDrvFileName", d.server_drv_file_name, file);
    ini::write_value(s, "DevDrvInfo", d.server_drv_info, file);
  });
}

int32_t CRemoteDeviceSettings::InitDir() { return CDriverDeviceSettings::InitDir(); }

void CRemoteDeviceSettings::CopySettings(const CRemoteDeviceSettings* pOther) {
  if (pOther == nullptr || pOther == this) return;
  CBaseDeviceSettings::CopySettings(pOther);
  if (m_pRemote != nullptr && pOther->m_pRemote != nullptr) {
    guarded([&] {
      m_pRemote->remote_index_file = pOther->m_pRemote->remote_index_file;
      m_pRemote->remote_ini = pOther->m_pRemote->remote_ini;
    });
  }
}

const char* CRemoteDeviceSettings::GetRemoteIndexFile() const {
  return view(m_pRemote, kEmptyRemote).remote_index_file.c_str();
}
void CRemoteDeviceSettings::SetRemoteIndexFile(const char* sz) {
  if (m_pRemote != nullptr) guarded([&] { m_pRemote->remote_index_file = text_of(sz); });
}
const char* CRemoteDeviceSettings::GetRemoteIniFile() const {
  return view(m_pRemote, kEmptyRemote).remote_ini.c_str();
}
void CRemoteDeviceSettings::SetRemoteIniFile(const char* sz) {
  if (m_pRemote != nullptr) guarded([&] { m_pRemote->remote_ini = text_of(sz); });
}
const char* CRemoteDeviceSettings::GetServerDeviceName() const {
  return view(m_pRemote, kEmptyRemote).server_device_name.c_str();
}
void CRemoteDeviceSettings::SetServerDeviceName(const char* sz) {
  if (m_pRemote != nullptr) guarded([&] { m_pRemote->server_device_name = text_of(sz); });
}
const char* CRemoteDeviceSettings::GetServerDriverFileName() const {
  return view(m_pRemote, kEmptyRemote).server_drv_file_name.c_str();
}
const char* CRemoteDeviceSettings::GetServerDriverInfo() const {
  return view(m_pRemote, kEmptyRemote).server_drv_info.c_str();
}

// --- CTcpIpClientDeviceSettings -----------------------------------------------

CTcpIpClientDeviceSettings::CTcpIpClientDeviceSettings() : m_pTcpIp(new (std::nothrow) Data) {
  SetDeviceType(DEVTYPE_TCPIP_CLIENT);
}

CTcpIpClientDeviceSettings::~CTcpIpClientDeviceSettings() { delete m_pTcpIp; }

void CTcpIpClientDeviceSettings::ReadFromIni(const char* szIniFile) {
  // The driver keys belong to the server's side here, so the driver class
  // is skipped.
  CBaseDeviceSettings::ReadFromIni(szIniFile);  // NOLINT(bugprone-parent-virtual-call)
  if (m_pTcpIp == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    using kerfline::devconfig::read_text;
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    Data d = *m_pTcpIp;
    d.server_device_name = read_text(s, "DevServerDevName", "", file, 256);
    kerfline::devconfig::parse_address(read_text(s, "IP_ADDR", "", file), d.address);
    d.tcpip_port = ini::read_int(s, "IP_PORT", 0, file);
    d.tcpip_type = ini::read_int(s, "TcpIpType", TCPIPTYPE_PLOTMAN, file);
    d.server_drv_file_name = read_text(s, "DevDrvFileName", "", file);
    d.server_drv_info = read_text(s, "DevDrvInfo", "", file);
    d.host_name = read_text(s, "TcpIpHostname", "", file);
    *m_pTcpIp = std::move(d);
  });
}

void CTcpIpClientDeviceSettings::WriteToIni(const char* szIniFile) {
  // As in ReadFromIni: the driver keys are the server's.
  CBaseDeviceSettings::WriteToIni(szIniFile);  // NOLINT(bugprone-parent-virtual-call)
  if (m_pTcpIp == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    using kerfline::devconfig::int_text;
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    const Data& d = *m_pTcpIp;
    ini::write_value(s, "DevServerDevName", d.server_device_name, file);
    ini::write_value(s, "IP_ADDR", d.address.text, file);
    ini::write_value(s, "IP_PORT", int_text(d.tcpip_port), file);
    ini::write_value(s, "TcpIpType", int_text(d.tcpip_type), file);
    ini::write_value(s, "DevDrvFileName", d.server_drv_file_name, file);
    ini::write_value(s, "DevDrvInfo", d.server_drv_info, file);
    ini::write_value(s, "TcpIpHostname", d.host_name, file);
  });
}

void CTcpIpClientDeviceSettings::CopySettings(const CTcpIpClientDeviceSettings* pOther) {
  if (pOther == nullptr || pOther == this) return;
  CBaseDeviceSettings::CopySettings(pOther);
  if (m_pTcpIp != nullptr && pOther->m_pTcpIp != nullptr) {
    guarded([&] {
      Data d = *pOther->m_pTcpIp;
      d.link = m_pTcpIp->link;  // a connection stays with its own object
      *m_pTcpIp = std::move(d);
    });
  }
}

const char* CTcpIpClientDeviceSettings::GetServerDeviceName() const {
  return view(m_pTcpIp, kEmptyTcpIp).server_device_name.c_str();
}
void CTcpIpClientDeviceSettings::SetServerDeviceName(const char* sz) {
  if (m_pTcpIp != nullptr) guarded([&] { m_pTcpIp->server_device_name = text_of(sz); });
}
const char* CTcpIpClientDeviceSettings::GetTCPIPAddress() const {
  return view(m_pTcpIp, kEmptyTcpIp).address.text.c_str();
}
void CTcpIpClientDeviceSettings::GetTCPIPAddress(unsigned char* pBytes) const {
  if (pBytes == nullptr) return;
  for (int i = 0; i < 4; ++i) pBytes[i] = view(m_pTcpIp, kEmptyTcpIp).address.bytes[i];
}
void CTcpIpClientDeviceSettings::SetTCPIPAddress(const char* sz) {
  if (m_pTcpIp != nullptr)
    guarded([&] { kerfline::devconfig::parse_address(text_of(sz), m_pTcpIp->address); });
}
int32_t CTcpIpClientDeviceSettings::GetTCPIPPort() const { return view(m_pTcpIp, kEmptyTcpIp).tcpip_port; }
void CTcpIpClientDeviceSettings::SetTCPIPPort(int32_t n) {
  if (m_pTcpIp != nullptr) m_pTcpIp->tcpip_port = n;
}
int32_t CTcpIpClientDeviceSettings::GetTcpIpType() const { return view(m_pTcpIp, kEmptyTcpIp).tcpip_type; }
void CTcpIpClientDeviceSettings::SetTcpIpType(int32_t n) {
  if (m_pTcpIp != nullptr) m_pTcpIp->tcpip_type = n;
}
const char* CTcpIpClientDeviceSettings::GetServerDriverFileName() const {
  return view(m_pTcpIp, kEmptyTcpIp).server_drv_file_name.c_str();
}
const char* CTcpIpClientDeviceSettings::GetServerDriverInfo() const {
  return view(m_pTcpIp, kEmptyTcpIp).server_drv_info.c_str();
}
const char* CTcpIpClientDeviceSettings::GetTCPIPHostName() const {
  return view(m_pTcpIp, kEmptyTcpIp).host_name.c_str();
}
void CTcpIpClientDeviceSettings::SetTCPIPHostName(const char* sz) {
  if (m_pTcpIp != nullptr) guarded([&] { m_pTcpIp->host_name = text_of(sz); });
}
