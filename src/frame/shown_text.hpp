// Driver texts as the host is shown them: translated while the translation
// switch of their kind is on.
#pragma once

#include <cstdint>
#include <string>

namespace kerfline::frame {

// The translation switches (translation flags 0x1, 0x2, 0x4).
inline constexpr std::uint32_t kShowToolName = 0x1;
inline constexpr std::uint32_t kShowMaterialName = 0x2;
inline constexpr std::uint32_t kShowDialogText = 0x4;

std::string shown_text(std::uint32_t kind, const std::string& text);

}  // namespace kerfline::frame
