#include "platform/paths.hpp"

#include <atomic>
#include <cstdlib>
#include <mutex>

namespace kerfline::platform {
namespace {

struct HomeState {
  std::mutex mutex;
  std::string override_dir;
  std::atomic<std::uint64_t> generation{0};
};

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

std::string native_separators(std::string_view path) {
  std::string out(path);
  for (char& c : out) {
    if (c == '\\' || c == '/') c = path_separator();
  }
  return out;
}

}  // namespace kerfline::platform
