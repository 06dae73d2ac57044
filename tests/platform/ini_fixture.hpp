// A scratch INI file in a fresh directory for the INI tests.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "fixtures/temp_dir.hpp"

namespace kerfline::test {

inline std::string operator""_b(const char* text, std::size_t size) { return std::string(text, size); }

class IniFile {
 public:
  IniFile() : path_(dir_.str() + "test.ini") {}

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const TempDir& dir() const { return dir_; }
  void put(std::string_view bytes) const { dir_.write("test.ini", bytes); }
  [[nodiscard]] std::string bytes() const { return dir_.read("test.ini"); }
  [[nodiscard]] bool exists() const { return std::filesystem::exists(path_); }
  // Moves the file's time into the past, as for a file nobody touched lately.
  void age() const {
    std::filesystem::last_write_time(path_,
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  }

 private:
  TempDir dir_;
  std::string path_;
};

}  // namespace kerfline::test
