// CDriverDeviceSettings, CClientDeviceSettings and CCutterDeviceSettings.
#include <charconv>
#include <new>

#include "devconfig/settings_data.hpp"
#include "devconfig/spool_paths.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::devconfig::guarded;
using kerfline::devconfig::text_of;

namespace kerfline::devconfig {

void parse_address(const std::string& text, IpAddress& out) {
  IpAddress parsed;
  const char* p = text.data();
  const char* end = p + text.size();
  for (int i = 0; i < 4; ++i) {
    unsigned value = 256;
    const auto r = std::from_chars(p, end, value);
    const bool last = i == 3;
    if (r.ec != std::errc() || value > 255 || (last ? r.ptr != end : (r.ptr == end || *r.ptr != '.'))) {
      out = IpAddress{};
      return;
    }
    parsed.bytes[i] = static_cast<unsigned char>(value);
    p = last ? r.ptr : r.ptr + 1;
  }
  parsed.text = text;
  out = std::move(parsed);
}

}  // namespace kerfline::devconfig

namespace {

const CDriverDeviceSettings::Data kEmptyDriver{};
const CCutterDeviceSettings::Data kEmptyCutter{};

template <typename T>
const T& view(const T* d, const T& empty) {
  return d != nullptr ? *d : empty;
}

}  // namespace

// --- CDriverDeviceSettings ---------------------------------------------------

CDriverDeviceSettings::CDriverDeviceSettings() : m_pDriver(new (std::nothrow) Data) {
  if (m_pDriver != nullptr) {
    guarded([&] {
      namespace platform = kerfline::platform;
      m_pDriver->drv_path = platform::join_path(platform::home_dir(), platform::native_separators("cutter/"));
    });
  }
}

CDriverDeviceSettings::~CDriverDeviceSettings() { delete m_pDriver; }

void CDriverDeviceSettings::ReadFromIni(const char* szIniFile) {
  CBaseDeviceSettings::ReadFromIni(szIniFile);
  if (m_pDriver == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    using kerfline::devconfig::read_text;
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    Data d = *m_pDriver;
    if (std::string path = read_text(s, "DevDrvPath", "", file); !path.empty()) d.drv_path = std::move(path);
    d.drv_file_name = read_text(s, "DevDrvFileName", "", file);
    d.drv_name = read_text(s, "DevDrvInfo", "", file);
    *m_pDriver = std::move(d);
  });
}

void CDriverDeviceSettings::WriteToIni(const char* szIniFile) {
  CBaseDeviceSettings::WriteToIni(szIniFile);
  if (m_pDriver == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    ini::write_value(s, "DevDrvPath", m_pDriver->drv_path, file);
    ini::write_value(s, "DevDrvFileName", m_pDriver->drv_file_name, file);
    ini::write_value(s, "DevDrvInfo", m_pDriver->drv_name, file);
  });
}

void CDriverDeviceSettings::CopySettings(const CDriverDeviceSettings* pOther) {
  if (pOther == nullptr || pOther == this) return;
  CBaseDeviceSettings::CopySettings(pOther);
  if (m_pDriver != nullptr && pOther->m_pDriver != nullptr) {
    guarded([&] { *m_pDriver = *pOther->m_pDriver; });
  }
}

const char* CDriverDeviceSettings::GetDrvPath() const {
  return view(m_pDriver, kEmptyDriver).drv_path.c_str();
}
void CDriverDeviceSettings::SetDrvPath(const char* sz) {
  if (m_pDriver != nullptr) guarded([&] { m_pDriver->drv_path = text_of(sz); });
}
const char* CDriverDeviceSettings::GetDrvFileName() const {
  return view(m_pDriver, kEmptyDriver).drv_file_name.c_str();
}
void CDriverDeviceSettings::SetDrvFileName(const char* sz) {
  if (m_pDriver != nullptr) guarded([&] { m_pDriver->drv_file_name = text_of(sz); });
}
const char* CDriverDeviceSettings::GetDrvName() const {
  return view(m_pDriver, kEmptyDriver).drv_name.c_str();
}
void CDriverDeviceSettings::SetDrvName(const char* sz) {
  if (m_pDriver != nullptr) guarded([&] { m_pDriver->drv_name = text_of(sz); });
}

// --- CClientDeviceSettings ---------------------------------------------------

CClientDeviceSettings::CClientDeviceSettings() = default;
CClientDeviceSettings::~CClientDeviceSettings() = default;

void CClientDeviceSettings::CopySettings(const CClientDeviceSettings* pOther) {
  CBaseDeviceSettings::CopySettings(pOther);
}

// --- CCutterDeviceSettings ---------------------------------------------------

CCutterDeviceSettings::CCutterDeviceSettings() : m_pCutter(new (std::nothrow) Data) {
  SetDeviceType(DEVTYPE_CUTTER);
}

CCutterDeviceSettings::CCutterDeviceSettings(const char* szDeviceName) : CCutterDeviceSettings() {
  SetDeviceName(szDeviceName);
}

CCutterDeviceSettings::~CCutterDeviceSettings() { delete m_pCutter; }

void CCutterDeviceSettings::ReadFromIni(const char* szIniFile) {
  CDriverDeviceSettings::ReadFromIni(szIniFile);
  if (m_pCutter == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    using kerfline::devconfig::read_text;
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    Data d = *m_pCutter;
    kerfline::devconfig::parse_address(read_text(s, "IP_ADDR", "0.0.0.0", file), d.address);
    d.tcpip_port = ini::read_int(s, "IP_PORT", 0, file);
    d.spooler = ini::read_int(s, "DevFlgUseSpooler", 0, file);
    const std::int32_t server = ini::read_int(s, "DevFlgServer", 0, file);
    d.job_nr = ini::get_int(s.c_str(), "ActJobNr", 0, file);
    d.usb_device_name = read_text(s, "DevUsbDeviceName", "", file);
    d.port_type = ini::read_int(s, "DevPortType", PORTTYPE_PATH, file);
    if (server != 0) d.server_port = ini::read_int(s, "DevServerPort", 1, file);
    *m_pCutter = std::move(d);
    m_pBase->server = server;
  });
}

void CCutterDeviceSettings::WriteToIni(const char* szIniFile) {
  CDriverDeviceSettings::WriteToIni(szIniFile);
  if (m_pCutter == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    using namespace kerfline::devconfig;
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    const Data& d = *m_pCutter;
    ini::write_value(s, "IP_ADDR", d.address.text, file);
    ini::write_value(s, "IP_PORT", int_text(d.tcpip_port), file);
    ini::write_value(s, "DevFlgUseSpooler", flag_text(d.spooler), file);
    ini::write_value(s, "DevFlgServer", flag_text(m_pBase->server), file);
    ini::write_value(s, "ActJobNr", uint_text(d.job_nr), file);
    ini::write_value(s, "DevUsbDeviceName", d.usb_device_name, file);
    ini::write_value(s, "DevPortType", int_text(d.port_type), file);
    if (m_pBase->server != 0) ini::write_value(s, "DevServerPort", int_text(d.server_port), file);
  });
}

void CCutterDeviceSettings::CopySettings(const CCutterDeviceSettings* pOther) {
  if (pOther == nullptr || pOther == this) return;
  CBaseDeviceSettings::CopySettings(pOther);
  if (m_pCutter != nullptr && pOther->m_pCutter != nullptr) {
    guarded([&] { *m_pCutter = *pOther->m_pCutter; });
  }
}

const char* CCutterDeviceSettings::GetTCPIPAddress() const {
  return view(m_pCutter, kEmptyCutter).address.text.c_str();
}
void CCutterDeviceSettings::GetTCPIPAddress(unsigned char* pBytes) const {
  if (pBytes == nullptr) return;
  for (int i = 0; i < 4; ++i) pBytes[i] = view(m_pCutter, kEmptyCutter).address.bytes[i];
}
void CCutterDeviceSettings::SetTCPIPAddress(const char* sz) {
  if (m_pCutter != nullptr)
    guarded([&] { kerfline::devconfig::parse_address(text_of(sz), m_pCutter->address); });
}
int32_t CCutterDeviceSettings::GetTCPIPPort() const { return view(m_pCutter, kEmptyCutter).tcpip_port; }
void CCutterDeviceSettings::SetTCPIPPort(int32_t n) {
  if (m_pCutter != nullptr) m_pCutter->tcpip_port = n;
}
int32_t CCutterDeviceSettings::GetSpoolerFlag() const { return view(m_pCutter, kEmptyCutter).spooler; }
void CCutterDeviceSettings::SetSpoolerFlag(int32_t n) {
  if (m_pCutter != nullptr) m_pCutter->spooler = n;
}
uint32_t CCutterDeviceSettings::GetJobNr() const { return view(m_pCutter, kEmptyCutter).job_nr; }
void CCutterDeviceSettings::SetJobNr(uint32_t n) {
  if (m_pCutter != nullptr) m_pCutter->job_nr = n;
}
const char* CCutterDeviceSettings::GetUSBDeviceName() const {
  return view(m_pCutter, kEmptyCutter).usb_device_name.c_str();
}
void CCutterDeviceSettings::SetUSBDeviceName(const char* sz) {
  if (m_pCutter != nullptr) guarded([&] { m_pCutter->usb_device_name = text_of(sz); });
}
int32_t CCutterDeviceSettings::GetPortType() const { return view(m_pCutter, kEmptyCutter).port_type; }
void CCutterDeviceSettings::SetPortType(int32_t n) {
  if (m_pCutter != nullptr) m_pCutter->port_type = n;
}
int32_t CCutterDeviceSettings::GetServerPort() const { return view(m_pCutter, kEmptyCutter).server_port; }
void CCutterDeviceSettings::SetServerPort(int32_t n) {
  if (m_pCutter != nullptr) m_pCutter->server_port = n;
}
