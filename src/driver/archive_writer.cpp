#include "driver/archive_writer.hpp"

#include <bit>

namespace kerfline::driver {

void ArchiveWriter::write_word(std::uint16_t v) {
  write_byte(static_cast<std::uint8_t>(v & 0xFF));
  write_byte(static_cast<std::uint8_t>(v >> 8));
}

void ArchiveWriter::write_dword(std::uint32_t v) {
  for (int i = 0; i < 4; ++i) write_byte(static_cast<std::uint8_t>((v >> (8 * i)) & 0xFF));
}

void ArchiveWriter::write_double(double v) {
  const auto bits = std::bit_cast<std::uint64_t>(v);
  for (int i = 0; i < 8; ++i) write_byte(static_cast<std::uint8_t>((bits >> (8 * i)) & 0xFF));
}

void ArchiveWriter::write_string(std::string_view s) {
  const std::size_t n = s.size();
  if (n < 0xFF) {
    write_byte(static_cast<std::uint8_t>(n));
  } else if (n < 0xFFFE) {
    write_byte(0xFF);
    write_word(static_cast<std::uint16_t>(n));
  } else {
    write_byte(0xFF);
    write_word(0xFFFF);
    write_dword(static_cast<std::uint32_t>(n));
  }
  out_.append(s);
}

void ArchiveWriter::write_count(std::uint32_t count) {
  if (count < 0xFFFF) {
    write_word(static_cast<std::uint16_t>(count));
  } else {
    write_word(0xFFFF);
    write_dword(count);
  }
}

void ArchiveWriter::write_index(std::uint32_t index, bool is_class) {
  if (index < tag::kBigIndex) {
    write_word(static_cast<std::uint16_t>(is_class ? (tag::kClassBit | index) : index));
  } else {
    write_word(tag::kBigIndex);
    write_dword(is_class ? (tag::kBigClassBit | index) : index);
  }
}

bool ArchiveWriter::begin_object(const void* object, const ArchiveClass& cls) {
  if (const auto seen = objects_.find(object); seen != objects_.end()) {
    write_index(seen->second, false);
    return false;
  }
  if (const auto known = classes_.find(cls.name); known != classes_.end()) {
    write_index(known->second, true);
  } else {
    write_word(tag::kNewClass);
    write_word(cls.schema);
    write_word(static_cast<std::uint16_t>(cls.name.size()));
    out_.append(cls.name);
    classes_.emplace(cls.name, next_index_++);
  }
  objects_.emplace(object, next_index_++);
  return true;
}

}  // namespace kerfline::driver
