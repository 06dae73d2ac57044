// Writes the object stream of a driver file into a byte buffer.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "driver/archive_common.hpp"

namespace kerfline::driver {

class TextDefinitions;

class ArchiveWriter {
 public:
  void write_byte(std::uint8_t v) { out_.push_back(static_cast<char>(v)); }
  void write_word(std::uint16_t v);
  void write_dword(std::uint32_t v);
  void write_long(std::int32_t v) { write_dword(static_cast<std::uint32_t>(v)); }
  void write_double(double v);
  // Shortest of the three prefix forms, then the bytes.
  void write_string(std::string_view s);
  void write_count(std::uint32_t count);

  // Writes the reference to `object` of class `cls`. An object written
  // before becomes a back-reference and the result is false: its fields
  // must not follow. Otherwise the class is described on its first use,
  // the object takes the next index, and the caller writes its fields.
  bool begin_object(const void* object, const ArchiveClass& cls);
  void write_null() { write_word(tag::kNull); }

  [[nodiscard]] const std::string& bytes() const { return out_; }
  std::string take_bytes() { return std::move(out_); }

  // Texts the items use while being stored (may be null).
  const TextDefinitions* definitions = nullptr;

 private:
  void write_index(std::uint32_t index, bool is_class);

  std::string out_;
  std::uint32_t next_index_ = 1;
  std::unordered_map<std::string_view, std::uint32_t> classes_;
  std::unordered_map<const void*, std::uint32_t> objects_;
};

}  // namespace kerfline::driver
