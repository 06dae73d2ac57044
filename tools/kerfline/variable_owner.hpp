// A tool or material of an open driver, found by name, as the owner record a
// variable request names; released on exit.
#pragma once

#include <string>

#include "kerfline/kerfline.h"

namespace kerfline::cli {

class VariableOwner {
 public:
  VariableOwner() = default;
  ~VariableOwner();
  VariableOwner(const VariableOwner&) = delete;
  VariableOwner& operator=(const VariableOwner&) = delete;

  // Finds the tool or material (names in the library's encoding; both empty:
  // no owner). False, with a message, when there is no such one.
  bool find(VMV6DRV* drv, const std::string& tool, const std::string& material);
  // The record for VMV6VAR.pOwner, null without owner.
  [[nodiscard]] void* record() { return owner_; }

 private:
  VMV6DRV* drv_ = nullptr;
  DRVTOOL tool_{};
  DRVMATERIAL material_{};
  void* owner_ = nullptr;
};

}  // namespace kerfline::cli
