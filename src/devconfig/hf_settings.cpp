// CHFDeviceSettings, CExtHFDeviceSettings and CLocaleDeviceSettings:
// locally started applications and local devices.
#include <new>

#include "devconfig/settings_data.hpp"
#include "devconfig/spool_paths.hpp"
#include "platform/ini.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::devconfig::guarded;
using kerfline::devconfig::text_of;

namespace {

const CHFDeviceSettings::Data kEmptyHF{};
const CExtHFDeviceSettings::Data kEmptyExtHF{};
const CLocaleDeviceSettings::Data kEmptyLocale{};

template <typename T>
const T& view(const T* d, const T& empty) {
  return d != nullptr ? *d : empty;
}

}  // namespace

// --- CHFDeviceSettings -------------------------------------------------------

CHFDeviceSettings::CHFDeviceSettings() : m_pHF(new (std::nothrow) Data) {}
CHFDeviceSettings::~CHFDeviceSettings() { delete m_pHF; }

void CHFDeviceSettings::ReadFromIni(const char* szIniFile) {
  CBaseDeviceSettings::ReadFromIni(szIniFile);
  if (m_pHF == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    Data d;
    d.start_app_tmpl = kerfline::devconfig::read_text(s, "DevHfStartAppTmpl", "", file);
    d.locale_hf = ini::read_int(s, "DevFlgComLptHf", 0, file);
    d.start_app = ini::read_int(s, "DevFlgStartApp", 0, file);
    d.port_type = ini::read_int(s, "DevPortType", PORTTYPE_NONE, file);
    *m_pHF = std::move(d);
  });
}

void CHFDeviceSettings::WriteToIni(const char* szIniFile) {
  CBaseDeviceSettings::WriteToIni(szIniFile);
  if (m_pHF == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    using namespace kerfline::devconfig;
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    ini::write_value(s, "DevHfStartAppTmpl", m_pHF->start_app_tmpl, file);
    ini::write_value(s, "DevFlgComLptHf", flag_text(m_pHF->locale_hf), file);
    ini::write_value(s, "DevFlgStartApp", flag_text(m_pHF->start_app), file);
    ini::write_value(s, "DevPortType", int_text(m_pHF->port_type), file);
  });
}

const char* CHFDeviceSettings::GetStartAppTmpl() const {
  return view(m_pHF, kEmptyHF).start_app_tmpl.c_str();
}
void CHFDeviceSettings::SetStartAppTmpl(const char* sz) {
  if (m_pHF != nullptr) guarded([&] { m_pHF->start_app_tmpl = text_of(sz); });
}
int32_t CHFDeviceSettings::GetLocaleHfFlag() const { return view(m_pHF, kEmptyHF).locale_hf; }
void CHFDeviceSettings::SetLocaleHfFlag(int32_t n) {
  if (m_pHF != nullptr) m_pHF->locale_hf = n;
}
int32_t CHFDeviceSettings::GetStartAppFlag() const { return view(m_pHF, kEmptyHF).start_app; }
void CHFDeviceSettings::SetStartAppFlag(int32_t n) {
  if (m_pHF != nullptr) m_pHF->start_app = n;
}
int32_t CHFDeviceSettings::GetPortType() const { return view(m_pHF, kEmptyHF).port_type; }
void CHFDeviceSettings::SetPortType(int32_t n) {
  if (m_pHF != nullptr) m_pHF->port_type = n;
}

// --- CExtHFDeviceSettings ----------------------------------------------------

CExtHFDeviceSettings::CExtHFDeviceSettings() : m_pExtHF(new (std::nothrow) Data) {}
CExtHFDeviceSettings::~CExtHFDeviceSettings() { delete m_pExtHF; }

void CExtHFDeviceSettings::ReadFromIni(const char* szIniFile) {
  CHFDeviceSettings::ReadFromIni(szIniFile);
  if (m_pExtHF == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    using namespace kerfline::devconfig;
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    Data d;
    parse_address(read_text(s, "IP_ADDR", "0.0.0.0", file), d.address);
    d.tcpip_port = ini::read_int(s, "IP_PORT", 0, file);
    d.usb_device_name = read_text(s, "DevUsbDeviceName", "", file);
    d.usb_friendly_name = read_text(s, "DevUsbFriendlyName", "", file);
    d.file_mask = read_text(s, "mask", "", file);
    d.rip = ini::read_int(s, "rip", 0, file);
    d.last_dir = read_text(s, "LastDir", "", file);
    d.alternate_bufsize = leading_uint(read_text(s, "OutBufSize", "0", file));
    d.rip_min_percent = static_cast<std::int32_t>(leading_uint(read_text(s, "RipMinPercent", "5", file)));
    *m_pExtHF = std::move(d);
  });
}

void CExtHFDeviceSettings::WriteToIni(const char* szIniFile) {
  CHFDeviceSettings::WriteToIni(szIniFile);
  if (m_pExtHF == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    using namespace kerfline::devconfig;
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    const Data& d = *m_pExtHF;
    ini::write_value(s, "IP_ADDR", d.address.text, file);
    ini::write_value(s, "IP_PORT", int_text(d.tcpip_port), file);
    ini::write_value(s, "DevUsbDeviceName", d.usb_device_name, file);
    ini::write_value(s, "DevUsbFriendlyName", d.usb_friendly_name, file);
    ini::write_value(s, "mask", d.file_mask, file);
    ini::write_value(s, "rip", flag_text(d.rip), file);
    ini::write_value(s, "LastDir", d.last_dir, file);
    ini::write_value(s, "OutBufSize", uint_text(d.alternate_bufsize), file);
  });
}

void CExtHFDeviceSettings::WriteRipMinSize(const char* szIniFile) {
  if (m_pExtHF == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    ini::write_value(m_pBase->device_name, "RipMinPercent",
                     kerfline::devconfig::int_text(m_pExtHF->rip_min_percent), text_of(szIniFile));
  });
}

const char* CExtHFDeviceSettings::GetTCPIPAddress() const {
  return view(m_pExtHF, kEmptyExtHF).address.text.c_str();
}
void CExtHFDeviceSettings::GetTCPIPAddress(unsigned char* pBytes) const {
  if (pBytes == nullptr) return;
  for (int i = 0; i < 4; ++i) pBytes[i] = view(m_pExtHF, kEmptyExtHF).address.bytes[i];
}
void CExtHFDeviceSettings::SetTCPIPAddress(const char* sz) {
  if (m_pExtHF != nullptr)
    guarded([&] { kerfline::devconfig::parse_address(text_of(sz), m_pExtHF->address); });
}
int32_t CExtHFDeviceSettings::GetPort() const { return view(m_pExtHF, kEmptyExtHF).tcpip_port; }
int32_t CExtHFDeviceSettings::GetTCPIPPort() const { return view(m_pExtHF, kEmptyExtHF).tcpip_port; }
void CExtHFDeviceSettings::SetTCPIPPort(int32_t n) {
  if (m_pExtHF != nullptr) m_pExtHF->tcpip_port = n;
}
const char* CExtHFDeviceSettings::GetUSBDeviceName() const {
  return view(m_pExtHF, kEmptyExtHF).usb_device_name.c_str();
}
void CExtHFDeviceSettings::SetUSBDeviceName(const char* sz) {
  if (m_pExtHF != nullptr) guarded([&] { m_pExtHF->usb_device_name = text_of(sz); });
}
const char* CExtHFDeviceSettings::GetUSBFriendlyName() const {
  return view(m_pExtHF, kEmptyExtHF).usb_friendly_name.c_str();
}
void CExtHFDeviceSettings::SetUSBFriendlyName(const char* sz) {
  if (m_pExtHF != nullptr) guarded([&] { m_pExtHF->usb_friendly_name = text_of(sz); });
}
const char* CExtHFDeviceSettings::GetFileMask() const {
  return view(m_pExtHF, kEmptyExtHF).file_mask.c_str();
}
void CExtHFDeviceSettings::SetFileMask(const char* sz) {
  if (m_pExtHF != nullptr) guarded([&] { m_pExtHF->file_mask = text_of(sz); });
}
int32_t CExtHFDeviceSettings::IsRip() const { return view(m_pExtHF, kEmptyExtHF).rip; }
void CExtHFDeviceSettings::SetRip(int32_t n) {
  if (m_pExtHF != nullptr) m_pExtHF->rip = n;
}
const char* CExtHFDeviceSettings::GetLastDir() const { return view(m_pExtHF, kEmptyExtHF).last_dir.c_str(); }
void CExtHFDeviceSettings::SetLastDir(const char* sz) {
  if (m_pExtHF != nullptr) guarded([&] { m_pExtHF->last_dir = text_of(sz); });
}
uint32_t CExtHFDeviceSettings::GetAlternateBufsize() const {
  return view(m_pExtHF, kEmptyExtHF).alternate_bufsize;
}
void CExtHFDeviceSettings::SetAlternateBufsize(uint32_t n) {
  if (m_pExtHF != nullptr) m_pExtHF->alternate_bufsize = n;
}
int32_t CExtHFDeviceSettings::GetRipMinPercent() const { return view(m_pExtHF, kEmptyExtHF).rip_min_percent; }
void CExtHFDeviceSettings::SetRipMinPercent(int32_t n) {
  if (m_pExtHF != nullptr) m_pExtHF->rip_min_percent = n;
}

// --- CLocaleDeviceSettings ---------------------------------------------------

CLocaleDeviceSettings::CLocaleDeviceSettings() : m_pLocale(new (std::nothrow) Data) {
  SetDeviceType(DEVTYPE_LOCALE);
}
CLocaleDeviceSettings::~CLocaleDeviceSettings() { delete m_pLocale; }

void CLocaleDeviceSettings::ReadFromIni(const char* szIniFile) {
  CBaseDeviceSettings::ReadFromIni(szIniFile);
  if (m_pLocale == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    Data d;
    d.port_type = ini::read_int(s, "DevPortType", PORTTYPE_NONE, file);
    d.last_dir = kerfline::devconfig::read_text(s, "LastDir", "", file);
    *m_pLocale = std::move(d);
  });
}

void CLocaleDeviceSettings::WriteToIni(const char* szIniFile) {
  CBaseDeviceSettings::WriteToIni(szIniFile);
  if (m_pLocale == nullptr || m_pBase == nullptr) return;
  guarded([&] {
    const std::string file = text_of(szIniFile);
    const std::string& s = m_pBase->device_name;
    ini::write_value(s, "DevPortType", kerfline::devconfig::int_text(m_pLocale->port_type), file);
    ini::write_value(s, "LastDir", m_pLocale->last_dir, file);
  });
}

int32_t CLocaleDeviceSettings::GetPortType() const { return view(m_pLocale, kEmptyLocale).port_type; }
void CLocaleDeviceSettings::SetPortType(int32_t n) {
  if (m_pLocale != nullptr) m_pLocale->port_type = n;
}
const char* CLocaleDeviceSettings::GetLastDir() const {
  return view(m_pLocale, kEmptyLocale).last_dir.c_str();
}
void CLocaleDeviceSettings::SetLastDir(const char* sz) {
  if (m_pLocale != nullptr) guarded([&] { m_pLocale->last_dir = text_of(sz); });
}
