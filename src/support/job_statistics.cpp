// Per-tool distance totals of one device, stored in the device's INI section.
#include "kerfline/job_statistics.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "platform/clock.hpp"
#include "platform/ini.hpp"
#include "support/tool_stat_format.hpp"

namespace ini = kerfline::platform::ini;
using kerfline::support::format_distance;
using kerfline::support::format_int;

namespace {

// Tool names are read back with this buffer, as the other programs of the
// suite read them.
constexpr std::uint32_t kNameBuffer = 260;

// A list entry: the record handed out and the name it points to.
struct Entry {
  Entry(const char* name, double dist) : text(name) { record = TOOLDIST{dist, text.data()}; }
  std::string text;
  TOOLDIST record{};
};

std::string slot_key(const char* stem, std::size_t slot) { return stem + std::to_string(slot); }

}  // namespace

struct CJobStatistics::Data {
  std::vector<std::unique_ptr<Entry>> tools;
  std::string device;
  std::string ini;
  bool has_ini = false;
  std::string time_text;

  Entry* find(const char* name) const {
    for (const auto& e : tools) {
      if (std::strcmp(e->record.szTool, name) == 0) return e.get();
    }
    return nullptr;
  }
};

CJobStatistics::CJobStatistics() : m_pData(new (std::nothrow) Data) {}

CJobStatistics::~CJobStatistics() { delete m_pData; }

void CJobStatistics::SetDevice(const char* szDevice) {
  if (m_pData == nullptr) return;
  try {
    m_pData->device = szDevice != nullptr ? szDevice : "";
  } catch (...) {
  }
}

void CJobStatistics::SetIni(const char* szIniFile) {
  if (m_pData == nullptr) return;
  try {
    m_pData->ini = szIniFile != nullptr ? szIniFile : "";
    m_pData->has_ini = !m_pData->ini.empty();
  } catch (...) {
  }
}

int32_t CJobStatistics::GetSize() const {
  return m_pData != nullptr ? static_cast<int32_t>(m_pData->tools.size()) : 0;
}

TOOLDIST* CJobStatistics::GetAt(int32_t nIndex) const {
  if (nIndex < 0 || nIndex >= GetSize()) return nullptr;
  return &m_pData->tools[static_cast<std::size_t>(nIndex)]->record;
}

void CJobStatistics::AddToolDist(const char* szTool, double dDist) {
  if (m_pData == nullptr || szTool == nullptr) return;
  try {
    if (Entry* e = m_pData->find(szTool)) {
      e->record.dDist += dDist;
      return;
    }
    auto entry = std::make_unique<Entry>(szTool, dDist);
    m_pData->tools.push_back(std::move(entry));
  } catch (...) {
  }
}

void CJobStatistics::ClearToolStat(const char* szTool) {
  if (m_pData == nullptr || szTool == nullptr) return;
  if (Entry* e = m_pData->find(szTool)) e->record.dDist = 0.0;
}

void CJobStatistics::SaveToolStat() {
  if (m_pData == nullptr || !m_pData->has_ini) return;
  try {
    const Data& d = *m_pData;
    std::int32_t written = 0;
    for (std::size_t i = 0; i < d.tools.size(); ++i) {
      const TOOLDIST& t = d.tools[i]->record;
      if (t.dDist == 0.0) {
        ini::delete_key(d.device, slot_key("szTool", i), d.ini);
        ini::delete_key(d.device, slot_key("dDist", i), d.ini);
        continue;
      }
      ini::write_value(d.device, slot_key("szTool", i), t.szTool, d.ini);
      ini::write_value(d.device, slot_key("dDist", i), format_distance(t.dDist), d.ini);
      ++written;
    }
    ini::write_value(d.device, "nStatCount", format_int(written), d.ini);
  } catch (...) {
  }
}

void CJobStatistics::LoadToolStat() {
  if (m_pData == nullptr || !m_pData->has_ini) return;
  try {
    Data& d = *m_pData;
    const std::int32_t count = ini::read_int(d.device, "nStatCount", 0, d.ini);
    if (count <= 0) return;
    // Slots 0..count-1 in order, but only those that have a key at all: the
    // count comes from the file and may be anything up to 2^31.
    std::vector<std::int64_t> slots;
    for (const std::string& key : ini::read_key_names(d.device, d.ini)) {
      const auto slot = kerfline::support::tool_key_slot(key);
      if (slot && *slot < count) slots.push_back(*slot);
    }
    std::sort(slots.begin(), slots.end());
    slots.erase(std::unique(slots.begin(), slots.end()), slots.end());

    std::vector<std::unique_ptr<Entry>> loaded;
    char name[kNameBuffer];
    for (const std::int64_t slot : slots) {
      const std::string name_key = slot_key("szTool", static_cast<std::size_t>(slot));
      ini::get_string(d.device.c_str(), name_key.c_str(), "", name, sizeof name, d.ini);
      if (name[0] == '\0') continue;
      const std::string dist =
          ini::read_string(d.device, slot_key("dDist", static_cast<std::size_t>(slot)), "", d.ini);
      loaded.push_back(std::make_unique<Entry>(name, kerfline::support::parse_distance(dist)));
    }
    d.tools.reserve(d.tools.size() + loaded.size());
    for (auto& e : loaded) d.tools.push_back(std::move(e));
  } catch (...) {
  }
}

void CJobStatistics::ResetToolStat() {
  if (m_pData == nullptr) return;
  for (auto& e : m_pData->tools) e->record.dDist = 0.0;
  SaveToolStat();
  if (!m_pData->has_ini) return;
  try {
    ini::write_value(m_pData->device, "lastResetH", "0", m_pData->ini);
    ini::write_value(m_pData->device, "lastResetL", "0", m_pData->ini);
  } catch (...) {
  }
}

const char* CJobStatistics::FormatTimeString() {
  if (m_pData == nullptr) return "";
  try {
    Data& d = *m_pData;
    std::uint64_t reset = 0;
    if (d.has_ini) {
      const std::uint32_t high = ini::get_int(d.device.c_str(), "lastResetH", 0, d.ini);
      const std::uint32_t low = ini::get_int(d.device.c_str(), "lastResetL", 0, d.ini);
      if (low != 0) reset = (std::uint64_t{high} << 32) | low;
    }
    if (reset == 0) {
      // The first query after a reset stamps the reset time.
      reset = kerfline::platform::file_time_now();
      if (d.has_ini) {
        ini::write_value(d.device, "lastResetH", format_int(static_cast<std::int32_t>(reset >> 32)), d.ini);
        ini::write_value(d.device, "lastResetL", format_int(static_cast<std::int32_t>(reset & 0xFFFFFFFFu)),
                         d.ini);
      }
    }
    // File times with the top bit set are not times (Windows refuses them).
    kerfline::platform::CalendarTime t;
    if (reset >> 63 != 0 || !kerfline::platform::local_time_from_file_time(reset, t)) {
      d.time_text.clear();
      return d.time_text.c_str();
    }
    d.time_text = format_int(t.day) + "." + format_int(t.month) + "." + format_int(t.year) + " " +
                  format_int(t.hour) + ":" + format_int(t.minute) + ":" + format_int(t.second);
    return d.time_text.c_str();
  } catch (...) {
    return "";
  }
}

void CJobStatistics::FreeToolInfoArray() {
  if (m_pData != nullptr) m_pData->tools.clear();
}
