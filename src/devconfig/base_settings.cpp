// CBaseDeviceSettings: the keys every device section has, its spool
// directory and its job suffixes.
#include <new>

#include "devconfig/settings_data.hpp"
#include "devconfig/spool_dir.hpp"
#include "devconfig/spool_paths.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::devconfig::guarded;
using kerfline::devconfig::text_of;

namespace {

const CBaseDeviceSettings::Data kEmptyBase{};

}  // namespace

CBaseDeviceSettings::CBaseDeviceSettings() : m_pBase(new (std::nothrow) Data) {}

CBaseDeviceSettings::CBaseDeviceSettings(const char* szDeviceName) : CBaseDeviceSettings() {
  SetDeviceName(szDeviceName);
}

CBaseDeviceSettings::~CBaseDeviceSettings() { delete m_pBase; }

void CBaseDeviceSettings::ReadFromIni(const char* szIniFile) {
  if (m_pBase == nullptr) return;
  guarded([&] {
    using namespace kerfline::devconfig;
    Data& d = *m_pBase;
    const std::string file = text_of(szIniFile);
    const std::string& s = d.device_name;
    d.write_to = read_text(s, "DevOut", "", file);
    d.read_from = read_text(s, "DevIn", "", file);
    SetJobSuffix(read_text(s, "DevSuffix", "*.*", file).c_str(), ';');
    if (std::string index = read_text(s, "DevIni", "", file); !index.empty()) d.index_file = std::move(index);
    d.ask = ini::read_int(s, "DevFlgAsk", 0, file);
    d.active = ini::read_int(s, "DevFlgBreak", 0, file) > 0 ? 0 : 1;
    d.play_wav = ini::read_int(s, "DevFlgWav", 0, file);
    d.plot_to_file = ini::read_int(s, "DevPlotToFile", 0, file);
    if (d.play_wav != 0) d.wav = read_text(s, "DevNotifyWavFile", "", file);
    d.def_count = ini::read_int(s, "DevDefCount", 1, file);
    d.max_file_count = ini::read_int(s, "DevDefSavedCount", 5, file);
  });
}

void CBaseDeviceSettings::WriteToIni(const char* szIniFile) {
  if (m_pBase == nullptr) return;
  guarded([&] {
    using namespace kerfline::devconfig;
    Data& d = *m_pBase;
    const std::string file = text_of(szIniFile);
    const std::string& s = d.device_name;
    ini::write_value(d.device_type == DEVTYPE_LOCALE ? "LocaleDevices" : "DeviceNames", s, "1", file);
    ini::write_value(s, "DevOut", d.write_to, file);
    if (d.device_type != DEVTYPE_FIXED_SPOOL) {
      d.read_from = directory_part(d.index_file);
      if (d.read_from.empty()) d.read_from = spool_dir(kerfline::platform::home_dir(), s);
    }
    ini::write_value(s, "DevIn", d.read_from, file);
    ini::write_value(s, "DevSuffix", GetJobSuffix(), file);
    if (!d.index_file.empty()) ini::write_value(s, "DevIni", d.index_file, file);
    ini::write_value(s, "DevFlgAsk", flag_text(d.ask), file);
    ini::write_value(s, "DevFlgBreak", d.active != 0 ? "0" : "1", file);
    ini::write_value(s, "DevPlotToFile", flag_text(d.plot_to_file), file);
    if (d.play_wav != 0) {
      ini::write_value(s, "DevFlgWav", "1", file);
      ini::write_value(s, "DevNotifyWavFile", d.wav, file);
    } else {
      ini::write_value(s, "DevFlgWav", "0", file);
    }
    ini::write_value(s, "DevDefCount", int_text(d.def_count), file);
    ini::write_value(s, "DevType", int_text(d.device_type), file);
    ini::write_value(s, "DevDefSavedCount", int_text(d.max_file_count), file);
  });
}

int32_t CBaseDeviceSettings::InitDir() {
  if (m_pBase == nullptr) return 1;
  guarded([&] {
    using namespace kerfline::devconfig;
    Data& d = *m_pBase;
    const std::string spool = spool_dir(ini_directory(d.ini), d.device_name);
    d.index_file = index_file_of(spool);
    if (!kerfline::platform::path_exists(d.index_file)) {
      create_spool_layout(spool);
      WriteToIni(d.ini.c_str());
    }
  });
  return 1;
}

int32_t CBaseDeviceSettings::DeleteDir(const char* szName) {
  guarded([&] { kerfline::devconfig::delete_device(text_of(szName)); });
  return 1;
}

void CBaseDeviceSettings::CopySettings(const CBaseDeviceSettings* pOther) {
  if (m_pBase == nullptr || pOther == nullptr || pOther->m_pBase == nullptr || pOther == this) return;
  guarded([&] {
    Data& d = *m_pBase;
    const Data& o = *pOther->m_pBase;
    Data copy = d;
    copy.ask = o.ask;
    copy.active = o.active;
    copy.play_wav = o.play_wav;
    copy.plot_to_file = o.plot_to_file;
    copy.def_count = o.def_count;
    copy.max_file_count = o.max_file_count;
    copy.server = o.server;
    copy.device_info = o.device_info;
    copy.device_name = o.device_name;
    copy.dir = o.dir;
    copy.index_file = o.index_file;
    copy.ini = o.ini;
    copy.read_from = o.read_from;
    copy.wav = o.wav;
    copy.write_to = o.write_to;
    // The list is not cleared first: the suite's programs rely on appending.
    copy.suffixes.insert(copy.suffixes.end(), o.suffixes.begin(), o.suffixes.end());
    d = std::move(copy);
  });
}

int32_t CBaseDeviceSettings::GetDeviceType(const char* szName, const char* szIniFile) {
  try {
    return ini::read_int(text_of(szName), "DevType", DEVTYPE_CUTTER, text_of(szIniFile));
  } catch (...) {
    return DEVTYPE_CUTTER;
  }
}

int32_t CBaseDeviceSettings::GetPortType(const char* szName, const char* szIniFile) {
  try {
    return ini::read_int(text_of(szName), "DevPortType", PORTTYPE_PATH, text_of(szIniFile));
  } catch (...) {
    return PORTTYPE_PATH;
  }
}

int32_t CBaseDeviceSettings::HasActiveJob(const char* szName, const char* szIniFile) {
  try {
    using namespace kerfline::devconfig;
    const std::string spool = spool_dir(ini_directory(text_of(szIniFile)), text_of(szName));
    return active_job_count(index_file_of(spool));
  } catch (...) {
    return 0;
  }
}

int32_t CBaseDeviceSettings::IsSetupAllowed(const char* szName, const char* szIniFile) {
  try {
    using namespace kerfline::devconfig;
    const std::string name = text_of(szName);
    const std::string index = setup_index_file(ini_directory(text_of(szIniFile)), name);
    return active_job_count(index) == 0 && name.rfind("LPT", 0) != 0 ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

int32_t CBaseDeviceSettings::HasActiveJob() const {
  if (m_pBase == nullptr) return 0;
  try {
    return kerfline::devconfig::active_job_count(m_pBase->index_file) > 0 ? 1 : 0;
  } catch (...) {
    return 0;
  }
}

namespace {

const CBaseDeviceSettings::Data& view(const CBaseDeviceSettings::Data* d) {
  return d != nullptr ? *d : kEmptyBase;
}

}  // namespace

#define KERFLINE_TEXT_FIELD(Get, Set, field)                                           \
  const char* CBaseDeviceSettings::Get() const { return view(m_pBase).field.c_str(); } \
  void CBaseDeviceSettings::Set(const char* sz) {                                      \
    if (m_pBase != nullptr) guarded([&] { m_pBase->field = text_of(sz); });            \
  }
#define KERFLINE_INT_FIELD(Get, Set, field)                                \
  int32_t CBaseDeviceSettings::Get() const { return view(m_pBase).field; } \
  void CBaseDeviceSettings::Set(int32_t n) {                               \
    if (m_pBase != nullptr) m_pBase->field = n;                            \
  }

KERFLINE_TEXT_FIELD(GetWriteTo, SetWriteTo, write_to)
KERFLINE_TEXT_FIELD(GetDeviceName, SetDeviceName, device_name)
KERFLINE_TEXT_FIELD(GetDeviceInfo, SetDeviceInfo, device_info)
KERFLINE_TEXT_FIELD(GetDir, SetDir, dir)
KERFLINE_TEXT_FIELD(GetReadFrom, SetReadFrom, read_from)
KERFLINE_TEXT_FIELD(GetIni, SetIni, ini)
KERFLINE_TEXT_FIELD(GetWav, SetWav, wav)
KERFLINE_INT_FIELD(GetDeviceType, SetDeviceType, device_type)
KERFLINE_INT_FIELD(GetServerFlag, SetServerFlag, server)
KERFLINE_INT_FIELD(IsMsgFlag, SetMsgFlag, ask)
KERFLINE_INT_FIELD(IsActive, SetActive, active)
KERFLINE_INT_FIELD(IsPlayWav, SetPlayWav, play_wav)
KERFLINE_INT_FIELD(GetPlotToFile, SetPlotToFile, plot_to_file)
KERFLINE_INT_FIELD(GetDefCount, SetDefCount, def_count)
KERFLINE_INT_FIELD(GetMaxFileCount, SetMaxFileCount, max_file_count)

#undef KERFLINE_TEXT_FIELD
#undef KERFLINE_INT_FIELD

const char* CBaseDeviceSettings::GetIndexFile() const { return view(m_pBase).index_file.c_str(); }

int32_t CBaseDeviceSettings::IsDeleteFilesFlag() const { return view(m_pBase).max_file_count == 0 ? 1 : 0; }

int32_t CBaseDeviceSettings::GetJobSuffixes() const {
  return static_cast<int32_t>(view(m_pBase).suffixes.size());
}

const char* CBaseDeviceSettings::GetJobSuffix(int32_t nIndex) const {
  const auto& list = view(m_pBase).suffixes;
  if (nIndex < 0 || static_cast<std::size_t>(nIndex) >= list.size()) return nullptr;
  return list[static_cast<std::size_t>(nIndex)].c_str();
}

const char* CBaseDeviceSettings::GetJobSuffix() const {
  if (m_pBase == nullptr) return "";
  guarded([&] {
    std::string joined;
    for (const auto& s : m_pBase->suffixes) joined += s + ';';
    m_pBase->joined_suffixes = std::move(joined);
  });
  return m_pBase->joined_suffixes.c_str();
}

void CBaseDeviceSettings::SetJobSuffix(const char* szText, char cSeparator) {
  if (m_pBase == nullptr) return;
  guarded([&] {
    const std::string text = text_of(szText);
    std::vector<std::string> list;
    if (text.empty()) {
    } else if (text.find(cSeparator) == std::string::npos) {
      list.push_back(text);
    } else {
      // Entry i starts after the previous separator but is as long as this
      // separator's offset from the start of the whole text, so later
      // entries run on; the suite's other programs read lists this way.
      std::size_t start = 0;
      for (std::size_t pos = text.find(cSeparator); pos != std::string::npos;
           pos = text.find(cSeparator, pos + 1)) {
        list.push_back(text.substr(start, pos));
        start = pos + 1;
      }
      if (text.back() != cSeparator) list.emplace_back();
    }
    m_pBase->suffixes = std::move(list);
  });
}
