#include "frame/po_catalog.hpp"

#include <utility>
#include <vector>

#include "frame/c_string_literal.hpp"
#include "platform/binary_file.hpp"
#include "platform/codepage.hpp"
#include "platform/paths.hpp"

namespace kerfline::frame {
namespace {

enum class Field { kNone, kContext, kId, kPlural, kStr0, kOtherStr };

struct Entry {
  std::optional<std::string> context;
  std::optional<std::string> id;
  std::optional<std::string> str0;
  bool fuzzy = false;
  bool broken = false;
  Field field = Field::kNone;  // where a continuation line goes

  [[nodiscard]] bool started() const { return context || id || broken; }
};

struct Message {
  std::string id;
  std::string str;
};

// One PO file's entries in file order, before any charset conversion.
class Reader {
 public:
  void line(std::string_view text);
  void finish_entry();

  std::vector<Message> messages;
  std::optional<std::string> header;
  std::size_t broken = 0;

 private:
  void keyword_line(std::string_view text);
  void append(Field field, const std::string& value);

  Entry entry_;
  bool pending_fuzzy_ = false;
};

bool has_fuzzy_flag(std::string_view flags) {
  // "#, fuzzy, c-format": flags are separated by commas and blanks.
  std::size_t pos = 2;
  while (pos < flags.size()) {
    while (pos < flags.size() && (flags[pos] == ',' || flags[pos] == ' ' || flags[pos] == '\t')) ++pos;
    std::size_t end = pos;
    while (end < flags.size() && flags[end] != ',' && flags[end] != ' ' && flags[end] != '\t') ++end;
    if (flags.substr(pos, end - pos) == "fuzzy") return true;
    pos = end;
  }
  return false;
}

void Reader::line(std::string_view text) {
  const std::size_t start = skip_blanks(text, 0);
  text.remove_prefix(start);
  if (text.empty()) {
    // Entries are separated by blank lines: a complete one ends here, so a
    // stray line after it cannot spoil it.
    if (entry_.str0 && !entry_.broken) finish_entry();
    return;
  }
  if (text.front() == '#') {
    // A comment belongs to the entry that follows, so it ends the current one.
    finish_entry();
    if (text.substr(0, 2) == "#,") pending_fuzzy_ = pending_fuzzy_ || has_fuzzy_flag(text);
    return;
  }
  if (text.front() == '"') {
    if (entry_.broken) return;
    std::size_t pos = 0;
    auto value = read_c_literal(text, pos);
    if (!value || entry_.field == Field::kNone || skip_blanks(text, pos) != text.size()) {
      entry_.broken = true;
      return;
    }
    append(entry_.field, *value);
    return;
  }
  keyword_line(text);
}

void Reader::keyword_line(std::string_view text) {
  std::size_t end = 0;
  while (end < text.size() && text[end] != ' ' && text[end] != '\t' && text[end] != '"') ++end;
  const std::string_view keyword = text.substr(0, end);

  Field field = Field::kNone;
  if (keyword == "msgctxt" || keyword == "msgid") {
    // A new entry begins, except for the msgid that follows its own msgctxt.
    if (!(keyword == "msgid" && entry_.context && !entry_.id && !entry_.broken)) finish_entry();
    field = keyword == "msgid" ? Field::kId : Field::kContext;
  } else if (entry_.broken) {
    return;  // resynchronise at the next msgid or msgctxt
  } else if (!entry_.id) {
    field = Field::kNone;  // msgstr or msgid_plural without a msgid
  } else if (keyword == "msgid_plural") {
    field = Field::kPlural;
  } else if (keyword == "msgstr" || keyword == "msgstr[0]") {
    field = Field::kStr0;
  } else if (keyword.size() > 8 && keyword.substr(0, 7) == "msgstr[" && keyword.back() == ']') {
    field = Field::kOtherStr;
  }
  if (field == Field::kNone) {
    entry_.broken = true;
    return;
  }

  std::size_t pos = skip_blanks(text, end);
  auto value = read_c_literal(text, pos);
  if (!value || skip_blanks(text, pos) != text.size()) {
    entry_.broken = true;
    return;
  }
  const bool repeated = (field == Field::kId && entry_.id) || (field == Field::kContext && entry_.context) ||
                        (field == Field::kStr0 && entry_.str0);
  if (repeated) {
    entry_.broken = true;
    return;
  }
  if (field == Field::kId) entry_.id.emplace();
  if (field == Field::kContext) entry_.context.emplace();
  if (field == Field::kStr0) entry_.str0.emplace();
  entry_.field = field;
  append(field, *value);
}

void Reader::append(Field field, const std::string& value) {
  switch (field) {
    case Field::kId:
      *entry_.id += value;
      break;
    case Field::kContext:
      *entry_.context += value;
      break;
    case Field::kStr0:
      *entry_.str0 += value;
      break;
    default:
      break;  // plural forms other than the first are not needed
  }
}

void Reader::finish_entry() {
  Entry done = std::exchange(entry_, Entry{});
  const bool fuzzy = std::exchange(pending_fuzzy_, false);
  if (!done.started()) {
    pending_fuzzy_ = fuzzy;  // comments before the first keyword of an entry
    return;
  }
  if (done.broken || !done.id || !done.str0) {
    ++broken;
    return;
  }
  if (done.id->empty() && !done.context) {
    if (!header) header = std::move(*done.str0);
    return;
  }
  if (fuzzy || done.context || done.str0->empty()) return;
  messages.push_back(Message{std::move(*done.id), std::move(*done.str0)});
}

bool header_says_utf8(const std::string& header) {
  const std::string lower = platform::cp1252::to_lower(header);
  const std::size_t at = lower.find("charset=");
  if (at == std::string::npos) return false;
  std::size_t end = at + 8;
  while (end < lower.size() && lower[end] != ' ' && lower[end] != ';' && lower[end] != '\n' &&
         lower[end] != '\r' && lower[end] != '\t') {
    ++end;
  }
  const std::string charset = lower.substr(at + 8, end - at - 8);
  return charset == "utf-8" || charset == "utf8";
}

// UTF-8 to 1252; a malformed sequence or a character 1252 lacks becomes "?".
std::string utf8_to_1252(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  std::size_t i = 0;
  while (i < text.size()) {
    const auto lead = static_cast<unsigned char>(text[i]);
    int extra = 0;
    char32_t cp = 0;
    if (lead < 0x80) {
      cp = lead;
    } else if ((lead & 0xE0) == 0xC0) {
      extra = 1;
      cp = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
      extra = 2;
      cp = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
      extra = 3;
      cp = lead & 0x07;
    } else {
      units.push_back(u'?');
      ++i;
      continue;
    }
    std::size_t j = i + 1;
    for (int k = 0; k < extra; ++k, ++j) {
      if (j >= text.size() || (static_cast<unsigned char>(text[j]) & 0xC0) != 0x80) break;
      cp = (cp << 6) | (static_cast<unsigned char>(text[j]) & 0x3F);
    }
    const bool complete = j == i + 1 + static_cast<std::size_t>(extra);
    static constexpr char32_t kMin[] = {0, 0x80, 0x800, 0x10000};
    if (!complete || cp < kMin[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
      units.push_back(u'?');
      i = j;  // a broken sequence is one "?"; the byte that broke it starts the next
      continue;
    }
    i = j;
    if (cp >= 0x10000) {
      cp -= 0x10000;
      units.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    } else {
      units.push_back(static_cast<char16_t>(cp));
    }
  }
  return platform::cp1252::from_utf16(units);
}

}  // namespace

PoCatalog PoCatalog::parse(std::string_view contents) {
  bool utf8 = false;
  if (contents.substr(0, 3) == "\xEF\xBB\xBF") {
    contents.remove_prefix(3);
    utf8 = true;
  }
  Reader reader;
  for_each_line(contents, [&reader](std::string_view line) { reader.line(line); });
  reader.finish_entry();

  if (reader.header && header_says_utf8(*reader.header)) utf8 = true;
  PoCatalog catalog;
  catalog.broken_ = reader.broken;
  for (Message& m : reader.messages) {
    if (utf8) {
      catalog.messages_.try_emplace(utf8_to_1252(m.id), utf8_to_1252(m.str));
    } else {
      catalog.messages_.try_emplace(std::move(m.id), std::move(m.str));
    }
  }
  return catalog;
}

platform::Result<PoCatalog> PoCatalog::load(const std::string& path) {
  if (platform::is_directory(path)) return platform::OsError{0, path + " is a directory"};
  auto contents = platform::read_binary_file(path);
  if (!contents) return contents.error();
  return parse(*contents);
}

const std::string* PoCatalog::find(std::string_view text) const {
  const auto it = messages_.find(text);
  return it == messages_.end() ? nullptr : &it->second;
}

}  // namespace kerfline::frame
