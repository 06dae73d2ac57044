// The layout of a driver file around its root group: header tag, extended
// header, title and base-driver flag.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"

namespace kerfline::driver {

inline constexpr std::string_view kPlainTag = "VM6DRV";
inline constexpr std::string_view kExtendedTag = "VM6DRV$";

// The first string of the file, or nothing when the file does not even hold
// one.
std::optional<std::string> read_header_tag(std::string_view bytes);

struct DriverFileContents {
  ExtendedHeader header;
  std::string title;
  std::uint32_t base_driver_flag = 0;
  std::shared_ptr<CDrvItemList> root;
};

// Reads a file with a current-format tag. Whether the DWORD 0 follows an
// extended header is decided by the reading that yields a whole root group.
// Throws ArchiveError.
DriverFileContents parse_driver_file(std::string_view bytes, const TextDefinitions& texts);

// The title alone (nothing when the tag is not a current one or the file
// ends early).
std::optional<std::string> parse_driver_title(std::string_view bytes, const TextDefinitions& texts);

std::string write_driver_file(const ExtendedHeader& header, const std::string& title,
                              std::uint32_t base_driver_flag, CDrvItemList& root,
                              const TextDefinitions& texts);

}  // namespace kerfline::driver
