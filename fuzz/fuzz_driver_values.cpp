// Every named item of a driver read from arbitrary bytes, asked for with
// GetVar in every value type and from every place a name is looked up (the
// tree, each tool's and material's list): values turned into numbers must not
// crash, and a text value must be released as documented.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "driver/drv_item_list.hpp"
#include "driver/vm6drv.hpp"
#include "frame/driver_handle.hpp"
#include "kerfline/kerfline.h"

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

void collect(const kerfline::driver::CDrvItemList& group, std::vector<std::string>& names, int depth) {
  for (const auto& child : group.GetChildren()) {
    if (names.size() >= 64) return;
    if (!child->GetName().empty()) names.push_back(child->GetName());
    const auto* list = dynamic_cast<const kerfline::driver::CDrvItemList*>(child.get());
    if (list != nullptr && depth < 16) collect(*list, names, depth + 1);
  }
}

void ask(VMV6DRV& rec, const std::string& name, std::int32_t kind, void* owner) {
  for (std::int32_t type = 0; type <= 11; ++type) {
    VMV6VAR var{};
    std::strncpy(var.szName, name.c_str(), sizeof var.szName - 1);
    var.pDrv = &rec;
    var.nValueType = type;
    var.nKind = kind;
    var.pOwner = owner;
    const std::int32_t r = GetVar(&var);
    check(r == 1 || r == 0 || r == -2 || r == -5);
    if (r == 1 && var.nValueType == KERFLINE_VT_TEXT) {
      check(var.uValue.pszText != nullptr);
      check(FreeVar(&var) == 1 && var.uValue.pszText == nullptr);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 65536) return 0;
  VMV6DRV rec{};
  std::strcpy(rec.szFileName, "fuzz.vmd");
  check(InitDrvQuick(&rec) == 1);
  kerfline::driver::CVm6Drv* doc = kerfline::frame::document_of(&rec);
  if (doc->ReadFromBytes(std::string_view(reinterpret_cast<const char*>(data), size))) {
    std::vector<std::string> names;
    collect(doc->Root(), names, 0);
    DRVTOOL tool{};
    const bool has_tool = GetFirstTool(&rec, &tool) == 1;
    DRVMATERIAL material{};
    const bool has_material = GetFirstMaterial(&rec, &material) == 1;
    for (const auto& name : names) {
      for (const std::int32_t kind :
           {KERFLINE_VARKIND_DRIVER, KERFLINE_VARKIND_JOYSTICK, KERFLINE_VARKIND_VIDEO})
        ask(rec, name, kind, nullptr);
      if (has_tool) {
        ask(rec, name, KERFLINE_VARKIND_OWNER, &tool);
        ask(rec, name, KERFLINE_VARKIND_OWNER_INT, &tool);
      }
      if (has_material) ask(rec, name, KERFLINE_VARKIND_OWNER, &material);
    }
    if (has_tool) FreeTool(&tool);
    if (has_material) FreeMaterial(&material);
  }
  check(FreeDrv(&rec) == 1);
  return 0;
}
