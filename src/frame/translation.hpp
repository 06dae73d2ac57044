// Translation switches and the escapes of one text (internal to the frame).
#pragma once

#include <cstdint>

namespace kerfline::frame {

std::uint32_t translation_flags();
// Sets the whole mask; returns the previous one.
std::uint32_t exchange_translation_flags(std::uint32_t mask);
void add_translation_flags(std::uint32_t bits);
void remove_translation_flags(std::uint32_t bits);

// Size of the buffer the translation service writes into, zero included.
inline constexpr std::uint32_t kTranslationBufferSize = 2048;

}  // namespace kerfline::frame
