#include "frame/text_replace.hpp"

#include <utility>

namespace kerfline::frame {

std::size_t replace_all(std::string& text, std::string_view find, std::string_view replacement) {
  if (find.empty()) return 0;
  std::size_t pos = text.find(find);
  if (pos == std::string::npos) return 0;
  // Build the result once so that many replacements stay linear.
  std::string out;
  out.reserve(text.size());
  std::size_t count = 0;
  std::size_t from = 0;
  while (pos != std::string::npos) {
    out.append(text, from, pos - from);
    out.append(replacement);
    from = pos + find.size();
    ++count;
    pos = text.find(find, from);
  }
  out.append(text, from, std::string::npos);
  text = std::move(out);
  return count;
}

}  // namespace kerfline::frame
