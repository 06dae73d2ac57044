// The item classes a driver stream may hold, and object references to items.
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "driver/archive_common.hpp"
#include "driver/drv_item.hpp"

namespace kerfline::driver {

class ArchiveReader;
class ArchiveWriter;

// The six item classes with their current schemas.
std::span<const ArchiveClass> item_classes();

// A new, empty item of the named class (null for an unknown name).
std::shared_ptr<CDrvItem> make_item(std::string_view class_name);

// Reads one object reference: a new item with its record, or an item read
// before. A null reference is a format error (a driver never holds one).
std::shared_ptr<CDrvItem> ReadItem(ArchiveReader& ar);

// Writes the reference to `item` and, the first time, its record.
void WriteItem(ArchiveWriter& ar, CDrvItem& item);

}  // namespace kerfline::driver
