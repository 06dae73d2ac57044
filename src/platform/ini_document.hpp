// One INI file held in memory: the file's bytes as they are, plus an index of
// its sections and key lines for lookups. Edits produce the bytes of the new
// file and change nothing but the lines they are about, so comments, blank
// lines, unknown lines, spacing and line endings survive a rewrite.
//
// Reading rules (those of the Windows profile functions): lines end at CRLF,
// LF or a lone CR; a NUL as the last byte is ignored; every line is trimmed
// of 0x09-0x0D, blank and 0x1A; ";" starts a comment line; "[" up to the last
// "]" is a section header; the first "=" splits a key line. Names match
// without regard to 1252 case; the first section of a name is the one used
// and inside it the first key of a name. Lines before the first section are
// kept but cannot be read.
//
// Memory is linear in the file size: the bytes plus a fixed-size record per
// section and per non-blank, non-comment line. Parsing is one linear pass;
// the sorted indexes that make lookups logarithmic are built at the first
// lookup (edits scan linearly, as they copy the file anyway), so a writer
// that parses the file under the lock pays no sort. A document is immutable
// once built and may be shared between threads.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kerfline::platform::ini {

// The largest file the engine handles; offsets are 32-bit.
inline constexpr std::uint64_t kMaxFileSize = 0xFFFFFFF0u;

class IniDocument {
 public:
  IniDocument() = default;
  // Takes the file's bytes (at most kMaxFileSize of them).
  explicit IniDocument(std::string bytes);
  IniDocument(const IniDocument&) = delete;
  IniDocument& operator=(const IniDocument&) = delete;

  [[nodiscard]] const std::string& bytes() const { return bytes_; }

  [[nodiscard]] bool has_section(std::string_view section) const;
  // The value of the key as written (trimmed, quotes kept), or nothing.
  [[nodiscard]] std::optional<std::string_view> find_value(std::string_view section,
                                                           std::string_view key) const;

  // Lists as the profile functions give them, each item followed by a NUL
  // ("a\0b\0"; the caller adds the final extra NUL).
  [[nodiscard]] std::string section_name_list() const;
  // Key names of the first section of the name, in file order.
  [[nodiscard]] std::string key_name_list(std::string_view section) const;
  // Every non-comment line of the section, trimmed, as written.
  [[nodiscard]] std::string section_line_list(std::string_view section) const;

  [[nodiscard]] std::vector<std::string_view> section_names() const;
  [[nodiscard]] std::vector<std::string_view> key_names(std::string_view section) const;
  [[nodiscard]] std::vector<std::string_view> section_lines(std::string_view section) const;

  // --- Edits: each returns the bytes of the changed file. ---
  // Names given here, as in every lookup, are trimmed like the file's own.
  // Changes the key in place, or adds it after the section's last line, or
  // adds the section at the end of the file.
  [[nodiscard]] std::string with_value(std::string_view section, std::string_view key,
                                       std::string_view value) const;
  // Removes the first line of the key in the section, the one reads see (the
  // file is unchanged when there is none).
  [[nodiscard]] std::string without_key(std::string_view section, std::string_view key) const;
  // Removes the first section of the name: header and lines up to the next
  // one.
  [[nodiscard]] std::string without_section(std::string_view section) const;
  // Replaces the non-comment lines of the section by `lines`, written where
  // the first of them stood (or after the header); adds the section when
  // missing.
  [[nodiscard]] std::string with_section_lines(std::string_view section,
                                               const std::vector<std::string_view>& lines) const;

  // The line ending new lines take: the file's first one, CRLF when none.
  [[nodiscard]] std::string_view line_ending() const;

 private:
  // A non-blank line: [begin, end) without the line ending, `next` the start
  // of the following line, `eq` the offset of the first "=" or kNone.
  struct Line {
    std::uint32_t begin;
    std::uint32_t end;
    std::uint32_t next;
    std::uint32_t eq;
  };
  struct Section {
    Line header;
    std::uint32_t name_begin;
    std::uint32_t name_end;
    std::uint32_t first_entry;  // index into entries_
    std::uint32_t entry_count;
    mutable std::uint32_t first_key;  // index into key_order_, set by build_index
    mutable std::uint32_t key_count;
    std::uint32_t body_end;  // start of the next header line, or end of text
  };
  static constexpr std::uint32_t kNone = 0xFFFFFFFFu;

  void parse();
  void build_index() const;
  // The first section / key of the name in file order, by scanning.
  [[nodiscard]] const Section* scan_section(std::string_view name) const;
  [[nodiscard]] const Line* scan_key(const Section& s, std::string_view key) const;
  [[nodiscard]] std::string_view name_of(const Section& s) const;
  [[nodiscard]] std::string_view key_of(const Line& line) const;
  [[nodiscard]] std::string_view value_of(const Line& line) const;
  [[nodiscard]] std::string_view trimmed(const Line& line) const;
  [[nodiscard]] const Section* find_section(std::string_view name) const;
  [[nodiscard]] const Line* find_key(const Section& s, std::string_view key) const;
  // Where new lines of the section go, and whether a line ending must come
  // first (the section ends the file without one).
  [[nodiscard]] std::uint32_t append_point(const Section& s) const;
  [[nodiscard]] std::string end_of_file_prefix(std::uint32_t at) const;

  std::string bytes_;
  std::uint32_t text_size_ = 0;    // bytes_ without an ignored final NUL
  std::vector<Line> entries_;      // non-comment lines inside sections
  std::vector<Section> sections_;  // in file order
  mutable std::once_flag index_once_;
  mutable std::vector<std::uint32_t> section_order_;  // sections_ sorted by name, stable
  mutable std::vector<std::uint32_t> key_order_;      // per section: key lines sorted by name, stable
};

// The value with one pair of matching surrounding quotes ("x" or 'x') removed.
std::string_view unquote(std::string_view value);

// The value read as the profile functions read integers: leading characters
// up to blank skipped, one sign, the prefixes "0x", "0o", "0b", digits up to
// the first other character, wrapped modulo 2^32.
std::uint32_t parse_int(std::string_view value);

// Is the byte one that lines are trimmed of (0x09-0x0D, blank, 0x1A)?
bool is_space(char c);

}  // namespace kerfline::platform::ini
