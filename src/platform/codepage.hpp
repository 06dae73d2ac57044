// Windows-1252, the code page of every text the library handles.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kerfline::platform::cp1252 {

// Case mapping of one byte by the 1252 rules: ASCII letters, the accented
// letters (0xE0-0xFE but 0xF7), and the pairs š/Š, œ/Œ, ž/Ž, ÿ/Ÿ.
unsigned char to_upper(unsigned char c);
unsigned char to_lower(unsigned char c);

std::string to_upper(std::string_view text);
std::string to_lower(std::string_view text);

// Compares without regard to 1252 case: <0, 0, >0 as strcmp does.
int compare_no_case(std::string_view a, std::string_view b);
bool equals_no_case(std::string_view a, std::string_view b);

// Converts UTF-16LE code units to 1252. A character 1252 cannot hold becomes
// "?"; a surrogate pair is one character (so one "?"), and so is an unpaired
// surrogate.
std::string from_utf16(const char16_t* units, std::size_t count);
std::string from_utf16(std::u16string_view units);

// 1252 text as UTF-8, and back. from_utf8 fails (nothing) on malformed
// UTF-8 or a character that 1252 cannot hold, so a round trip never changes
// a byte silently.
std::string to_utf8(std::string_view text);
std::optional<std::string> from_utf8(std::string_view utf8);

// The Unicode code point of a 1252 byte. The five unassigned bytes 0x81,
// 0x8D, 0x8F, 0x90 and 0x9D map to the control points of the same value, as
// Windows maps them.
char32_t to_unicode(unsigned char c);

}  // namespace kerfline::platform::cp1252
