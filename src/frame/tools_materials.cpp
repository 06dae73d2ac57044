// Listing a driver's tools and materials, and adding and removing materials.
#include <cstring>
#include <new>

#include "frame/driver_handle.hpp"
#include "frame/driver_tree.hpp"
#include "frame/shown_text.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/library_memory.hpp"

namespace kerfline::frame {

using platform::library_alloc;
using platform::library_free;
using platform::library_strdup;
namespace {

using driver::CDrvItemList;
using driver::CVm6Drv;

constexpr std::uint32_t kMaterialVariablesBase = 6000;

void clear_tool(DRVTOOL& tool) {
  release_owner_ref(tool.pItem);
  library_free(tool.pszName);
  library_free(tool.pszType);
  std::memset(&tool, 0, sizeof tool);
}

void clear_material(DRVMATERIAL& material) {
  release_owner_ref(material.pItem);
  library_free(material.pszName);
  std::memset(&material, 0, sizeof material);
}

std::int32_t fill_tool(const CVm6Drv& doc, const std::shared_ptr<CDrvItemList>& group, std::int32_t index,
                       DRVTOOL& tool) {
  std::memset(&tool, 0, sizeof tool);
  // The reference first: a failure after it leaves nothing behind in the
  // record (clear_tool releases it with the texts).
  tool.pItem = make_owner_ref(doc, group);
  try {
    tool.pszName = library_strdup(shown_text(kShowToolName, group->Name));
    tool.pszType = library_strdup(group->GetValue());
  } catch (...) {
    clear_tool(tool);
    throw;
  }
  if (tool.pszName == nullptr || tool.pszType == nullptr) {
    clear_tool(tool);
    return KERFLINE_OUT_OF_MEMORY;
  }
  tool.nIndex = index;
  tool.nVarCount = own_variable_count(*group);
  return 1;
}

std::int32_t fill_material(const CVm6Drv& doc, const std::shared_ptr<CDrvItemList>& group, std::int32_t index,
                           DRVMATERIAL& material) {
  std::memset(&material, 0, sizeof material);
  material.pItem = make_owner_ref(doc, group);
  try {
    material.pszName = library_strdup(shown_text(kShowMaterialName, group->Name));
  } catch (...) {
    clear_material(material);
    throw;
  }
  if (material.pszName == nullptr) {
    clear_material(material);
    return KERFLINE_OUT_OF_MEMORY;
  }
  material.nIndex = index;
  material.nVarCount = own_variable_count(*group);
  return 1;
}

// The record's index decides the next entry; a record that holds nothing
// (index 0, no reference) starts over.
std::int32_t next_index(std::int32_t index, const void* item) {
  if (item == nullptr) return 0;
  return index < 0 ? 0 : index + 1;
}

std::int32_t list_tool(VMV6DRV* drv, DRVTOOL* tool, bool first) {
  CVm6Drv* doc = document_of(drv);
  if (doc == nullptr || tool == nullptr) return KERFLINE_BAD_ARGUMENT;
  const std::int32_t index = first ? 0 : next_index(tool->nIndex, tool->pItem);
  if (!first) clear_tool(*tool);
  const auto tools = member_groups(tools_group(*doc));
  if (static_cast<std::size_t>(index) >= tools.size()) {
    std::memset(tool, 0, sizeof *tool);
    return 0;
  }
  return fill_tool(*doc, tools[static_cast<std::size_t>(index)], index, *tool);
}

std::int32_t list_material(VMV6DRV* drv, DRVMATERIAL* material, bool first) {
  CVm6Drv* doc = document_of(drv);
  if (doc == nullptr || material == nullptr) return KERFLINE_BAD_ARGUMENT;
  const std::int32_t index = first ? 0 : next_index(material->nIndex, material->pItem);
  if (!first) clear_material(*material);
  const auto materials = member_groups(materials_group(*doc));
  if (static_cast<std::size_t>(index) >= materials.size()) {
    std::memset(material, 0, sizeof *material);
    return 0;
  }
  return fill_material(*doc, materials[static_cast<std::size_t>(index)], index, *material);
}

// A new material carries every standard material variable at its default.
std::shared_ptr<CDrvItemList> new_material(const CVm6Drv& doc, const std::string& name) {
  auto material = std::make_shared<CDrvItemList>();
  material->Name = name;
  for (const auto& kind : doc.Texts().kinds()) {
    if (kind.base != kMaterialVariablesBase) continue;
    for (std::uint32_t k = 0; k < kind.count; ++k) {
      const driver::ItemDefinition def = doc.Texts().definition(kind.base + kind.step * k);
      if (def.name.empty()) continue;
      auto item = std::make_shared<driver::CDrvItem>();
      item->Name = def.name;
      item->Description = def.description;
      item->Value = def.default_value;
      if (def.type) item->Type = *def.type;
      item->UpdateAtEnd();
      material->AddChild(std::move(item));
    }
  }
  return material;
}

std::int32_t add_material(VMV6DRV* drv, const char* name, DRVMATERIAL* out) {
  CVm6Drv* doc = document_of(drv);
  if (doc == nullptr || name == nullptr || *name == '\0') return KERFLINE_BAD_ARGUMENT;
  CDrvItemList* container = materials_group(*doc);
  std::shared_ptr<CDrvItemList> new_container;
  if (container == nullptr) {
    new_container = std::make_shared<CDrvItemList>();
    new_container->Name = kMaterialsGroup;
    container = new_container.get();
  }
  const auto materials = member_groups(container);
  for (const auto& material : materials) {
    if (material->Name == name) return 0;
  }
  // Everything that can run out of memory before the document changes, and
  // the change undone when attaching fails: -3 leaves the driver as it was.
  auto material = new_material(*doc, name);
  DRVMATERIAL filled{};
  if (out != nullptr) {
    const std::int32_t result =
        fill_material(*doc, material, static_cast<std::int32_t>(materials.size()), filled);
    if (result != 1) return result;
  }
  try {
    container->AddChild(material);
    if (new_container) doc->Root().AddChild(new_container);
    doc->RefreshGroupList();
  } catch (...) {
    if (new_container) {
      doc->Root().RemoveChild(new_container.get());
    } else {
      container->RemoveChild(material.get());
    }
    clear_material(filled);
    throw;
  }
  doc->PendingState = 0;
  if (out != nullptr) *out = filled;
  return 1;
}

std::int32_t delete_material(VMV6DRV* drv, const char* name) {
  CVm6Drv* doc = document_of(drv);
  if (doc == nullptr || name == nullptr) return KERFLINE_BAD_ARGUMENT;
  CDrvItemList* container = materials_group(*doc);
  for (const auto& material : member_groups(container)) {
    if (material->Name != name) continue;
    container->RemoveChild(material.get());
    doc->RefreshGroupList();
    doc->PendingState = 0;
    return 1;
  }
  return 0;
}

std::int32_t count_of(VMV6DRV* drv, bool tools) {
  CVm6Drv* doc = document_of(drv);
  if (doc == nullptr) return KERFLINE_BAD_ARGUMENT;
  return static_cast<std::int32_t>(member_groups(tools ? tools_group(*doc) : materials_group(*doc)).size());
}

}  // namespace
}  // namespace kerfline::frame

namespace frame = kerfline::frame;

using kerfline::platform::guarded;

extern "C" {

KERFLINE_API int32_t CountTools(VMV6DRV* drv) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return frame::count_of(drv, true); });
}

KERFLINE_API int32_t GetFirstTool(VMV6DRV* drv, DRVTOOL* tool) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return frame::list_tool(drv, tool, true); });
}

KERFLINE_API int32_t GetNextTool(VMV6DRV* drv, DRVTOOL* tool) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return frame::list_tool(drv, tool, false); });
}

KERFLINE_API int32_t FreeTool(DRVTOOL* tool) noexcept {
  if (tool == nullptr) return KERFLINE_BAD_ARGUMENT;
  frame::clear_tool(*tool);
  return 1;
}

KERFLINE_API int32_t CountMaterial(VMV6DRV* drv) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return frame::count_of(drv, false); });
}

KERFLINE_API int32_t GetFirstMaterial(VMV6DRV* drv, DRVMATERIAL* material) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return frame::list_material(drv, material, true); });
}

KERFLINE_API int32_t GetNextMaterial(VMV6DRV* drv, DRVMATERIAL* material) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return frame::list_material(drv, material, false); });
}

KERFLINE_API int32_t FreeMaterial(DRVMATERIAL* material) noexcept {
  if (material == nullptr) return KERFLINE_BAD_ARGUMENT;
  frame::clear_material(*material);
  return 1;
}

KERFLINE_API int32_t AddMaterial(VMV6DRV* drv, const char* name, DRVMATERIAL* material) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return frame::add_material(drv, name, material); });
}

KERFLINE_API int32_t DeleteMaterial(VMV6DRV* drv, const char* name) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return frame::delete_material(drv, name); });
}

}  // extern "C"
