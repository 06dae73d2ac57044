// Where tools, materials and device-setting lists live in a driver tree, and
// the references that DRVTOOL/DRVMATERIAL records carry to them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"

namespace kerfline::frame {

inline constexpr const char* kToolsGroup = "Werkzeugvariablen";
inline constexpr std::uint32_t kToolsGroupId = 33058;
inline constexpr const char* kMaterialsGroup = "Materialvariablen";
inline constexpr const char* kToolParmList = "Werkzeugparameter";
inline constexpr std::uint32_t kToolParmListType = 0x8121;
inline constexpr const char* kLayerList = "Layervariablen";
inline constexpr std::uint32_t kLayerListType = 0x8120;
inline constexpr const char* kJoystickList = "%JoyStickSettings%";
inline constexpr const char* kVideoList = "%VideoSettings%";

// The group holding the tools (by name, description or text number 33058),
// the group holding the materials, or a group found by name; null if absent.
driver::CDrvItemList* tools_group(driver::CVm6Drv& doc);
driver::CDrvItemList* materials_group(driver::CVm6Drv& doc);
driver::CDrvItemList* group_named(driver::CVm6Drv& doc, const std::string& name);

// The groups directly inside a tools or materials group, in order.
std::vector<std::shared_ptr<driver::CDrvItemList>> member_groups(const driver::CDrvItemList* container);

// A tool's sub-list, by its item type or its name; null when the tool has
// none.
driver::CDrvItemList* sub_list(const driver::CDrvItemList& tool, const char* name, std::uint32_t type);

// An item of the group's own variable list (items that are not groups).
driver::CDrvItem* own_variable(driver::CDrvItemList& group, const std::string& name);
std::int32_t own_variable_count(const driver::CDrvItemList& group);

// The group a DRVTOOL or DRVMATERIAL record refers to: null when the record
// was released (also a copy taken before), its tool or material is gone, it
// belongs to another driver document, or it never came from the list
// functions. Nothing is read through the record's pItem. Keep the result for
// as long as the group is used.
std::shared_ptr<driver::CDrvItemList> owner_group(const void* record, const driver::CVm6Drv& doc);

// The reference kept in the record's pItem, a number looked up in a table of
// live references: made by the list functions (throws bad_alloc), released
// by FreeTool/FreeMaterial (an unknown reference is ignored).
void* make_owner_ref(const driver::CVm6Drv& doc, const std::shared_ptr<driver::CDrvItemList>& group);
void release_owner_ref(void* ref);

}  // namespace kerfline::frame
