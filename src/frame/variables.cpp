// The variables family: reading and setting one variable of an open driver
// by name and place, walking a group, and the device-setting lists.
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <unordered_set>

#include "driver/drv_item_dlg_var.hpp"
#include "frame/driver_handle.hpp"
#include "frame/driver_tree.hpp"
#include "frame/shown_text.hpp"
#include "frame/variable_lookup.hpp"
#include "frame/variable_values.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/library_memory.hpp"

namespace kerfline::frame {

using platform::library_alloc;
using platform::library_free;
using platform::library_strdup;
namespace {

using driver::CDrvItem;
using driver::CDrvItemList;
using driver::CVm6Drv;

enum class Api { Get, Dialog, DialogData, Set };

// The name in a record, or nothing when its 64 bytes hold no terminator.
std::optional<std::string> name_of(const char (&name)[64]) {
  const void* zero = std::memchr(name, 0, sizeof name);
  if (zero == nullptr) return std::nullopt;
  return std::string(name, static_cast<const char*>(zero));
}

void replace_all(std::string& text, const std::string& from, const std::string& to) {
  std::string out;
  out.reserve(text.size() + 8);
  std::size_t pos = 0;
  for (std::size_t hit; (hit = text.find(from, pos)) != std::string::npos; pos = hit + from.size()) {
    out.append(text, pos, hit - pos).append(to);
  }
  out.append(text, pos, std::string::npos);
  text.swap(out);
}

// "%Speed%" -> "%ISpeed%": integer variables carry an "I" after the "%".
std::string integer_form(const std::string& name) {
  std::string out = "%" + name;
  replace_all(out, "%%", "%I");
  return out;
}

CDrvItem* plain_child(CDrvItemList* list, const std::string& name) {
  if (list == nullptr) return nullptr;
  return own_variable(*list, name);
}

struct Found {
  CDrvItem* item = nullptr;
  std::int32_t status = KERFLINE_NOT_FOUND;
};

bool kind_allowed(Api api, std::int32_t kind) {
  switch (kind) {
    case KERFLINE_VARKIND_DRIVER:
      return api != Api::Dialog;
    case KERFLINE_VARKIND_JOYSTICK:
    case KERFLINE_VARKIND_VIDEO:
      return api != Api::Dialog && api != Api::DialogData;
    case KERFLINE_VARKIND_OWNER:
    case KERFLINE_VARKIND_OWNER_INT:
      return true;
    case KERFLINE_VARKIND_LAYER:
    case KERFLINE_VARKIND_TOOLPARM:
      return api != Api::Get;
    default:
      return false;
  }
}

Found lookup(CVm6Drv& doc, const std::string& name, std::int32_t kind, const void* owner, Api api) {
  if (!kind_allowed(api, kind)) return {};
  switch (kind) {
    case KERFLINE_VARKIND_DRIVER:
      return {doc.FindItem(name), KERFLINE_NOT_FOUND};
    case KERFLINE_VARKIND_JOYSTICK:
      return {plain_child(group_named(doc, kJoystickList), name), KERFLINE_NOT_FOUND};
    case KERFLINE_VARKIND_VIDEO:
      return {plain_child(group_named(doc, kVideoList), name), KERFLINE_NOT_FOUND};
    default:
      break;
  }
  const bool sub_list_kind = kind == KERFLINE_VARKIND_LAYER || kind == KERFLINE_VARKIND_TOOLPARM;
  if (owner == nullptr) return {nullptr, sub_list_kind ? KERFLINE_BAD_ARGUMENT : KERFLINE_NOT_FOUND};
  const std::shared_ptr<CDrvItemList> owner_list = owner_group(owner, doc);
  CDrvItemList* group = owner_list.get();
  if (group == nullptr) return {};
  switch (kind) {
    case KERFLINE_VARKIND_OWNER:
      return {own_variable(*group, name), KERFLINE_NOT_FOUND};
    case KERFLINE_VARKIND_OWNER_INT:
      return {own_variable(*group, integer_form(name)), KERFLINE_NOT_FOUND};
    case KERFLINE_VARKIND_TOOLPARM:
      return {plain_child(sub_list(*group, kToolParmList, kToolParmListType), name), KERFLINE_NOT_FOUND};
    default: {
      CDrvItemList* layers = sub_list(*group, kLayerList, kLayerListType);
      if (CDrvItem* item = plain_child(layers, name)) return {item, KERFLINE_NOT_FOUND};
      std::string retry = "%I" + name;
      replace_all(retry, "%I%", "%I");
      return {plain_child(layers, retry), KERFLINE_NOT_FOUND};
    }
  }
}

bool has_variant(const CVm6Drv& doc, const std::string& name) {
  return doc.Variant != "0" && name.find('.') == std::string::npos;
}

std::string variant_name(const CVm6Drv& doc, const std::string& name) {
  return name.substr(0, name.size() - 1) + "." + doc.Variant + "%";
}

void release_text(std::int32_t value_type, VMV6VALUE& value) {
  if (value_type != KERFLINE_VT_TEXT) return;
  library_free(value.pszText);
  value.pszText = nullptr;
}

// Steps 3 and 4 of a read: find, convert, and for a dialog variable found in
// the owner's list, its number.
std::int32_t read_found(CVm6Drv& doc, const std::string& name, std::int32_t kind, const void* owner, Api api,
                        ValueSlot slot, double& number, CDrvItem** found_item) {
  const Found found = lookup(doc, name, kind, owner, api);
  if (found.item == nullptr) return found.status;
  const std::int32_t result = read_value(*found.item, slot, owner != nullptr);
  if (result > 0 && kind == KERFLINE_VARKIND_OWNER &&
      dynamic_cast<const driver::CDrvItemDlgVar*>(found.item) != nullptr) {
    number = leading_number(found.item->GetValue()).value_or(0.0);
  }
  if (found_item != nullptr) *found_item = found.item;
  return result;
}

std::int32_t read_var(CVm6Drv& doc, VMV6VAR& var, const std::string& name, CDrvItem** found_item) {
  if (has_variant(doc, name)) {
    // The attempt works on a copy so that a failure leaves the host's
    // record as it was.
    VMV6VAR attempt = var;
    CDrvItem* variant_item = nullptr;
    const std::int32_t result =
        read_found(doc, variant_name(doc, name), var.nKind, var.pOwner, Api::Get,
                   {attempt.nValueType, attempt.uValue}, attempt.dNumber, &variant_item);
    if (result > 0) {
      var = attempt;
      if (found_item != nullptr) *found_item = variant_item;
      return result;
    }
    if (variant_item != nullptr) release_text(attempt.nValueType, attempt.uValue);
  }
  return read_found(doc, name, var.nKind, var.pOwner, Api::Get, {var.nValueType, var.uValue}, var.dNumber,
                    found_item);
}

// Record, driver and name checks shared by the calls taking a VMV6VAR.
template <typename Record>
CVm6Drv* checked(const Record* var, std::string& name) {
  if (var == nullptr) return nullptr;
  CVm6Drv* doc = document_of(var->pDrv);
  if (doc == nullptr) return nullptr;
  auto n = name_of(var->szName);
  if (!n || n->empty()) return nullptr;
  name = std::move(*n);
  return doc;
}

std::int32_t get_var(VMV6VAR* var, char** description) {
  std::string name;
  CVm6Drv* doc = checked(var, name);
  if (doc == nullptr) return KERFLINE_BAD_ARGUMENT;
  CDrvItem* item = nullptr;
  const std::int32_t result = read_var(*doc, *var, name, description != nullptr ? &item : nullptr);
  if (result > 0 && description != nullptr) {
    *description = library_strdup(item->GetDescription());
    if (*description == nullptr) {
      release_text(var->nValueType, var->uValue);
      return KERFLINE_OUT_OF_MEMORY;
    }
  }
  return result;
}

std::int32_t get_dlg_var(VMV6DLGVAR* var) {
  std::string name;
  CVm6Drv* doc = checked(var, name);
  if (doc == nullptr) return KERFLINE_BAD_ARGUMENT;
  CDrvItem* item = nullptr;
  const std::int32_t result = read_found(*doc, name, var->nKind, var->pOwner, Api::Dialog,
                                         {var->nValueType, var->uValue}, var->dNumber, &item);
  if (result <= 0) return result;
  var->pszDlgText = nullptr;
  var->pszDlgFormat = nullptr;
  if (const auto* dlg = dynamic_cast<const driver::CDrvItemDlgVar*>(item)) {
    var->pszDlgText = library_strdup(shown_text(kShowDialogText, dlg->DlgText));
    var->pszDlgFormat = library_strdup(shown_text(kShowDialogText, dlg->DlgFormat));
    if (var->pszDlgText == nullptr || var->pszDlgFormat == nullptr) {
      library_free(var->pszDlgText);
      library_free(var->pszDlgFormat);
      var->pszDlgText = nullptr;
      var->pszDlgFormat = nullptr;
      release_text(var->nValueType, var->uValue);
      return KERFLINE_OUT_OF_MEMORY;
    }
  }
  return result;
}

std::int32_t set_var(VMV6VAR* var) {
  std::string name;
  CVm6Drv* doc = checked(var, name);
  if (doc == nullptr) return KERFLINE_BAD_ARGUMENT;
  Found found;
  if (has_variant(*doc, name))
    found = lookup(*doc, variant_name(*doc, name), var->nKind, var->pOwner, Api::Set);
  if (found.item == nullptr) found = lookup(*doc, name, var->nKind, var->pOwner, Api::Set);
  if (found.item == nullptr) return found.status;
  if (var->nValueType == KERFLINE_VT_TEXT && var->uValue.pszText == nullptr) return KERFLINE_BAD_ARGUMENT;
  const auto text = value_text(*found.item, {var->nValueType, var->uValue});
  if (!text) return 0;
  return set_item_text(*found.item, *text) ? 1 : 0;
}

// The group a walk goes through; `tool` keeps the owner's group alive for as
// long as the result is used.
CDrvItemList* walked_group(CVm6Drv& doc, const void* owner, const std::string& group,
                           std::shared_ptr<CDrvItemList>& tool) {
  if (owner != nullptr) tool = owner_group(owner, doc);
  if (group == kToolParmList)
    return tool != nullptr ? sub_list(*tool, kToolParmList, kToolParmListType) : nullptr;
  if (group == kLayerList) return tool != nullptr ? sub_list(*tool, kLayerList, kLayerListType) : nullptr;
  if (tool != nullptr) {
    for (const auto& child : member_groups(tool.get())) {
      if (child->Name == group) return child.get();
    }
  }
  return group_named(doc, group);
}

// Where the last step of a walk on this thread stopped, so that the next step
// need not search its place from the start of the group. Weak references
// notice a group or item that went away; anything that does not match is a
// miss and the step searches as before.
struct WalkCursor {
  std::weak_ptr<const CDrvItem> list;
  std::weak_ptr<const CDrvItem> item;
  std::size_t index = 0;
  std::size_t size = 0;
  std::unordered_set<std::string> seen;  // names taken or skipped up to index
};

thread_local WalkCursor walk_cursor;

bool cursor_matches(const CDrvItemList& list, const std::string& current) {
  const WalkCursor& c = walk_cursor;
  const auto cached_list = c.list.lock();
  const auto cached_item = c.item.lock();
  const auto& children = list.GetChildren();
  return cached_list.get() == &list && cached_item != nullptr && c.size == children.size() &&
         c.index < children.size() && children[c.index].get() == cached_item.get() &&
         cached_item->Name == current;
}

std::int32_t walk(VMV6VAR* var, const char* group, bool first) {
  if (var == nullptr || group == nullptr) return KERFLINE_BAD_ARGUMENT;
  CVm6Drv* doc = document_of(var->pDrv);
  if (doc == nullptr) return KERFLINE_BAD_ARGUMENT;
  std::optional<std::string> current;
  if (!first) {
    current = name_of(var->szName);
    release_text(var->nValueType, var->uValue);
    if (!current) return 0;
  }
  std::shared_ptr<CDrvItemList> tool;
  CDrvItemList* list = walked_group(*doc, var->pOwner, group, tool);
  if (list == nullptr) return KERFLINE_NOT_FOUND;
  const auto& children = list->GetChildren();
  WalkCursor& cursor = walk_cursor;
  std::size_t start = 0;
  if (first || !cursor_matches(*list, *current)) {
    cursor.seen.clear();
    bool take = first;
    // Find the place: the first plain item named as the record says.
    for (; !take && start < children.size(); ++start) {
      const CDrvItem& child = *children[start];
      if (dynamic_cast<const CDrvItemList*>(&child) != nullptr) continue;
      if (child.Name.size() >= sizeof var->szName || !cursor.seen.insert(child.Name).second) continue;
      take = child.Name == *current;
    }
    if (!take) return 0;
  } else {
    start = cursor.index + 1;
  }
  for (std::size_t i = start; i < children.size(); ++i) {
    const auto& child = children[i];
    if (dynamic_cast<const CDrvItemList*>(child.get()) != nullptr) continue;
    const std::string& name = child->Name;
    if (name.size() >= sizeof var->szName || !cursor.seen.insert(name).second) continue;
    cursor.list = list->weak_from_this();
    cursor.item = child;
    cursor.index = i;
    cursor.size = children.size();
    std::memcpy(var->szName, name.c_str(), name.size() + 1);
    const std::int32_t result = read_value(*child, {var->nValueType, var->uValue}, var->pOwner != nullptr);
    if (result > 0 && dynamic_cast<const driver::CDrvItemDlgVar*>(child.get()) != nullptr) {
      var->dNumber = leading_number(child->GetValue()).value_or(0.0);
    }
    return result;
  }
  cursor = WalkCursor{};
  return 0;
}

std::int32_t has_setting(VMV6DRV* drv, const char* list_name, const char* name) {
  CVm6Drv* doc = document_of(drv);
  if (doc == nullptr || name == nullptr) return KERFLINE_BAD_ARGUMENT;
  return plain_child(group_named(*doc, list_name), name) != nullptr ? 1 : 0;
}

std::int32_t set_setting(VMV6DRV* drv, const char* list_name, const char* name, const char* value) {
  CVm6Drv* doc = document_of(drv);
  if (doc == nullptr || name == nullptr || *name == '\0' || value == nullptr) return KERFLINE_BAD_ARGUMENT;
  CDrvItemList* list = group_named(*doc, list_name);
  if (list == nullptr) {
    auto added = std::make_shared<CDrvItemList>();
    added->Name = list_name;
    list = added.get();
    doc->Root().AddChild(std::move(added));
    doc->RefreshGroupList();
  }
  CDrvItem* item = plain_child(list, name);
  if (item == nullptr) {
    auto added = std::make_shared<CDrvItem>();
    added->Name = name;
    item = added.get();
    list->AddChild(std::move(added));
  }
  return set_item_text(*item, value) ? 1 : 0;
}

std::int32_t set_setting_once(VMV6DRV* drv, const char* list_name, const char* name, const char* value) {
  CVm6Drv* doc = document_of(drv);
  if (doc == nullptr || name == nullptr || *name == '\0' || value == nullptr) return KERFLINE_BAD_ARGUMENT;
  if (plain_child(group_named(*doc, list_name), name) != nullptr) return 0;
  return set_setting(drv, list_name, name, value);
}

}  // namespace

Lookup find_variable(const VMV6VAR* var) {
  std::string name;
  CVm6Drv* doc = checked(var, name);
  if (doc == nullptr) return {nullptr, nullptr, KERFLINE_BAD_ARGUMENT};
  Found found;
  if (has_variant(*doc, name))
    found = lookup(*doc, variant_name(*doc, name), var->nKind, var->pOwner, Api::Get);
  if (found.item == nullptr) found = lookup(*doc, name, var->nKind, var->pOwner, Api::Get);
  return {doc, found.item, found.item != nullptr ? 1 : found.status};
}

Lookup find_dialog_variable(const VMV6DLGVAR* var) {
  std::string name;
  CVm6Drv* doc = checked(var, name);
  if (doc == nullptr) return {nullptr, nullptr, KERFLINE_BAD_ARGUMENT};
  const Found found = lookup(*doc, name, var->nKind, var->pOwner, Api::DialogData);
  return {doc, found.item, found.item != nullptr ? 1 : found.status};
}

}  // namespace kerfline::frame

using kerfline::platform::guarded;

extern "C" {

KERFLINE_API int32_t GetVar(VMV6VAR* var) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::get_var(var, nullptr); });
}

KERFLINE_API int32_t FreeVar(VMV6VAR* var) noexcept {
  if (var == nullptr) return KERFLINE_BAD_ARGUMENT;
  if (var->nValueType != KERFLINE_VT_TEXT) return 1;
  if (var->uValue.pszText == nullptr) return KERFLINE_BAD_ARGUMENT;
  kerfline::frame::release_text(var->nValueType, var->uValue);
  return 1;
}

KERFLINE_API int32_t GetDlgVar(VMV6DLGVAR* var) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::get_dlg_var(var); });
}

KERFLINE_API int32_t FreeDlgVar(VMV6DLGVAR* var) noexcept {
  if (var == nullptr) return KERFLINE_BAD_ARGUMENT;
  kerfline::frame::release_text(var->nValueType, var->uValue);
  kerfline::platform::library_free(var->pszDlgText);
  kerfline::platform::library_free(var->pszDlgFormat);
  var->pszDlgText = nullptr;
  var->pszDlgFormat = nullptr;
  return 1;
}

KERFLINE_API int32_t SetVar(VMV6VAR* var) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::set_var(var); });
}

KERFLINE_API int32_t GetFirstVar(VMV6VAR* var, const char* group) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::walk(var, group, true); });
}

KERFLINE_API int32_t GetNextVar(VMV6VAR* var, const char* group) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::walk(var, group, false); });
}

KERFLINE_API int32_t GetVarAndDesc(VMV6VAR* var, char** description) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::get_var(var, description); });
}

KERFLINE_API int32_t HasVideoVar(VMV6DRV* drv, const char* name) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT,
                 [&] { return kerfline::frame::has_setting(drv, kerfline::frame::kVideoList, name); });
}

KERFLINE_API int32_t HasJoystickVar(VMV6DRV* drv, const char* name) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT,
                 [&] { return kerfline::frame::has_setting(drv, kerfline::frame::kJoystickList, name); });
}

KERFLINE_API int32_t SetVideoVar(VMV6DRV* drv, const char* name, const char* value) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT,
                 [&] { return kerfline::frame::set_setting(drv, kerfline::frame::kVideoList, name, value); });
}

KERFLINE_API int32_t SetJoyStickVar(VMV6DRV* drv, const char* name, const char* value) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] {
    return kerfline::frame::set_setting(drv, kerfline::frame::kJoystickList, name, value);
  });
}

KERFLINE_API int32_t SetVideoVarNoOverride(VMV6DRV* drv, const char* name, const char* value) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] {
    return kerfline::frame::set_setting_once(drv, kerfline::frame::kVideoList, name, value);
  });
}

KERFLINE_API int32_t SetJoyStickVarNoOverride(VMV6DRV* drv, const char* name, const char* value) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] {
    return kerfline::frame::set_setting_once(drv, kerfline::frame::kJoystickList, name, value);
  });
}

}  // extern "C"
