// "<VBStart>expression<VBEnd>" sections in driver texts (device answers,
// media-width formats): each is replaced by the expression's value.
#pragma once

#include <cstddef>
#include <string>

namespace kerfline::script {

// A text may hold at most this many sections (counting those that values
// bring in) and grow to at most this size while they are expanded.
inline constexpr int kMaxVbSections = 1000;
inline constexpr std::size_t kMaxExpandedText = std::size_t{16} * 1024U * 1024U;

// Starts an engine with global_code and, while the text holds "<VBStart>",
// replaces the text from the first "<VBStart>" to the first "<VBEnd>" (both
// looked for from the beginning, so sections go left to right and a value
// holding a section is expanded too) by the value of the expression between
// them. Empty when the engine fails (its box was shown), an evaluation
// fails (its box was shown), a "<VBStart>" has no "<VBEnd>" after it, or a
// limit above is passed. A text without "<VBStart>" comes back unchanged
// and starts no engine.
std::string expand_vb_sections(const std::string& text, const std::string& global_code);

}  // namespace kerfline::script
