#include "driver/archive_reader.hpp"

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "platform/codepage.hpp"

namespace kerfline::driver {

bool ArchiveReader::available(std::size_t n) {
  if (n <= remaining()) return true;
  if (source_ == nullptr || n > SIZE_MAX - pos_) return false;
  bytes_ = source_->extend(pos_ + n);
  return n <= remaining();
}

std::string_view ArchiveReader::take(std::size_t n) {
  if (!available(n)) throw ArchiveError("unexpected end of file at offset " + std::to_string(pos_));
  const std::string_view out = bytes_.substr(pos_, n);
  pos_ += n;
  return out;
}

std::uint8_t ArchiveReader::read_byte() { return static_cast<std::uint8_t>(take(1)[0]); }

std::uint16_t ArchiveReader::read_word() {
  const std::string_view b = take(2);
  return static_cast<std::uint16_t>(static_cast<std::uint8_t>(b[0]) | (static_cast<std::uint8_t>(b[1]) << 8));
}

std::uint32_t ArchiveReader::read_dword() {
  const std::string_view b = take(4);
  std::uint32_t v = 0;
  for (int i = 3; i >= 0; --i) v = (v << 8) | static_cast<std::uint8_t>(b[static_cast<std::size_t>(i)]);
  return v;
}

std::int32_t ArchiveReader::read_long() { return static_cast<std::int32_t>(read_dword()); }

double ArchiveReader::read_double() {
  const std::string_view b = take(8);
  std::uint64_t v = 0;
  for (int i = 7; i >= 0; --i) v = (v << 8) | static_cast<std::uint8_t>(b[static_cast<std::size_t>(i)]);
  return std::bit_cast<double>(v);
}

// The prefix: a byte below 0xFF, or 0xFF and a WORD below 0xFFFE, or 0xFF,
// 0xFFFF and a DWORD. 0xFF 0xFFFE announces UTF-16 text whose own prefix
// follows (once; a second marker is taken as a length).
std::uint32_t ArchiveReader::read_length_prefix(bool& utf16) {
  utf16 = false;
  std::uint8_t b = read_byte();
  if (b < 0xFF) return b;
  std::uint16_t w = read_word();
  if (w == 0xFFFE) {
    utf16 = true;
    b = read_byte();
    if (b < 0xFF) return b;
    w = read_word();
  }
  if (w < 0xFFFF) return w;
  return read_dword();
}

std::string ArchiveReader::read_string() {
  bool utf16 = false;
  const std::uint32_t length = read_length_prefix(utf16);
  if (!utf16) return std::string(take(length));
  if (length > remaining() / 2) {
    if constexpr (sizeof(std::size_t) <= sizeof(std::uint32_t)) {
      if (length > SIZE_MAX / 2) throw ArchiveError("UTF-16 string longer than the file");
    }
    if (!available(std::size_t{length} * 2)) throw ArchiveError("UTF-16 string longer than the file");
  }
  const std::string_view raw = take(std::size_t{length} * 2);
  std::u16string units(length, u'\0');
  for (std::size_t i = 0; i < length; ++i) {
    units[i] = static_cast<char16_t>(static_cast<std::uint8_t>(raw[2 * i]) |
                                     (static_cast<std::uint8_t>(raw[2 * i + 1]) << 8));
  }
  return platform::cp1252::from_utf16(units);
}

std::uint32_t ArchiveReader::read_count(std::size_t min_element_size) {
  std::uint32_t count = read_word();
  if (count == 0xFFFF) count = read_dword();
  if (min_element_size > 0 && count > remaining() / min_element_size) {
    if (count > SIZE_MAX / min_element_size || !available(count * min_element_size)) {
      throw ArchiveError("element count " + std::to_string(count) + " exceeds the file");
    }
  }
  return count;
}

ArchiveReader::ObjectTag ArchiveReader::read_object_tag(std::span<const ArchiveClass> known) {
  const std::uint16_t word = read_word();
  if (word == tag::kNull) return {};
  if (word == tag::kNewClass) {
    const std::uint16_t schema = read_word();
    const std::uint16_t length = read_word();
    if (length > tag::kMaxClassName) throw ArchiveError("class name of " + std::to_string(length) + " bytes");
    const std::string_view name = take(length);
    const ArchiveClass* cls = nullptr;
    for (const ArchiveClass& c : known) {
      if (c.name == name) cls = &c;
    }
    if (cls == nullptr) throw ArchiveError("unknown class \"" + std::string(name) + "\"");
    const bool schema_ok = cls->versionable ? schema <= cls->schema : schema == cls->schema;
    if (!schema_ok) {
      throw ArchiveError("class " + std::string(name) + " with schema " + std::to_string(schema));
    }
    map_.push_back(Entry{cls, schema, nullptr, true});
    ObjectTag out;
    out.kind = ObjectTag::Kind::New;
    out.cls = cls;
    out.schema = schema;
    return out;
  }
  if (word == tag::kBigIndex) {
    const std::uint32_t big = read_dword();
    if ((big & tag::kBigClassBit) != 0) return class_reference(big & ~tag::kBigClassBit, known);
    return object_reference(big);
  }
  if ((word & tag::kClassBit) != 0) return class_reference(word & ~tag::kClassBit, known);
  return object_reference(word);
}

ArchiveReader::ObjectTag ArchiveReader::class_reference(std::uint32_t index, std::span<const ArchiveClass>) {
  if (index == 0 || index >= map_.size() || map_[index].cls == nullptr) {
    throw ArchiveError("class index " + std::to_string(index) + " was never assigned");
  }
  ObjectTag out;
  out.kind = ObjectTag::Kind::New;
  out.cls = map_[index].cls;
  out.schema = map_[index].schema;
  return out;
}

ArchiveReader::ObjectTag ArchiveReader::object_reference(std::uint32_t index) {
  if (index == 0 || index >= map_.size() || !map_[index].object) {
    throw ArchiveError("object index " + std::to_string(index) + " was never assigned");
  }
  // An object still being read would become its own descendant.
  if (!map_[index].complete)
    throw ArchiveError("object index " + std::to_string(index) + " refers to itself");
  ObjectTag out;
  out.kind = ObjectTag::Kind::Reference;
  out.object = map_[index].object;
  return out;
}

void ArchiveReader::begin_object(std::shared_ptr<void> object, std::uint16_t schema) {
  if (open_.size() >= kMaxDepth) throw ArchiveError("objects nested too deeply");
  map_.push_back(Entry{nullptr, 0, std::move(object), false});
  open_.push_back(Open{map_.size() - 1, schema_});
  schema_ = schema;
}

void ArchiveReader::end_object() {
  map_[open_.back().index].complete = true;
  schema_ = open_.back().outer_schema;
  open_.pop_back();
}

}  // namespace kerfline::driver
