// The INI parser and editor on arbitrary bytes: every lookup must stay inside
// the input, and an edit must read back as written.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ini_document.hpp"

namespace ini = kerfline::platform::ini;

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ini::IniDocument doc(std::string(reinterpret_cast<const char*>(data), size));

  std::size_t listed = 0;
  for (std::string_view section : doc.section_names()) {
    if (++listed > 64) break;
    check(doc.has_section(section));
    for (std::string_view key : doc.key_names(section)) {
      const auto value = doc.find_value(section, key);
      check(value.has_value());
      (void)ini::parse_int(ini::unquote(*value));
    }
    (void)doc.section_line_list(section);
  }
  (void)doc.section_name_list();

  // Edits with well-formed names must take effect, whatever the file holds.
  const ini::IniDocument set(doc.with_value("Fz", "key", "v1"));
  check(set.find_value("fz", "KEY") == std::optional<std::string_view>("v1"));
  const ini::IniDocument removed(set.without_key("fz", "key"));
  check(!removed.find_value("fz", "key").has_value());
  const ini::IniDocument replaced(doc.with_section_lines("Fz", {"a=1", "b"}));
  check(replaced.find_value("fz", "a") == std::optional<std::string_view>("1"));
  check(replaced.section_line_list("fz") == std::string("a=1\0b\0", 6));
  const ini::IniDocument gone(replaced.without_section("FZ"));
  check(!gone.has_section("fz"));
  return 0;
}
