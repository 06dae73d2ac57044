// Translation files (".TRA") are gettext PO files, so translators can use
// their usual tools. Only what a lookup by source text needs is kept:
//  - msgid -> msgstr (for plural entries msgid -> msgstr[0]);
//  - entries marked fuzzy, obsolete (#~) entries, entries with a msgctxt and
//    entries with an empty msgstr are not translations and are left out;
//  - the header's charset decides the encoding: UTF-8 texts (or a file that
//    starts with a UTF-8 byte-order mark) are converted to Windows-1252, the
//    library's code page; any other charset is taken byte for byte;
//  - a broken entry (unknown keyword, bad string, msgstr without msgid...)
//    is skipped up to the next entry, and the rest of the file still serves.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/os_error.hpp"

namespace kerfline::frame {

class PoCatalog {
 public:
  static PoCatalog parse(std::string_view contents);
  static platform::Result<PoCatalog> load(const std::string& path);

  // The translation of a text, or nothing. The first entry of a msgid wins.
  [[nodiscard]] const std::string* find(std::string_view text) const;
  [[nodiscard]] std::size_t size() const { return messages_.size(); }
  // Entries that were broken and left out.
  [[nodiscard]] std::size_t broken_entries() const { return broken_; }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
  };
  std::unordered_map<std::string, std::string, Hash, std::equal_to<>> messages_;
  std::size_t broken_ = 0;
};

}  // namespace kerfline::frame
