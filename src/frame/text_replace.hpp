// Substring replacement shared by the text utilities and the translation
// escapes: one pass, left to right, replaced text is never scanned again.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kerfline::frame {

// Replaces every occurrence of `find` in `text`; returns how many there were.
// An empty `find` matches nothing.
std::size_t replace_all(std::string& text, std::string_view find, std::string_view replacement);

}  // namespace kerfline::frame
