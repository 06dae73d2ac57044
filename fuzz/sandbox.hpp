// A private temporary directory for the harnesses that need files: made on
// first use, under a name no other run shares, and removed when the process
// exits (libFuzzer leaves through exit(), also after -runs or -max_total_time).
#pragma once

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace kerfline::fuzz {

inline const std::filesystem::path& sandbox_dir(const char* tag) {
  // Never destroyed, so that it is still there when the exit handler runs.
  static const std::filesystem::path* dir = [tag] {
    std::random_device random;
    auto* d =
        new std::filesystem::path(std::filesystem::temp_directory_path() /
                                  ("kerfline-fuzz-" + std::string(tag) + "-" + std::to_string(random())));
    std::filesystem::create_directories(*d);
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove_all(*dir, ec);
    });
    return d;
  }();
  return *dir;
}

}  // namespace kerfline::fuzz
