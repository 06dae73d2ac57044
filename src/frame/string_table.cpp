#include "frame/string_table.hpp"

#include <charconv>

#include "frame/c_string_literal.hpp"
#include "platform/binary_file.hpp"
#include "platform/paths.hpp"

namespace kerfline::frame {
namespace {

// The text number at line[pos]: decimal, or hex after "0x".
std::optional<std::uint32_t> read_id(std::string_view line, std::size_t& pos) {
  int base = 10;
  if (line.substr(pos, 2) == "0x" || line.substr(pos, 2) == "0X") {
    base = 16;
    pos += 2;
  }
  std::uint32_t id = 0;
  const auto [end, ec] = std::from_chars(line.data() + pos, line.data() + line.size(), id, base);
  if (ec != std::errc{}) return std::nullopt;
  pos = static_cast<std::size_t>(end - line.data());
  return id;
}

// True when only blanks, or blanks and a "//" comment, remain.
bool rest_is_empty(std::string_view line, std::size_t pos) {
  pos = skip_blanks(line, pos);
  return pos == line.size() || line.substr(pos, 2) == "//";
}

struct Entry {
  std::uint32_t id;
  std::string text;
};

std::optional<Entry> parse_line(std::string_view line) {
  std::size_t pos = skip_blanks(line, 0);
  const auto id = read_id(line, pos);
  if (!id) return std::nullopt;
  pos = skip_blanks(line, pos);
  if (pos < line.size() && line[pos] == ',') pos = skip_blanks(line, pos + 1);
  auto text = read_c_literal(line, pos);
  if (!text || !rest_is_empty(line, pos)) return std::nullopt;
  return Entry{*id, std::move(*text)};
}

}  // namespace

StringTable StringTable::parse(std::string_view contents) {
  StringTable table;
  for_each_line(contents, [&table](std::string_view line) {
    if (rest_is_empty(line, 0)) return;
    if (auto entry = parse_line(line)) {
      table.texts_.try_emplace(entry->id, std::move(entry->text));
    } else {
      ++table.skipped_;
    }
  });
  return table;
}

platform::Result<StringTable> StringTable::load(const std::string& path) {
  if (platform::is_directory(path)) return platform::OsError{0, path + " is a directory"};
  auto contents = platform::read_binary_file(path);
  if (!contents) return contents.error();
  return parse(*contents);
}

std::optional<std::string> StringTable::find(std::uint32_t id) const {
  const auto it = texts_.find(id);
  if (it == texts_.end()) return std::nullopt;
  return it->second.substr(0, kMaxText);
}

}  // namespace kerfline::frame
