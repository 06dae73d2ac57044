// A driver document built in memory, with tools, materials, device-setting
// lists and variant names, opened through a VMV6DRV record; and driver files
// written below a TempDir.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>

#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"
#include "fixtures/driver_items.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"

namespace kerfline::test {

namespace drv = kerfline::driver;

// Items of the sample: typed, each described as "about <name>".
template <typename T = drv::CDrvItem>
std::shared_ptr<T> item(const std::string& name, const std::string& value,
                        std::uint32_t type = drv::type_code::kString) {
  auto it = named<T>(name, value);
  it->Type = type;
  it->Description = "about " + name;
  return it;
}

inline std::shared_ptr<drv::CDrvItemList> group(const std::string& name,
                                                std::uint32_t type = drv::type_code::kString) {
  auto g = named<drv::CDrvItemList>(name);
  g->Type = type;
  return g;
}

// Adds the children to the list, in order.
inline void add_all(drv::CDrvItemList& list, std::initializer_list<std::shared_ptr<drv::CDrvItem>> children) {
  for (const auto& child : children) list.AddChild(child);
}
inline std::shared_ptr<drv::CDrvItemList> with(
    std::shared_ptr<drv::CDrvItemList> list, std::initializer_list<std::shared_ptr<drv::CDrvItem>> children) {
  add_all(*list, children);
  return list;
}

inline std::shared_ptr<drv::CDrvItemDlgVar> dialog_var(const std::string& name, const std::string& value,
                                                       std::uint32_t type, const std::string& text) {
  auto d = item<drv::CDrvItemDlgVar>(name, value, type);
  d->DlgText = text;
  d->DlgFormat = "%.2f";
  return d;
}

// Stores the document that `fill` sets up as `relative` below dir.
template <typename Fill>
std::string write_driver(const TempDir& dir, const std::string& relative, Fill&& fill) {
  return dir.write(relative, driver_bytes(std::forward<Fill>(fill))).string();
}

// Whether every byte of a record is zero (as a released or refused record is).
inline bool all_zero(const void* record, std::size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(record);
  return std::all_of(bytes, bytes + size, [](unsigned char b) { return b == 0; });
}

// A record naming path, in the given mode.
inline VMV6DRV record_for(const std::string& path, int32_t app_mode = 0) {
  VMV6DRV drv{};
  std::strncpy(drv.szFileName, path.c_str(), sizeof(drv.szFileName) - 1);
  drv.nAppMode = app_mode;
  return drv;
}

// An open record for a document built in memory.
inline VMV6DRV handle_of(drv::CVm6Drv& doc) {
  VMV6DRV handle{};
  handle.pDrv = &doc;
  return handle;
}

// Tools "Cut" (Contour, with both sub-lists) and "Move" (Transfer, none);
// material "Vinyl"; "%VideoSettings%", "%JoyStickSettings%" and
// "Sonderbefehle:" lists; every item's value names the item.
struct SampleDriver {
  drv::CVm6Drv doc;
  VMV6DRV handle{};
  drv::CDrvItemList* cut_tool = nullptr;

  SampleDriver() {
    std::strcpy(handle.szFileName, "sample.drv");
    handle.pDrv = &doc;
    constexpr auto kBool = drv::type_code::kBool;
    auto cut =
        with(group("Cut"),
             {item("%Depth%", "tooldepth"), item("%Depth.3%", "tooldepth3"), item("%ISpeed%", "toolispeed"),
              dialog_var("%Dlg%", "  3.25  ", drv::type_code::kDouble, "Cut depth"),
              dialog_var("%IDlgInt%", "4", drv::type_code::kInteger, "Passes"), item("%Flags_1%", "1", kBool),
              item("%Flags_2%", "0", kBool), item("%OutFlag_2%", "1", kBool),
              item("%OutFlag_3%", "no", kBool), item("%LayerVarFlag%", " Yes ", kBool),
              with(group("Layervariablen", 0x8120), {item("%Layer%", "layer"), item("%IDepth%", "layerdepth"),
                                                     group("nested"), item("%Layer%", "layer twice")}),
              with(group("Werkzeugparameter", 0x8121), {item("%TP%", "tp")})});
    cut->Value = "Contour";
    cut_tool = cut.get();
    auto move = with(group("Move"), {item("%Flags_8%", "1", kBool)});
    move->Value = "Transfer";
    add_all(doc.Root(), {item("%Speed%", "speed"), item("%Speed.3%", "speed3"), item("%A.1%", "a1"),
                         with(group("Werkzeugvariablen"), {cut, move}),
                         with(group("Materialvariablen"),
                              {with(group("Vinyl"), {item("%IMatSpeed%", "50", drv::type_code::kDouble)})}),
                         with(group("%VideoSettings%"), {item("%Cam%", "cam")}),
                         with(group("%JoyStickSettings%"), {item("%Step%", "step")}),
                         with(group("Sonderbefehle:"), {item("%CI_A%", "(A)"), item("%CI_B%", "(B)")})});
    doc.RefreshGroupList();
  }

  SampleDriver(const SampleDriver&) = delete;
  SampleDriver& operator=(const SampleDriver&) = delete;

  // A GetVar (VMV6VAR) or GetDlgVar (VMV6DLGVAR) record for this driver.
  template <typename Record = VMV6VAR>
  Record request(const char* name, std::int32_t kind, std::int32_t value_type = KERFLINE_VT_TEXT,
                 void* owner = nullptr) {
    Record var{};
    std::strncpy(var.szName, name, sizeof var.szName - 1);
    var.pDrv = &handle;
    var.nKind = kind;
    var.nValueType = value_type;
    var.pOwner = owner;
    return var;
  }
  VMV6DLGVAR dialog_request(const char* name, std::int32_t kind, std::int32_t value_type, void* owner) {
    return request<VMV6DLGVAR>(name, kind, value_type, owner);
  }
};

// The sample's first tool ("Cut"), or with `second` its second ("Move"), read
// into a record that is released at the end of the scope.
struct ToolRecord {
  explicit ToolRecord(SampleDriver& d, bool second = false) {
    EXPECT_EQ(GetFirstTool(&d.handle, &record), 1);
    if (second) {
      EXPECT_EQ(GetNextTool(&d.handle, &record), 1);
    }
  }
  ToolRecord(const ToolRecord&) = delete;
  ToolRecord& operator=(const ToolRecord&) = delete;
  ~ToolRecord() { FreeTool(&record); }
  DRVTOOL record{};
};

}  // namespace kerfline::test
