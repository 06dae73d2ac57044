#include "frame/shown_text.hpp"

#include "frame/resources.hpp"

namespace kerfline::frame {

std::string shown_text(std::uint32_t kind, const std::string& text) {
  if (!translation_enabled(kind)) return text;
  return translate_text(text).value_or(text);
}

}  // namespace kerfline::frame
