// The profile functions over files on disk: a small cache of parsed files for
// reads, and locked read-modify-write cycles with atomic replacement for
// writes.
#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <list>
#include <memory>
#include <mutex>

#include "platform/file_io.hpp"
#include "platform/ini.hpp"
#include "platform/ini_document.hpp"
#include "platform/paths.hpp"
#include "platform/text_trim.hpp"

namespace kerfline::platform::ini {
namespace {

using Document = std::shared_ptr<const IniDocument>;

// The parsed copies of the files read last, most recent first. A copy is
// used only while the file still has the identity it was read with; a copy
// of a file whose time was too fresh to prove it unchanged ("unsettled") is
// checked against the bytes on disk before use.
class DocumentCache {
 public:
  struct Found {
    Document document;
    bool settled = false;
  };

  Found find(const std::string& path, const file_io::FileIdentity& identity) {
    std::lock_guard<std::mutex> lock(mutex_);
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
      if (it->path != path) continue;
      if (!(it->identity == identity)) return {};
      entries_.splice(entries_.begin(), entries_, it);
      return {entries_.front().document, entries_.front().settled};
    }
    return {};
  }

  void store(const std::string& path, const file_io::FileIdentity& identity, Document document,
             bool settled) {
    std::lock_guard<std::mutex> lock(mutex_);
    entries_.remove_if([&path](const Entry& e) { return e.path == path; });
    entries_.push_front(Entry{path, identity, std::move(document), settled});
    if (entries_.size() > kCapacity) entries_.pop_back();
  }

  void clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    entries_.clear();
  }

  void count_hit() { hits_.fetch_add(1, std::memory_order_relaxed); }
  void count_load() { loads_.fetch_add(1, std::memory_order_relaxed); }
  CacheStats stats() const { return CacheStats{hits_.load(), loads_.load()}; }

 private:
  static constexpr std::size_t kCapacity = 8;
  struct Entry {
    std::string path;
    file_io::FileIdentity identity;
    Document document;
    bool settled;
  };
  std::mutex mutex_;
  std::list<Entry> entries_;
  std::atomic<std::uint64_t> hits_{0};
  std::atomic<std::uint64_t> loads_{0};
};

DocumentCache& cache() {
  static DocumentCache instance;
  return instance;
}

// The file as it is on disk now; null when it is missing or cannot be read
// (both read as a missing file, as Windows does).
std::string spelled_path(const std::string& file);

Document load_at(const std::string& path, const file_io::FileIdentity& identity);

Document load(const std::string& path) {
  if (path.empty()) return nullptr;
  auto identity = file_io::identify(path);
  if (!identity.ok() || !identity.value()) return nullptr;
  return load_at(path, *identity.value());
}

// A file named by the caller: one stat when it exists as spelled, the
// case-insensitive search only when it does not.
Document load_file(const std::string& file) {
  if (file.empty()) return nullptr;
  const std::string path = spelled_path(file);
  auto identity = file_io::identify(path);
  if (identity.ok() && identity.value()) return load_at(path, *identity.value());
  if (auto found = resolve_case_insensitive(path)) return load(*found);
  return nullptr;
}

Document load_at(const std::string& path, const file_io::FileIdentity& identity) {
  const DocumentCache::Found cached = cache().find(path, identity);
  if (cached.document && cached.settled) {
    cache().count_hit();
    return cached.document;
  }
  auto contents = file_io::read_whole(path, kMaxFileSize);
  if (!contents.ok() || !contents.value()) return nullptr;
  file_io::FileContents& read = *contents.value();
  Document document;
  if (cached.document && cached.document->bytes() == read.bytes) {
    cache().count_hit();
    document = cached.document;
  } else {
    cache().count_load();
    document = std::make_shared<const IniDocument>(std::move(read.bytes));
  }
  cache().store(path, read.identity, document, read.settled);
  return document;
}

// One change of a file under the writers' lock: the file is read again
// under the lock so that changes of other processes are kept, and replaced
// only when the change alters it.
bool modify(const std::string& file, const std::function<std::string(const IniDocument&)>& edit) {
  if (file.empty()) return false;
  const std::string path = resolve_file(file);
  if (!file_io::can_write(path)) return false;
  auto before = file_io::identify(path);
  if (!before.ok()) return false;
  const bool existed = before.value().has_value();

  auto lock = file_io::lock_exclusive(path);
  if (!lock.ok()) return false;
  const Document current = load(path);
  if (!current) return false;

  std::string updated = edit(*current);
  if (existed && updated == current->bytes()) return true;
  auto written = file_io::replace_atomically(path, updated);
  if (!written.ok()) return false;
  // Our writers always replace the file, so this version changes only by
  // being replaced: its identity is proof enough.
  cache().store(path, written.value(), std::make_shared<const IniDocument>(std::move(updated)), true);
  return true;
}

std::uint32_t to_u32(std::size_t n) { return static_cast<std::uint32_t>(n); }

// A single string: at most size - 1 characters and a NUL.
std::uint32_t copy_string(std::string_view text, char* buffer, std::uint32_t size) {
  if (buffer == nullptr || size == 0) return 0;
  const std::size_t n = std::min<std::size_t>(text.size(), size - 1);
  if (n > 0) std::memcpy(buffer, text.data(), n);
  buffer[n] = '\0';
  return to_u32(n);
}

// A list "a\0b\0" closed with an extra NUL; when it does not fit with room
// to spare, the first size - 2 characters and two NULs, and size - 2.
std::uint32_t copy_list(std::string_view list, char* buffer, std::uint32_t size, bool missing_file) {
  if (buffer == nullptr || size == 0) return 0;
  buffer[0] = '\0';
  if (list.empty()) {
    if (size >= 2 && !missing_file) buffer[1] = '\0';
    return 0;
  }
  if (list.size() + 2 <= size) {
    std::memcpy(buffer, list.data(), list.size());
    buffer[list.size()] = '\0';
    return to_u32(list.size());
  }
  if (size < 2) return 0;
  std::memcpy(buffer, list.data(), size - 2);
  buffer[size - 2] = '\0';
  buffer[size - 1] = '\0';
  return size - 2;
}

// A default loses trailing blanks only, as on Windows: "d\t" stays "d\t".
std::string_view trim_default(std::string_view text) { return trim_right(text, " "); }

std::uint32_t copy_default(const char* default_value, char* buffer, std::uint32_t size) {
  return copy_string(default_value == nullptr ? std::string_view() : trim_default(default_value), buffer,
                     size);
}

std::vector<std::string> to_strings(const std::vector<std::string_view>& views) {
  return {views.begin(), views.end()};
}

}  // namespace

namespace {
// The path as the caller spelled it: a bare name in the suite directory.
std::string spelled_path(const std::string& file) {
  return file.find_first_of("/\\") == std::string::npos ? join_path(home_dir(), file)
                                                        : native_separators(file);
}
}  // namespace

std::string resolve_file(const std::string& file) {
  if (file.empty()) return {};
  std::string path = spelled_path(file);
  if (!path_exists(path)) {
    if (auto found = resolve_case_insensitive(path)) path = std::move(*found);
  }
  return path;
}

std::uint32_t get_string(const char* section, const char* key, const char* default_value, char* buffer,
                         std::uint32_t size, const std::string& file) {
  const Document doc = load_file(file);
  if (section == nullptr)
    return copy_list(doc ? doc->section_name_list() : std::string(), buffer, size, !doc);
  if (key == nullptr) {
    const std::string keys = doc ? doc->key_name_list(section) : std::string();
    if (keys.empty()) return copy_default(default_value, buffer, size);
    return copy_list(keys, buffer, size, false);
  }
  const auto value = doc ? doc->find_value(section, key) : std::nullopt;
  if (value) return copy_string(unquote(*value), buffer, size);
  return copy_default(default_value, buffer, size);
}

std::uint32_t get_int(const char* section, const char* key, std::int32_t default_value,
                      const std::string& file) {
  const auto fallback = static_cast<std::uint32_t>(default_value);
  if (section == nullptr || key == nullptr) return fallback;
  const Document doc = load_file(file);
  const auto value = doc ? doc->find_value(section, key) : std::nullopt;
  if (!value || unquote(*value).empty()) return fallback;
  return parse_int(unquote(*value));
}

std::uint32_t get_section(const char* section, char* buffer, std::uint32_t size, const std::string& file) {
  const Document doc = load_file(file);
  if (section == nullptr || !doc) return copy_list({}, buffer, size, !doc);
  return copy_list(doc->section_line_list(section), buffer, size, false);
}

std::uint32_t get_section_names(char* buffer, std::uint32_t size, const std::string& file) {
  const Document doc = load_file(file);
  return copy_list(doc ? doc->section_name_list() : std::string(), buffer, size, !doc);
}

bool write_string(const char* section, const char* key, const char* value, const std::string& file) {
  if (section == nullptr) return false;
  if (key == nullptr) return delete_section(section, file);
  if (value == nullptr) return delete_key(section, key, file);
  return write_value(section, key, value, file);
}

bool write_section(const char* section, const char* data, const std::string& file) {
  if (section == nullptr) return false;
  if (data == nullptr) return delete_section(section, file);
  std::vector<std::string_view> lines;
  for (const char* p = data; *p != '\0'; p += std::strlen(p) + 1) lines.emplace_back(p);
  const std::string_view name = section;
  return modify(file, [&](const IniDocument& doc) { return doc.with_section_lines(name, lines); });
}

std::string read_string(std::string_view section, std::string_view key, std::string_view default_value,
                        const std::string& file) {
  if (auto value = find_string(section, key, file)) return std::move(*value);
  return std::string(trim_default(default_value));
}

std::optional<std::string> find_string(std::string_view section, std::string_view key,
                                       const std::string& file) {
  const Document doc = load_file(file);
  const auto value = doc ? doc->find_value(section, key) : std::nullopt;
  if (!value) return std::nullopt;
  return std::string(unquote(*value));
}

std::int32_t read_int(std::string_view section, std::string_view key, std::int32_t default_value,
                      const std::string& file) {
  const Document doc = load_file(file);
  const auto value = doc ? doc->find_value(section, key) : std::nullopt;
  if (!value || unquote(*value).empty()) return default_value;
  return static_cast<std::int32_t>(parse_int(unquote(*value)));
}

std::vector<std::string> read_section_names(const std::string& file) {
  const Document doc = load_file(file);
  return doc ? to_strings(doc->section_names()) : std::vector<std::string>{};
}

std::vector<std::string> read_key_names(std::string_view section, const std::string& file) {
  const Document doc = load_file(file);
  return doc ? to_strings(doc->key_names(section)) : std::vector<std::string>{};
}

std::vector<std::string> read_section(std::string_view section, const std::string& file) {
  const Document doc = load_file(file);
  return doc ? to_strings(doc->section_lines(section)) : std::vector<std::string>{};
}

bool write_value(std::string_view section, std::string_view key, std::string_view value,
                 const std::string& file) {
  return modify(file, [&](const IniDocument& doc) { return doc.with_value(section, key, value); });
}

bool delete_key(std::string_view section, std::string_view key, const std::string& file) {
  return modify(file, [&](const IniDocument& doc) { return doc.without_key(section, key); });
}

bool delete_section(std::string_view section, const std::string& file) {
  return modify(file, [&](const IniDocument& doc) { return doc.without_section(section); });
}

bool uses_system_engine() { return false; }

CacheStats cache_stats() { return cache().stats(); }

void clear_cache() { cache().clear(); }

}  // namespace kerfline::platform::ini
