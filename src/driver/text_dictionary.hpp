// The standard text dictionary: names, captions and descriptions known by
// 32-bit text number.
//
// A number is answered by the first of: the built-in table, the string table
// of "cutterx.dlx", the string table of "kerfline.dlx". A string-table answer
// is cut to 511 bytes and then passed through the translation service; when
// there is no translation the string-table text itself is the answer. A
// number found nowhere gives the empty text.
//
// The string tables and the translation service belong to the library frame,
// which installs them here; until it does (or with empty functions) the
// tables count as absent and nothing is translated.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kerfline::driver {

struct TextServices {
  // Text of `id` in a string table (0 = "cutterx.dlx", 1 = "kerfline.dlx"),
  // or nothing when the table is not loaded or has no such string.
  std::function<std::optional<std::string>(int table /*0 = cutterx.dlx, 1 = kerfline.dlx*/, std::uint32_t id)>
      resource_text;
  // Translation of a text, or nothing when none is known.
  std::function<std::optional<std::string>(std::string_view)> translate;
};

// Replaces the services for every later lookup (any thread). A lookup already
// running finishes with the services it started with.
void install_text_services(TextServices services);

// Text numbers the library asks for by number.
inline constexpr std::uint32_t kIntegerErrorCaptionId = 35589;

// The dictionary's answer for `id`; "" when no source knows it.
std::string dictionary_text(std::uint32_t id);

// Description of the variable named by `id`: the text of `id + 1`.
std::string dictionary_description(std::uint32_t id);

// The answer of the "kerfline.dlx" string table alone (translated as above);
// "" when it has none. Used for captions that only that table holds, such as
// kIntegerErrorCaptionId.
std::string kerfline_dictionary_text(std::uint32_t id);

}  // namespace kerfline::driver
