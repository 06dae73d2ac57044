// A driver document built in memory, with tools, materials, device-setting
// lists and variant names, opened through a VMV6DRV record; and driver files
// written below a TempDir.
#pragma once

#include <cstring>
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
    auto& root = doc.Root();
    root.AddChild(item("%Speed%", "speed"));
    root.AddChild(item("%Speed.3%", "speed3"));
    root.AddChild(item("%A.1%", "a1"));

    auto tools = group("Werkzeugvariablen");
    auto cut = group("Cut");
    cut->Value = "Contour";
    cut->AddChild(item("%Depth%", "tooldepth"));
    cut->AddChild(item("%Depth.3%", "tooldepth3"));
    cut->AddChild(item("%ISpeed%", "toolispeed"));
    cut->AddChild(dialog_var("%Dlg%", "  3.25  ", drv::type_code::kDouble, "Cut depth"));
    cut->AddChild(dialog_var("%IDlgInt%", "4", drv::type_code::kInteger, "Passes"));
    cut->AddChild(item("%Flags_1%", "1", drv::type_code::kBool));
    cut->AddChild(item("%Flags_2%", "0", drv::type_code::kBool));
    cut->AddChild(item("%OutFlag_2%", "1", drv::type_code::kBool));
    cut->AddChild(item("%OutFlag_3%", "no", drv::type_code::kBool));
    cut->AddChild(item("%LayerVarFlag%", " Yes ", drv::type_code::kBool));
    auto layers = group("Layervariablen", 0x8120);
    layers->AddChild(item("%Layer%", "layer"));
    layers->AddChild(item("%IDepth%", "layerdepth"));
    layers->AddChild(group("nested"));
    layers->AddChild(item("%Layer%", "layer twice"));
    cut->AddChild(layers);
    auto parms = group("Werkzeugparameter", 0x8121);
    parms->AddChild(item("%TP%", "tp"));
    cut->AddChild(parms);
    tools->AddChild(cut);
    cut_tool = cut.get();
    auto move = group("Move");
    move->Value = "Transfer";
    move->AddChild(item("%Flags_8%", "1", drv::type_code::kBool));
    tools->AddChild(move);
    root.AddChild(tools);

    auto materials = group("Materialvariablen");
    auto vinyl = group("Vinyl");
    vinyl->AddChild(item("%IMatSpeed%", "50", drv::type_code::kDouble));
    materials->AddChild(vinyl);
    root.AddChild(materials);

    auto video = group("%VideoSettings%");
    video->AddChild(item("%Cam%", "cam"));
    root.AddChild(video);
    auto joystick = group("%JoyStickSettings%");
    joystick->AddChild(item("%Step%", "step"));
    root.AddChild(joystick);
    auto special = group("Sonderbefehle:");
    special->AddChild(item("%CI_A%", "(A)"));
    special->AddChild(item("%CI_B%", "(B)"));
    root.AddChild(special);
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

}  // namespace kerfline::test
