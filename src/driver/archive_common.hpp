// What the archive reader and writer share: the format error, the tags of the
// object stream and the description of a class that may appear in it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kerfline::driver {

// A stream that does not follow the format. Thrown by the reader and caught by
// whoever loads a file; it never leaves the driver module.
class ArchiveError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

namespace tag {
inline constexpr std::uint16_t kNull = 0x0000;
inline constexpr std::uint16_t kNewClass = 0xFFFF;
inline constexpr std::uint16_t kClassBit = 0x8000;
inline constexpr std::uint16_t kBigIndex = 0x7FFF;
inline constexpr std::uint32_t kBigClassBit = 0x80000000u;
// Class names this long or longer are refused.
inline constexpr std::size_t kMaxClassName = 63;
}  // namespace tag

// A class as the stream knows it. A versionable class reads objects of any
// schema up to its current one; the others accept only their own schema.
struct ArchiveClass {
  std::string_view name;
  std::uint16_t schema = 1;
  bool versionable = false;
};

}  // namespace kerfline::driver
