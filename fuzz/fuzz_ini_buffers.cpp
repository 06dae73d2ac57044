// The profile functions' buffer forms on an arbitrary file, with buffers of
// every small size: the section and key lists, a value, a section's lines and
// the list of languages the suite reads from "Lang/lang.ini". Nothing is
// written past a buffer, every answer is terminated inside it, and the count
// returned stays within it.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "frame/language_context.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"
#include "sandbox.hpp"

namespace ini = kerfline::platform::ini;

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

const std::filesystem::path& home() {
  static const std::filesystem::path dir = [] {
    const auto d = kerfline::fuzz::sandbox_dir("ini");
    std::filesystem::create_directories(d / "Lang");
    kerfline::platform::set_home_dir(d.string() + "/");
    return d;
  }();
  return dir;
}

// A buffer of exactly `size` bytes, so that ASan sees a write past it.
template <typename Read>
void in_buffer(std::uint32_t size, Read read) {
  const auto buffer = std::make_unique<char[]>(size);
  const std::uint32_t n = read(buffer.get(), size);
  if (size == 0) return;
  check(n < size);
  check(std::memchr(buffer.get(), '\0', size) != nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 16384) return 0;
  const std::string file = (home() / "Lang" / "lang.ini").string();
  {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  ini::clear_cache();
  const std::string first_section =
      ini::read_section_names(file).empty() ? "" : ini::read_section_names(file)[0];
  const char* section = first_section.c_str();
  const std::uint32_t sizes[] = {0, 1, 2, 3, 7, 64, 4096};
  for (const std::uint32_t n : sizes) {
    in_buffer(n, [&](char* b, std::uint32_t s) { return ini::get_string(nullptr, nullptr, "", b, s, file); });
    in_buffer(n, [&](char* b, std::uint32_t s) { return ini::get_string(section, nullptr, "", b, s, file); });
    in_buffer(
        n, [&](char* b, std::uint32_t s) { return ini::get_string(section, "Actual", "Ger", b, s, file); });
    in_buffer(n, [&](char* b, std::uint32_t s) { return ini::get_section(section, b, s, file); });
    in_buffer(n, [&](char* b, std::uint32_t s) { return ini::get_section_names(b, s, file); });
  }
  kerfline::frame::reset_language_context();
  for (const auto& name : kerfline::frame::language_context().language_names) check(!name.empty());
  (void)kerfline::frame::language_directory();
  return 0;
}
