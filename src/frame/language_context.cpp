#include "frame/language_context.hpp"

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>

#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace kerfline::frame {
namespace {

namespace ini = platform::ini;

struct Cache {
  std::mutex mutex;
  std::optional<LanguageContext> context;
  std::optional<std::string> language_dir;
  std::string home;  // the suite directory the cache was built from
  std::uint64_t generation = 0;
};

Cache& cache() {
  static Cache c;
  return c;
}

// A file the library only reads is taken in whatever case it exists.
std::string existing_or_given(const std::string& path) {
  return platform::resolve_case_insensitive(path).value_or(path);
}

// The key names of [Languages]. Read twice: into 64 bytes first, then into a
// buffer sized from that result, as the suite's own programs read it (a list
// longer than the first buffer therefore stays cut).
std::vector<std::string> read_language_names(const std::string& file) {
  std::array<char, 64> first{};
  const std::uint32_t length = ini::get_string("Languages", nullptr, "", first.data(), first.size(), file);
  std::vector<char> second(std::size_t{length} + 2 + 16, '\0');
  const std::uint32_t got = ini::get_string("Languages", nullptr, "", second.data(), length + 2, file);
  std::vector<std::string> names;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= got && i < second.size(); ++i) {
    if (second[i] != '\0') continue;
    if (i > start) names.emplace_back(second.data() + start, i - start);
    start = i + 1;
  }
  return names;
}

LanguageContext build(const std::string& base) {
  LanguageContext context;
  context.base_dir = base;
  context.resource_dir = platform::join_path(base, "Res") + platform::path_separator();
  context.language_file =
      existing_or_given(platform::join_path(base, platform::native_separators("Lang/lang.ini")));
  context.language_names = read_language_names(context.language_file);
  return context;
}

std::string read_language_directory(const LanguageContext& context) {
  std::array<char, 32> language{};
  const std::uint32_t length =
      ini::get_string("Default", "Actual", "Ger", language.data(), language.size(), context.language_file);
  const std::string dir = platform::join_path(platform::join_path(context.base_dir, "Lang"),
                                              std::string(language.data(), length));
  return existing_or_given(dir) + platform::path_separator();
}

// Brings the cache up to date with the suite directory; caller holds the lock.
void refresh(Cache& c) {
  const std::uint64_t generation = platform::home_dir_generation();
  std::string home = platform::home_dir();
  if (c.context && c.generation == generation && c.home == home) return;
  c.context = build(home);
  c.language_dir.reset();
  c.home = std::move(home);
  c.generation = generation;
}

}  // namespace

LanguageContext language_context() {
  Cache& c = cache();
  std::lock_guard lock(c.mutex);
  refresh(c);
  return *c.context;
}

std::string language_directory() {
  Cache& c = cache();
  std::lock_guard lock(c.mutex);
  refresh(c);
  if (!c.language_dir) c.language_dir = read_language_directory(*c.context);
  return *c.language_dir;
}

std::string help_file_path() { return language_directory() + "plotman.hlp"; }

void reset_language_context() {
  Cache& c = cache();
  std::lock_guard lock(c.mutex);
  c.context.reset();
  c.language_dir.reset();
}

}  // namespace kerfline::frame
