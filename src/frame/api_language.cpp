// Exports of start-up, language and translation.
#include <cstring>
#include <new>
#include <string>

#include "frame/language_context.hpp"
#include "frame/resources.hpp"
#include "frame/text_replace.hpp"
#include "frame/translation.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"

namespace kf = kerfline::frame;
using kerfline::platform::guarded;
using kerfline::platform::guarded_as;
using kerfline::platform::guarded_pointer;

extern "C" {

KERFLINE_API int32_t InitKerflineDll(void) noexcept {
  return guarded(KERFLINE_OUT_OF_MEMORY, [] { return kf::init_library(); });
}

KERFLINE_API int32_t InitKerflineDll2(void) noexcept {
  return guarded_as(0, [] { return kf::start_translation(); });
}

KERFLINE_API int32_t TranslateString(char* text, uint32_t size) noexcept {
  if (text == nullptr || size == 0) return 0;
  return guarded_as(0, [text, size] {
    const void* end = std::memchr(text, '\0', size);
    if (end == nullptr) return 0;
    const auto translated = kf::translate_text(std::string_view(text, static_cast<const char*>(end) - text));
    if (!translated || translated->size() + 1 > size) return 0;
    std::memcpy(text, translated->c_str(), translated->size() + 1);
    return 1;
  });
}

KERFLINE_API char* TranslateDrvString(const char* text, KERFLINE_ALLOC_FN alloc) noexcept {
  if (text == nullptr || alloc == nullptr) return nullptr;
  return guarded_pointer([text, alloc]() -> char* {
    const auto translated = kf::translate_text(text);
    if (!translated) return nullptr;
    auto* out = static_cast<char*>(alloc(translated->size() + 1));
    if (out != nullptr) std::memcpy(out, translated->c_str(), translated->size() + 1);
    return out;
  });
}

KERFLINE_API uint32_t AddTranslationFlag(uint32_t bits) noexcept {
  kf::add_translation_flags(bits);
  return bits;
}

KERFLINE_API uint32_t RemoveTranslationFlag(uint32_t bits) noexcept {
  kf::remove_translation_flags(bits);
  return ~bits;
}

KERFLINE_API uint32_t SetTranslationFlag(uint32_t mask) noexcept {
  return kf::exchange_translation_flags(mask);
}

KERFLINE_API uint32_t GetTranslationFlag(void) noexcept { return kf::translation_flags(); }

KERFLINE_API int32_t ReplaceString(char* buffer, const char* find, const char* replacement) noexcept {
  if (buffer == nullptr || find == nullptr || replacement == nullptr) return 0;
  return guarded_as(0, [buffer, find, replacement] {
    std::string text(buffer);
    const std::size_t count = kf::replace_all(text, find, replacement);
    if (count == 0) return 0;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<int32_t>(count);
  });
}

KERFLINE_API int32_t KerflineGetHelpFile(char* buf, uint32_t size) noexcept {
  if (buf == nullptr) return KERFLINE_BAD_ARGUMENT;
  return guarded(KERFLINE_OUT_OF_MEMORY, [buf, size] {
    const std::string path = kf::help_file_path();
    if (path.size() + 1 > size) return -static_cast<int32_t>(path.size() + 1);
    std::memcpy(buf, path.c_str(), path.size() + 1);
    return static_cast<int32_t>(path.size());
  });
}

}  // extern "C"
