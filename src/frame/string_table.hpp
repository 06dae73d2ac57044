// The library's string tables ("kerfline.dlx", "cutterx.dlx"): numbered texts
// written one a line as
//     35589, "Input error in %s"   // a comment
// with C escapes in the text. Blank lines and lines starting with "//" are
// ignored; any other line that does not have this form is skipped, and the
// rest of the file still serves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/os_error.hpp"

namespace kerfline::frame {

class StringTable {
 public:
  // A dictionary answer is at most this many bytes (the texts were read into
  // 512-byte buffers); longer texts are cut.
  static constexpr std::size_t kMaxText = 511;

  // Parses the text of a table. The first line of a number wins.
  static StringTable parse(std::string_view contents);
  // Reads and parses a file; an error when it cannot be read.
  static platform::Result<StringTable> load(const std::string& path);

  [[nodiscard]] std::optional<std::string> find(std::uint32_t id) const;
  [[nodiscard]] std::size_t size() const { return texts_.size(); }
  // Lines that were neither texts, comments nor blank.
  [[nodiscard]] std::size_t skipped_lines() const { return skipped_; }

 private:
  std::unordered_map<std::uint32_t, std::string> texts_;
  std::size_t skipped_ = 0;
};

}  // namespace kerfline::frame
