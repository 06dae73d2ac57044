// Driver files the frame tests write: documents built in memory with the
// driver module's classes and stored below a TempDir.
#pragma once

#include <cstring>
#include <memory>
#include <string>

#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"
#include "fixtures/driver_items.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"

namespace kerfline::test {

// Stores the document that `fill` sets up as `relative` below dir.
template <typename Fill>
std::string write_driver(const TempDir& dir, const std::string& relative, Fill&& fill) {
  driver::CVm6Drv doc;
  fill(doc);
  doc.RefreshGroupList();
  return dir.write(relative, doc.WriteToBytes()).string();
}

// A record naming path, in the given mode.
inline VMV6DRV record_for(const std::string& path, int32_t app_mode = 0) {
  VMV6DRV drv{};
  std::strncpy(drv.szFileName, path.c_str(), sizeof(drv.szFileName) - 1);
  drv.nAppMode = app_mode;
  return drv;
}

}  // namespace kerfline::test
