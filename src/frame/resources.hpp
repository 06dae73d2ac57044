// What the rest of the library uses of start-up, resources and translation.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kerfline::frame {

// The string tables, by the order in which the dictionary asks them.
inline constexpr int kCutterxTable = 0;   // "cutterx.dlx"
inline constexpr int kKerflineTable = 1;  // "kerfline.dlx"

// The text with number `id` in a string table (at most 511 bytes), or nothing
// when the number is not there or the table could not be loaded. Starts the
// library (init_library) first when the table is not loaded yet.
std::optional<std::string> resource_text(int table, std::uint32_t id);

// The translation of one driver text with the library's escapes applied
// ("%" and the four characters "\r\n" as the translation file keys them), or
// nothing when the translation service has none.
std::optional<std::string> translate_text(std::string_view text);

// Translation switches: a kind of text is translated only while its bit is set.
inline constexpr std::uint32_t kTranslateToolNames = 0x1;
inline constexpr std::uint32_t kTranslateMaterialNames = 0x2;
inline constexpr std::uint32_t kTranslateDialogTexts = 0x4;     // GetDlgVar
inline constexpr std::uint32_t kTranslateExtDialogTexts = 0x8;  // GetExtDlgVarData, GetDlgDefaultEx
bool translation_enabled(std::uint32_t kind);

// InitKerflineDll: 1 done; -1 "cutterx.dlx" missing or unreadable (then
// "kerfline.dlx" is not tried); -2 "kerfline.dlx" missing or unreadable.
std::int32_t init_library();

// InitKerflineDll2: starts the translation service once per process (again
// only when the earlier start failed and the suite directory has changed);
// the result of registering the calling thread, or 0.
std::int32_t start_translation();

}  // namespace kerfline::frame
