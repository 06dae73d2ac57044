#include "variable_owner.hpp"

#include <cstdio>
#include <cstring>

#include "cli_io.hpp"

namespace kerfline::cli {

VariableOwner::~VariableOwner() {
  if (drv_ == nullptr) return;
  FreeTool(&tool_);
  FreeMaterial(&material_);
}

bool VariableOwner::find(VMV6DRV* drv, const std::string& tool, const std::string& material) {
  drv_ = drv;
  if (!tool.empty()) {
    for (int32_t r = GetFirstTool(drv, &tool_); r == 1; r = GetNextTool(drv, &tool_)) {
      if (tool_.pszName != nullptr && tool == tool_.pszName) {
        owner_ = &tool_;
        return true;
      }
    }
    std::fprintf(stderr, "kerfline: the driver has no tool named %s\n", to_terminal(tool).c_str());
    return false;
  }
  if (!material.empty()) {
    for (int32_t r = GetFirstMaterial(drv, &material_); r == 1; r = GetNextMaterial(drv, &material_)) {
      if (material_.pszName != nullptr && material == material_.pszName) {
        owner_ = &material_;
        return true;
      }
    }
    std::fprintf(stderr, "kerfline: the driver has no material named %s\n", to_terminal(material).c_str());
    return false;
  }
  return true;
}

}  // namespace kerfline::cli
