// Finding the item a request record names, for the exports built on the
// variables family's lookup rules.
#pragma once

#include <cstdint>

#include "driver/drv_item.hpp"
#include "driver/vm6drv.hpp"
#include "kerfline/kerfline.h"

namespace kerfline::frame {

struct Lookup {
  driver::CVm6Drv* doc = nullptr;
  driver::CDrvItem* item = nullptr;
  std::int32_t status = -5;  // 1 found, else the result code for the host
};

// GetVar's rules: record checks, the variant name first, kinds 1, 2, 3, 7, 8.
Lookup find_variable(const VMV6VAR* var);

// GetDlgVar's rules (no variant) for kinds 2, 3, 5, 6, and kind 1: the
// driver's tree.
Lookup find_dialog_variable(const VMV6DLGVAR* var);

}  // namespace kerfline::frame
