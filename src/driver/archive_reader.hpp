// Reads the object stream of a driver file from a byte buffer. Every read is
// checked against the end of the buffer; a length or count that the rest of
// the buffer cannot hold is an ArchiveError, never an allocation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "driver/archive_common.hpp"

namespace kerfline::driver {

class TextDefinitions;

// Where a reader over a stream (a socket) gets bytes that have not arrived
// yet. extend returns the whole buffer, the bytes already seen first, holding
// at least `total` bytes; it throws ArchiveError when it cannot (time-out,
// closed stream, a total beyond its bound). It must not allocate for bytes
// that have not arrived.
class ArchiveSource {
 public:
  virtual ~ArchiveSource() = default;
  virtual std::string_view extend(std::size_t total) = 0;
};

class ArchiveReader {
 public:
  explicit ArchiveReader(std::string_view bytes) : bytes_(bytes) {}
  // A reader that asks `source` for more whenever `bytes` runs short.
  ArchiveReader(std::string_view bytes, ArchiveSource& source) : bytes_(bytes), source_(&source) {}

  std::uint8_t read_byte();
  std::uint16_t read_word();
  std::uint32_t read_dword();
  std::int32_t read_long();
  double read_double();
  // A string in any of the three prefix forms, or the UTF-16 form converted
  // to 1252.
  std::string read_string();
  // An element count, checked against the bytes left when each element
  // takes at least `min_element_size` bytes.
  std::uint32_t read_count(std::size_t min_element_size);

  // One object reference. For a new object the caller creates it, calls
  // begin_object, reads its fields under schema() and calls end_object.
  struct ObjectTag {
    enum class Kind { Null, New, Reference } kind = Kind::Null;
    const ArchiveClass* cls = nullptr;  // New: its class
    std::uint16_t schema = 0;           // New: the schema its class was described with
    std::shared_ptr<void> object;       // Reference: the earlier object
  };
  ObjectTag read_object_tag(std::span<const ArchiveClass> known);

  // Registers a new object (it takes the next index) and makes `schema` the
  // schema of the fields that follow. end_object restores the outer schema and
  // lets later references reach the object.
  void begin_object(std::shared_ptr<void> object, std::uint16_t schema);
  void end_object();

  // The schema of the object being read (1 outside any object).
  [[nodiscard]] std::uint16_t schema() const { return schema_; }
  [[nodiscard]] std::size_t position() const { return pos_; }
  [[nodiscard]] std::size_t remaining() const { return bytes_.size() - pos_; }
  [[nodiscard]] bool at_end() const { return pos_ == bytes_.size(); }

  // Texts the items take their definitions from (may be null).
  const TextDefinitions* definitions = nullptr;

  // Deepest nesting of objects accepted; keeps a hostile file from
  // exhausting the stack.
  static constexpr std::size_t kMaxDepth = 200;

 private:
  std::string_view take(std::size_t n);
  // Whether n bytes are available after the position, asking the source
  // for more when there is one.
  bool available(std::size_t n);
  std::string read_string_body(std::uint32_t length);
  std::uint32_t read_length_prefix(bool& utf16);
  ObjectTag class_reference(std::uint32_t index, std::span<const ArchiveClass> known);
  ObjectTag object_reference(std::uint32_t index);

  struct Entry {
    const ArchiveClass* cls = nullptr;  // set for a class entry
    std::uint16_t schema = 0;
    std::shared_ptr<void> object;  // set for an object entry
    bool complete = false;
  };

  std::string_view bytes_;
  ArchiveSource* source_ = nullptr;
  std::size_t pos_ = 0;
  std::vector<Entry> map_{Entry{}};  // index 0: the null reference
  struct Open {
    std::size_t index;
    std::uint16_t outer_schema;
  };
  std::vector<Open> open_;
  std::uint16_t schema_ = 1;
};

}  // namespace kerfline::driver
