// Translation of driver texts with a catalogue and a text from arbitrary
// bytes (the catalogue, a zero byte, the text): the escapes of "%" and of
// line breaks are undone without reading past either text, a translation
// never outgrows the service's 2048-byte buffer, and a text is changed in
// place only when its translation fits the caller's buffer.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "frame/translation.hpp"
#include "frame/translation_store.hpp"
#include "kerfline/kerfline.h"
#include "sandbox.hpp"

namespace kf = kerfline::frame;

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 16384) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = input.find('\0');
  if (end == std::string_view::npos) return 0;
  const std::string file = (kerfline::fuzz::sandbox_dir("translation") / "fuzz.po").string();
  {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(input.data(), static_cast<std::streamsize>(end));
  }
  kf::translation_store().reset();
  check(kf::translation_store().start(kf::make_start_record(file, "")) == 1);

  const std::string text(input.substr(end + 1));  // may hold more zero bytes
  char* whole = TranslateDrvString(text.c_str(), std::malloc);
  const std::size_t length = whole == nullptr ? 0 : std::strlen(whole);
  check(length < kf::kTranslationBufferSize * 2);  // each "\n" written back may take two bytes
  // In place: in a buffer just large enough, and in one a byte too small.
  for (const std::size_t extra : {1u, 0u}) {
    const std::size_t room = std::max(text.size() + 1, length + extra);
    const auto buffer = std::make_unique<char[]>(room);
    std::memcpy(buffer.get(), text.data(), text.size());
    buffer[text.size()] = '\0';
    const std::int32_t r = TranslateString(buffer.get(), static_cast<std::uint32_t>(room));
    check(r == 0 || length + 1 <= room);
    check(r == 0 || (whole != nullptr && std::strcmp(buffer.get(), whole) == 0));
    check(r == 1 || std::memcmp(buffer.get(), text.data(), text.size()) == 0);
  }
  std::free(whole);
  return 0;
}
