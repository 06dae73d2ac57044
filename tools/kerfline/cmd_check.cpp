// `kerfline version` and `kerfline check`: what library is this, and is the
// suite directory set up for it.
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "commands.hpp"
#include "kerfline/kerfline.h"

namespace kerfline::cli {
namespace {

std::string home_dir() {
  std::vector<char> buf(260);
  int32_t n = KerflineGetHomeDir(buf.data(), static_cast<uint32_t>(buf.size()));
  if (n < 0 && n != -2) {
    buf.resize(static_cast<std::size_t>(-n));
    n = KerflineGetHomeDir(buf.data(), static_cast<uint32_t>(buf.size()));
  }
  return n >= 0 ? std::string(buf.data(), static_cast<std::size_t>(n)) : std::string();
}

// Finds `relative` below `dir`, each component matched without regard to
// case, as the library does for the files it only reads.
bool exists_no_case(const std::filesystem::path& dir, const std::filesystem::path& relative) {
  std::filesystem::path current = dir;
  for (const auto& part : relative) {
    std::error_code ec;
    if (std::filesystem::exists(current / part, ec)) {
      current /= part;
      continue;
    }
    bool found = false;
    for (const auto& entry : std::filesystem::directory_iterator(current, ec)) {
      std::string a = entry.path().filename().string();
      std::string b = part.string();
      if (a.size() != b.size()) continue;
      bool same = true;
      for (std::size_t i = 0; i < a.size() && same; ++i) {
        same =
            std::tolower(static_cast<unsigned char>(a[i])) == std::tolower(static_cast<unsigned char>(b[i]));
      }
      if (same) {
        current = entry.path();
        found = true;
        break;
      }
    }
    if (!found) return false;
  }
  return true;
}

int run_check() {
  const std::string home = home_dir();
  std::printf("Kerfline %s\n", KerflineGetVersion());
  std::printf("suite directory: %s\n", home.c_str());
  std::error_code ec;
  if (home.empty() || !std::filesystem::is_directory(home, ec)) {
    std::fprintf(stderr, "kerfline: the suite directory %s does not exist\n", home.c_str());
    return kExitFailure;
  }
  struct Item {
    const char* path;
    const char* what;
  };
  const Item items[] = {
      {"Res/kerfline.dlx", "string table of the library"},
      {"Res/cutterx.dlx", "string table of the cutter texts"},
      {"Lang/lang.ini", "language selection"},
      {"plotman.ini", "device list and settings"},
  };
  int missing = 0;
  for (const auto& item : items) {
    const bool ok = exists_no_case(home, item.path);
    if (!ok) ++missing;
    std::printf("  %-18s %-8s %s\n", item.path, ok ? "found" : "missing", item.what);
  }
  std::printf("%s\n", missing == 0 ? "suite directory complete"
                                   : "suite directory usable; missing files take their defaults");
  return kExitOk;
}

}  // namespace

void register_version(CLI::App& app, CommandList& commands) {
  CLI::App* sub = app.add_subcommand("version", "Print the library version");
  commands.add(sub, [] {
    std::printf("%s\n", KerflineGetVersion());
    return kExitOk;
  });
}

void register_check(CLI::App& app, CommandList& commands) {
  CLI::App* sub = app.add_subcommand("check", "Self-check of the suite directory");
  commands.add(sub, run_check);
}

}  // namespace kerfline::cli
