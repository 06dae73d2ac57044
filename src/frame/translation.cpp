#include "frame/translation.hpp"

#include <array>
#include <atomic>
#include <string>

#include "frame/resources.hpp"
#include "frame/text_replace.hpp"
#include "frame/translation_store.hpp"

namespace kerfline::frame {
namespace {

// The translation file cannot hold "%" or a driver file's written line break
// ("\r\n" as four characters), so texts are looked up with these in their place.
constexpr std::string_view kPercent = "%";
constexpr std::string_view kPercentEscape = "!-Percent-!";
constexpr std::string_view kWrittenBreak = "\\r\\n";
constexpr std::string_view kLineBreak = "\r\n";
constexpr std::string_view kBreakMarker = "!-\r\n-!";

std::atomic<std::uint32_t>& flags() {
  static std::atomic<std::uint32_t> mask{0xFFFFFFFFu};
  return mask;
}

}  // namespace

std::optional<std::string> translate_text(std::string_view text) {
  std::string key(text.substr(0, text.find('\0')));
  replace_all(key, kPercent, kPercentEscape);
  replace_all(key, kWrittenBreak, kLineBreak);

  std::array<char, kTranslationBufferSize> out{};
  const std::int32_t found = translation_store().translate(key.c_str(), out.data(), out.size());
  if (found < 1) return std::nullopt;

  std::string result(out.data(), static_cast<std::size_t>(found));
  replace_all(result, kPercentEscape, kPercent);
  replace_all(result, kBreakMarker, kWrittenBreak);
  replace_all(result, kLineBreak, kWrittenBreak);
  return result;
}

bool translation_enabled(std::uint32_t kind) { return (flags().load() & kind) != 0; }

std::uint32_t translation_flags() { return flags().load(); }

std::uint32_t exchange_translation_flags(std::uint32_t mask) { return flags().exchange(mask); }

void add_translation_flags(std::uint32_t bits) { flags().fetch_or(bits); }

void remove_translation_flags(std::uint32_t bits) { flags().fetch_and(~bits); }

}  // namespace kerfline::frame
