#include "platform/ini_document.hpp"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "platform/codepage.hpp"
#include "platform/text_trim.hpp"

namespace kerfline::platform::ini {
namespace {

std::uint32_t u32(std::size_t n) { return static_cast<std::uint32_t>(n); }

bool less_no_case(std::string_view a, std::string_view b) { return cp1252::compare_no_case(a, b) < 0; }

// One change of the text: `remove` bytes at `at` replaced by `insert`.
struct Splice {
  std::uint32_t at;
  std::uint32_t remove;
  std::string insert;
};

// The text with the splices applied; they are sorted by position and do not
// overlap. Bytes past `text_size` (an ignored final NUL) stay at the end.
std::string apply(const std::string& bytes, std::vector<Splice> splices) {
  std::stable_sort(splices.begin(), splices.end(),
                   [](const Splice& a, const Splice& b) { return a.at < b.at; });
  std::size_t grow = 0;
  for (const Splice& s : splices) grow += s.insert.size();
  std::string out;
  out.reserve(bytes.size() + grow);
  std::size_t pos = 0;
  for (const Splice& s : splices) {
    out.append(bytes, pos, s.at - pos);
    out += s.insert;
    pos = std::size_t{s.at} + s.remove;
  }
  out.append(bytes, pos, std::string::npos);
  return out;
}

}  // namespace

bool is_space(char c) {
  const auto u = static_cast<unsigned char>(c);
  return u == ' ' || (u >= 0x09 && u <= 0x0D) || u == 0x1A;
}

std::string_view unquote(std::string_view value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front()) {
    return value.substr(1, value.size() - 2);
  }
  return value;
}

std::uint32_t parse_int(std::string_view value) {
  std::size_t i = 0;
  const std::size_t n = value.size();
  while (i < n && static_cast<unsigned char>(value[i]) <= ' ') ++i;
  bool negative = false;
  if (i < n && (value[i] == '+' || value[i] == '-')) {
    negative = value[i] == '-';
    ++i;
  }
  std::uint32_t base = 10;
  if (i + 1 < n && value[i] == '0') {
    switch (value[i + 1]) {
      case 'x':
        base = 16;
        break;
      case 'o':
        base = 8;
        break;
      case 'b':
        base = 2;
        break;
      default:
        break;
    }
    if (base != 10) i += 2;
  }
  std::uint32_t result = 0;
  for (; i < n; ++i) {
    const char c = value[i];
    std::uint32_t digit = 0;
    if (c >= '0' && c <= '9') {
      digit = static_cast<std::uint32_t>(c - '0');
    } else if (c >= 'a' && c <= 'f') {
      digit = static_cast<std::uint32_t>(c - 'a' + 10);
    } else if (c >= 'A' && c <= 'F') {
      digit = static_cast<std::uint32_t>(c - 'A' + 10);
    } else {
      break;
    }
    if (digit >= base) break;
    result = result * base + digit;  // wraps modulo 2^32 on purpose
  }
  return negative ? 0u - result : result;
}

IniDocument::IniDocument(std::string bytes) : bytes_(std::move(bytes)) { parse(); }

void IniDocument::parse() {
  std::size_t size = std::min<std::uint64_t>(bytes_.size(), kMaxFileSize);
  if (size > 0 && bytes_[size - 1] == '\0') --size;
  text_size_ = u32(size);
  const char* p = bytes_.data();

  std::uint32_t pos = 0;
  while (pos < text_size_) {
    const std::uint32_t begin = pos;
    std::uint32_t end = begin;
    while (end < text_size_ && p[end] != '\n' && p[end] != '\r') ++end;
    std::uint32_t next = end;
    if (next < text_size_ && p[next] == '\r') ++next;
    if (next < text_size_ && p[next] == '\n' && (next == end || p[end] == '\r')) ++next;
    pos = next;

    std::uint32_t b = begin;
    std::uint32_t e = end;
    while (b < e && is_space(p[b])) ++b;
    while (e > b && is_space(p[e - 1])) --e;
    if (b == e || p[b] == ';') continue;

    if (p[b] == '[') {
      std::uint32_t close = e;
      while (close > b + 1 && p[close - 1] != ']') --close;
      if (close > b + 1) {
        // The last "]" is at close - 1; the name is what lies between.
        std::uint32_t nb = b + 1;
        std::uint32_t ne = close - 1;
        while (nb < ne && is_space(p[nb])) ++nb;
        while (ne > nb && is_space(p[ne - 1])) --ne;
        if (!sections_.empty()) sections_.back().body_end = begin;
        sections_.push_back(
            Section{Line{begin, end, next, kNone}, nb, ne, u32(entries_.size()), 0, 0, 0, text_size_});
        continue;
      }
    }
    if (sections_.empty()) continue;  // before the first section: kept, never read
    const void* eq = std::memchr(p + b, '=', e - b);
    const std::uint32_t eq_at = eq != nullptr ? u32(static_cast<const char*>(eq) - p) : kNone;
    entries_.push_back(Line{begin, end, next, eq_at});
    ++sections_.back().entry_count;
  }
}

void IniDocument::build_index() const {
  std::call_once(index_once_, [this] {
    for (const Section& s : sections_) {
      s.first_key = u32(key_order_.size());
      for (std::uint32_t i = s.first_entry; i < s.first_entry + s.entry_count; ++i) {
        if (entries_[i].eq != kNone) key_order_.push_back(i);
      }
      s.key_count = u32(key_order_.size()) - s.first_key;
      std::stable_sort(key_order_.begin() + s.first_key, key_order_.end(),
                       [this](std::uint32_t a, std::uint32_t b) {
                         return less_no_case(key_of(entries_[a]), key_of(entries_[b]));
                       });
    }
    section_order_.resize(sections_.size());
    std::iota(section_order_.begin(), section_order_.end(), 0u);
    std::stable_sort(section_order_.begin(), section_order_.end(), [this](std::uint32_t a, std::uint32_t b) {
      return less_no_case(name_of(sections_[a]), name_of(sections_[b]));
    });
  });
}

const IniDocument::Section* IniDocument::scan_section(std::string_view name) const {
  for (const Section& s : sections_) {
    if (cp1252::equals_no_case(name_of(s), name)) return &s;
  }
  return nullptr;
}

const IniDocument::Line* IniDocument::scan_key(const Section& s, std::string_view key) const {
  for (std::uint32_t i = s.first_entry; i < s.first_entry + s.entry_count; ++i) {
    if (entries_[i].eq != kNone && cp1252::equals_no_case(key_of(entries_[i]), key)) return &entries_[i];
  }
  return nullptr;
}

std::string_view IniDocument::name_of(const Section& s) const {
  return std::string_view(bytes_).substr(s.name_begin, s.name_end - s.name_begin);
}

namespace {
// The blanks of is_space.
constexpr std::string_view kBlanks = " \t\n\v\f\r\x1A";
std::string_view trim(std::string_view text) { return platform::trim(text, kBlanks); }
}  // namespace

std::string_view IniDocument::key_of(const Line& line) const {
  return trim(std::string_view(bytes_).substr(line.begin, line.eq - line.begin));
}

std::string_view IniDocument::value_of(const Line& line) const {
  return trim(std::string_view(bytes_).substr(line.eq + 1, line.end - line.eq - 1));
}

std::string_view IniDocument::trimmed(const Line& line) const {
  return trim(std::string_view(bytes_).substr(line.begin, line.end - line.begin));
}

const IniDocument::Section* IniDocument::find_section(std::string_view name) const {
  build_index();
  const auto it = std::lower_bound(
      section_order_.begin(), section_order_.end(), name,
      [this](std::uint32_t i, std::string_view n) { return less_no_case(name_of(sections_[i]), n); });
  if (it == section_order_.end() || !cp1252::equals_no_case(name_of(sections_[*it]), name)) return nullptr;
  return &sections_[*it];
}

const IniDocument::Line* IniDocument::find_key(const Section& s, std::string_view key) const {
  build_index();
  const auto first = key_order_.begin() + s.first_key;
  const auto last = first + s.key_count;
  const auto it = std::lower_bound(first, last, key, [this](std::uint32_t i, std::string_view k) {
    return less_no_case(key_of(entries_[i]), k);
  });
  if (it == last || !cp1252::equals_no_case(key_of(entries_[*it]), key)) return nullptr;
  return &entries_[*it];
}

bool IniDocument::has_section(std::string_view section) const {
  return find_section(trim(section)) != nullptr;
}

std::optional<std::string_view> IniDocument::find_value(std::string_view section,
                                                        std::string_view key) const {
  section = trim(section);
  key = trim(key);
  const Section* s = find_section(section);
  if (s == nullptr) return std::nullopt;
  const Line* line = find_key(*s, key);
  if (line == nullptr) return std::nullopt;
  return value_of(*line);
}

// Empty names are left out of the lists: in "a\0b\0\0" form they would end
// the list early.
std::vector<std::string_view> IniDocument::section_names() const {
  std::vector<std::string_view> out;
  out.reserve(sections_.size());
  for (const Section& s : sections_) {
    if (s.name_end > s.name_begin) out.push_back(name_of(s));
  }
  return out;
}

std::vector<std::string_view> IniDocument::key_names(std::string_view section) const {
  std::vector<std::string_view> out;
  const Section* s = find_section(trim(section));
  if (s == nullptr) return out;
  for (std::uint32_t i = s->first_entry; i < s->first_entry + s->entry_count; ++i) {
    if (entries_[i].eq == kNone) continue;
    const std::string_view key = key_of(entries_[i]);
    if (!key.empty()) out.push_back(key);
  }
  return out;
}

std::vector<std::string_view> IniDocument::section_lines(std::string_view section) const {
  std::vector<std::string_view> out;
  const Section* s = find_section(trim(section));
  if (s == nullptr) return out;
  out.reserve(s->entry_count);
  for (std::uint32_t i = s->first_entry; i < s->first_entry + s->entry_count; ++i)
    out.push_back(trimmed(entries_[i]));
  return out;
}

namespace {
std::string join_with_nuls(const std::vector<std::string_view>& items) {
  std::size_t total = 0;
  for (std::string_view item : items) total += item.size() + 1;
  std::string out;
  out.reserve(total);
  for (std::string_view item : items) {
    out += item;
    out += '\0';
  }
  return out;
}
}  // namespace

std::string IniDocument::section_name_list() const { return join_with_nuls(section_names()); }
std::string IniDocument::key_name_list(std::string_view section) const {
  return join_with_nuls(key_names(section));
}
std::string IniDocument::section_line_list(std::string_view section) const {
  return join_with_nuls(section_lines(section));
}

std::string_view IniDocument::line_ending() const {
  const std::string_view text = std::string_view(bytes_).substr(0, text_size_);
  const std::size_t at = text.find_first_of("\r\n");
  if (at == std::string_view::npos) return "\r\n";
  if (text[at] == '\n') return "\n";
  return at + 1 < text.size() && text[at + 1] == '\n' ? "\r\n" : "\r";
}

std::uint32_t IniDocument::append_point(const Section& s) const {
  return s.entry_count > 0 ? entries_[s.first_entry + s.entry_count - 1].next : s.header.next;
}

std::string IniDocument::end_of_file_prefix(std::uint32_t at) const {
  if (at == text_size_ && text_size_ > 0 && bytes_[text_size_ - 1] != '\n' &&
      bytes_[text_size_ - 1] != '\r') {
    return std::string(line_ending());
  }
  return {};
}

std::string IniDocument::with_value(std::string_view section, std::string_view key,
                                    std::string_view value) const {
  section = trim(section);
  key = trim(key);
  const std::string_view eol = line_ending();
  const Section* s = scan_section(section);
  if (s == nullptr) {
    std::string insert = end_of_file_prefix(text_size_);
    insert.append("[").append(section).append("]").append(eol);
    insert.append(key).append("=").append(value).append(eol);
    return apply(bytes_, {Splice{text_size_, 0, std::move(insert)}});
  }
  if (const Line* line = scan_key(*s, key)) {
    // The line keeps its indentation, its line ending and the file's
    // spelling of the key; only "key=value" is written anew.
    std::uint32_t start = line->begin;
    while (start < line->end && is_space(bytes_[start])) ++start;
    std::string insert(key_of(*line));
    insert.append("=").append(value);
    return apply(bytes_, {Splice{start, line->end - start, std::move(insert)}});
  }
  const std::uint32_t at = append_point(*s);
  std::string insert = end_of_file_prefix(at);
  insert.append(key).append("=").append(value).append(eol);
  return apply(bytes_, {Splice{at, 0, std::move(insert)}});
}

// Only the first occurrence goes (the one reads see); a second one then
// becomes readable.
std::string IniDocument::without_key(std::string_view section, std::string_view key) const {
  key = trim(key);
  const Section* s = scan_section(trim(section));
  if (s == nullptr) return bytes_;
  const Line* line = scan_key(*s, key);
  if (line == nullptr) return bytes_;
  return apply(bytes_, {Splice{line->begin, line->next - line->begin, {}}});
}

std::string IniDocument::without_section(std::string_view section) const {
  const Section* s = scan_section(trim(section));
  if (s == nullptr) return bytes_;
  return apply(bytes_, {Splice{s->header.begin, s->body_end - s->header.begin, {}}});
}

std::string IniDocument::with_section_lines(std::string_view section,
                                            const std::vector<std::string_view>& lines) const {
  section = trim(section);
  const std::string_view eol = line_ending();
  std::string text;
  for (std::string_view line : lines) text.append(line).append(eol);
  const Section* s = scan_section(section);
  if (s == nullptr) {
    std::string insert = end_of_file_prefix(text_size_);
    insert.append("[").append(section).append("]").append(eol).append(text);
    return apply(bytes_, {Splice{text_size_, 0, std::move(insert)}});
  }
  std::vector<Splice> splices;
  for (std::uint32_t i = s->first_entry; i < s->first_entry + s->entry_count; ++i) {
    const Line& line = entries_[i];
    splices.push_back(Splice{line.begin, line.next - line.begin, {}});
  }
  if (splices.empty()) {
    const std::uint32_t at = s->header.next;
    splices.push_back(Splice{at, 0, end_of_file_prefix(at) + text});
  } else {
    splices.front().insert = std::move(text);
  }
  return apply(bytes_, std::move(splices));
}

}  // namespace kerfline::platform::ini
