#include "platform/paths.hpp"

#include <atomic>
#include <cstdlib>
#include <initializer_list>
#include <mutex>

namespace kerfline::platform {
namespace {

struct HomeState {
  std::mutex mutex;
  std::string override_dir;
  std::atomic<std::uint64_t> generation{0};
};

// Where an installation puts its files, relative to each other; set by the
// build from the install directories.
#ifndef KERFLINE_LIB_TO_DATA
#  define KERFLINE_LIB_TO_DATA "../share/kerfline"
#endif
#ifndef KERFLINE_BIN_TO_DATA
#  define KERFLINE_BIN_TO_DATA "../share/kerfline"
#endif
#ifndef KERFLINE_BIN_TO_LIB
#  define KERFLINE_BIN_TO_LIB "../lib"
#endif

std::mutex data_override_mutex;
std::string data_override;

HomeState& home_state() {
  static HomeState state;
  return state;
}

std::string with_trailing_separator(std::string dir) {
  if (dir.empty() || (dir.back() != '/' && dir.back() != path_separator())) {
    dir.push_back(path_separator());
  }
  return dir;
}

}  // namespace

std::string home_dir() {
  HomeState& state = home_state();
  {
    std::lock_guard lock(state.mutex);
    if (!state.override_dir.empty()) return with_trailing_separator(state.override_dir);
  }
  if (const char* env = std::getenv("KERFLINE_HOME"); env != nullptr && *env != '\0') {
    return with_trailing_separator(native_separators(env));
  }
  return executable_dir();
}

void set_home_dir(std::string_view dir) {
  HomeState& state = home_state();
  std::lock_guard lock(state.mutex);
  state.override_dir = native_separators(dir);
  state.generation.fetch_add(1);
}

std::uint64_t home_dir_generation() { return home_state().generation.load(); }

std::string join_path(std::string_view base, std::string_view leaf) {
  const char sep = path_separator();
  auto is_sep = [sep](char c) { return c == sep || c == '/'; };
  if (base.empty()) return std::string(leaf);
  if (leaf.empty()) return std::string(base);
  std::string out(base);
  while (out.size() > 1 && is_sep(out.back())) out.pop_back();
  if (!is_sep(out.back())) out.push_back(sep);
  std::size_t start = 0;
  while (start < leaf.size() && is_sep(leaf[start])) ++start;
  out.append(leaf.substr(start));
  return out;
}

namespace {

// The first of the directories below library_dir() that exists. The code may
// sit in the shared library (lib/) or be linked into a program (bin/).
std::string first_installed_dir(std::initializer_list<std::string_view> relative) {
  const std::string base = library_dir();
  for (const std::string_view rel : relative) {
    const std::string dir = join_path(base, native_separators(rel));
    if (is_directory(dir)) return with_trailing_separator(dir);
  }
  return {};
}

}  // namespace

std::string data_dir() {
  {
    std::lock_guard lock(data_override_mutex);
    if (!data_override.empty()) return with_trailing_separator(data_override);
  }
  return first_installed_dir({KERFLINE_LIB_TO_DATA, KERFLINE_BIN_TO_DATA});
}

std::string plugin_dir() {
  return first_installed_dir({"kerfline/plugins", KERFLINE_BIN_TO_LIB "/kerfline/plugins"});
}

void testing::set_data_dir(std::string_view dir) {
  std::lock_guard lock(data_override_mutex);
  data_override = native_separators(dir);
}

std::string native_separators(std::string_view path) {
  std::string out(path);
  for (char& c : out) {
    if (c == '\\' || c == '/') c = path_separator();
  }
  return out;
}

}  // namespace kerfline::platform
