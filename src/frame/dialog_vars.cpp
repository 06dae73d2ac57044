// The dialog-variable exports: what a host's settings dialog needs to show a
// driver's dialog variables (captions, formats, ranges, defaults, value
// lists) and to check a value before storing it.
#include <charconv>
#include <cmath>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/text_definitions.hpp"
#include "frame/dialog_format.hpp"
#include "frame/driver_handle.hpp"
#include "frame/driver_tree.hpp"
#include "frame/shown_text.hpp"
#include "frame/variable_lookup.hpp"
#include "frame/variable_values.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/decimal_text.hpp"
#include "platform/library_memory.hpp"
#include "platform/text_trim.hpp"

namespace kerfline::frame {
namespace {

using driver::CDrvItem;
using driver::CDrvItemDlgVar;
using driver::CDrvItemList;
using driver::CVm6Drv;
using platform::library_alloc;
using platform::library_free;
using platform::library_strdup;

const CDrvItemDlgVar* as_dialog(const CDrvItem* item) { return dynamic_cast<const CDrvItemDlgVar*>(item); }

std::uint32_t range_state(const CDrvItemDlgVar::ExtParms& ext) {
  const bool sound = std::isfinite(ext.Min) && std::isfinite(ext.Max) && ext.Min <= ext.Max &&
                     std::isfinite(ext.Increments) && ext.Increments >= 0;
  return sound ? 0 : KERFLINE_DLGSTATE_BAD_RANGE;
}

void fill_ext(DLGVAREXT& out, const CDrvItemDlgVar::ExtParms& ext) {
  out.nFlags = ext.Flags;
  out.nState = range_state(ext);
  out.dMax = ext.Max;
  out.dMin = ext.Min;
  out.dIncrements = ext.Increments;
}

// A dialog variable's caption is its dialog text, or its description when it
// has none; a plain item shows its description.
std::string caption_of(const CDrvItem& item) {
  const CDrvItemDlgVar* dlg = as_dialog(&item);
  const std::string& text = dlg != nullptr && !dlg->DlgText.empty() ? dlg->DlgText : item.Description;
  return shown_text(kShowDialogText, text);
}

std::string format_of(const CDrvItem& item) {
  const CDrvItemDlgVar* dlg = as_dialog(&item);
  return dlg != nullptr ? shown_text(kShowDialogText, dlg->DlgFormat) : std::string();
}

// The text put through the format; the text itself when the format is broken.
std::string formatted(const std::string& format, const std::string& text) {
  const auto parsed = parse_dialog_format(format);
  if (!parsed) return text;
  return apply_dialog_format(*parsed, leading_number(text).value_or(0.0), text);
}

std::uint32_t item_state(const CDrvItem& item, const std::string& format) {
  const CDrvItemDlgVar* dlg = as_dialog(&item);
  if (dlg == nullptr) return KERFLINE_DLGSTATE_PLAIN;
  std::uint32_t state = parse_dialog_format(format) ? 0 : KERFLINE_DLGSTATE_BAD_FORMAT;
  if (dlg->Ext) state |= range_state(*dlg->Ext);
  return state;
}

template <std::size_t N>
void copy_field(char (&field)[N], const std::string& text, std::uint32_t& state) {
  const std::size_t n = text.size() < N ? text.size() : N - 1;
  if (n < text.size()) state |= KERFLINE_DLGSTATE_CUT;
  std::memcpy(field, text.data(), n);
  field[n] = '\0';
}

void fill_data(const CDrvItem& item, DLGVARDATA& data) {
  std::memset(&data, 0, sizeof data);
  const std::string format = format_of(item);
  const std::string value = item.GetValue();
  std::uint32_t state = item_state(item, format);
  copy_field(data.szCaption, caption_of(item), state);
  copy_field(data.szFormat, format, state);
  copy_field(data.szValue, value, state);
  copy_field(data.szShown, formatted(format, value), state);
  const CDrvItemDlgVar* dlg = as_dialog(&item);
  data.nType = static_cast<std::int32_t>(item.Type);
  data.nState = state;
  data.nConditionCount = dlg != nullptr ? static_cast<std::int32_t>(dlg->Conditions.size()) : 0;
  data.nHasExt = dlg != nullptr && dlg->Ext ? 1 : 0;
}

struct Default {
  std::string text;
  std::int32_t source = 0;
};

// The standard default of the item's text number, else the base driver's
// value of the same name.
std::optional<Default> default_of(CVm6Drv& doc, const CDrvItem& item) {
  if (item.DictId != 0) {
    const driver::TextDefinitions texts(driver::standard_text_lookup());
    const auto* kind = texts.kind_of_block(item.DictId);
    if (kind != nullptr && kind->default_offset >= 0)
      return Default{texts.definition(item.DictId).default_value, KERFLINE_DEFAULT_STANDARD};
  }
  if (CVm6Drv* base = doc.BaseDriver()) {
    if (const CDrvItem* same = base->FindItem(item.Name))
      return Default{same->GetValue(), KERFLINE_DEFAULT_BASE};
  }
  return std::nullopt;
}

std::int32_t get_ext_parms(VMV6DLGVAR* var, DLGVAREXT* ext) {
  if (ext == nullptr) return KERFLINE_BAD_ARGUMENT;
  const Lookup found = find_dialog_variable(var);
  if (found.item == nullptr) return found.status;
  std::memset(ext, 0, sizeof *ext);
  const CDrvItemDlgVar* dlg = as_dialog(found.item);
  if (dlg == nullptr || !dlg->Ext) return 0;
  fill_ext(*ext, *dlg->Ext);
  return ext->nState == 0 ? 1 : KERFLINE_BAD_ARGUMENT;
}

std::int32_t get_data(VMV6DLGVAR* var, DLGVARDATA* data) {
  if (data == nullptr) return KERFLINE_BAD_ARGUMENT;
  const Lookup found = find_dialog_variable(var);
  if (found.item == nullptr) return found.status;
  fill_data(*found.item, *data);
  return 1;
}

std::int32_t get_ext_data(VMV6DLGVAR* var, EXTDLGVARDATA* data) {
  if (data == nullptr) return KERFLINE_BAD_ARGUMENT;
  const Lookup found = find_dialog_variable(var);
  if (found.item == nullptr) return found.status;
  std::memset(data, 0, sizeof *data);
  fill_data(*found.item, data->data);
  const CDrvItemDlgVar* dlg = as_dialog(found.item);
  if (dlg != nullptr && dlg->Ext) fill_ext(data->ext, *dlg->Ext);
  if (const auto def = default_of(*found.doc, *found.item)) {
    copy_field(data->szDefault, def->text, data->data.nState);
    data->nHasDefault = 1;
  }
  return 1;
}

std::int32_t get_default(VMV6DLGVAR* var, DLGVARDEFAULT* out) {
  if (out == nullptr) return KERFLINE_BAD_ARGUMENT;
  const Lookup found = find_dialog_variable(var);
  if (found.item == nullptr) return found.status;
  std::memset(out, 0, sizeof *out);
  const auto def = default_of(*found.doc, *found.item);
  if (!def) return 0;
  char* text = library_strdup(def->text);
  char* shown = library_strdup(formatted(format_of(*found.item), def->text));
  if (text == nullptr || shown == nullptr) {
    library_free(text);
    library_free(shown);
    return KERFLINE_OUT_OF_MEMORY;
  }
  out->pszDefault = text;
  out->pszShown = shown;
  out->nSource = def->source;
  out->nDiffers = found.item->GetValue() != def->text ? 1 : 0;
  return 1;
}

std::int32_t is_relative(VMV6DLGVAR* var) {
  const Lookup found = find_dialog_variable(var);
  if (found.item == nullptr) return found.status;
  const CDrvItemDlgVar* dlg = as_dialog(found.item);
  return dlg != nullptr && dlg->Ext && (dlg->Ext->Flags & KERFLINE_DLGVAR_RELATIVE) != 0 ? 1 : 0;
}

// ---- lists of dialog variables -------------------------------------------

struct Listed {
  const CDrvItemDlgVar* item;
  const std::string* group;
};

// Every dialog variable of the tree below root, depth first in list order.
void collect_tree(const CDrvItemList& root, std::vector<Listed>& out) {
  std::vector<std::pair<const CDrvItemList*, std::size_t>> stack{{&root, 0}};
  while (!stack.empty()) {
    auto& [list, index] = stack.back();
    if (index >= list->GetChildren().size()) {
      stack.pop_back();
      continue;
    }
    const CDrvItem* child = list->GetChildren()[index++].get();
    if (const auto* dlg = as_dialog(child)) {
      out.push_back({dlg, &list->Name});
    } else if (const auto* sub = dynamic_cast<const CDrvItemList*>(child)) {
      stack.emplace_back(sub, 0);
    }
  }
}

void collect_direct(const CDrvItemList& list, std::vector<Listed>& out) {
  for (const auto& child : list.GetChildren()) {
    if (const auto* dlg = as_dialog(child.get())) out.push_back({dlg, &list.Name});
  }
}

void free_entry(DLGVARENTRY& e) {
  library_free(e.pszCaption);
  library_free(e.pszFormat);
  library_free(e.pszValue);
  library_free(e.pszGroup);
  if (e.ppszConditions != nullptr) {
    for (std::int32_t i = 0; i < e.nConditionCount; ++i) library_free(e.ppszConditions[i]);
    library_free(static_cast<void*>(e.ppszConditions));
  }
  std::memset(&e, 0, sizeof e);
}

// Fills an entry; false when memory ran out (the entry is then released).
bool fill_entry(const Listed& from, DLGVARENTRY& e) {
  const CDrvItemDlgVar& item = *from.item;
  std::memcpy(e.szName, item.Name.c_str(), item.Name.size() + 1);
  const std::string format = format_of(item);
  if (item.Ext) fill_ext(e.ext, *item.Ext);
  e.nHasExt = item.Ext ? 1 : 0;
  e.nType = static_cast<std::int32_t>(item.Type);
  e.nState = item_state(item, format);
  e.pszCaption = library_strdup(caption_of(item));
  e.pszFormat = library_strdup(format);
  e.pszValue = library_strdup(item.GetValue());
  e.pszGroup = library_strdup(*from.group);
  bool ok =
      e.pszCaption != nullptr && e.pszFormat != nullptr && e.pszValue != nullptr && e.pszGroup != nullptr;
  if (ok && !item.Conditions.empty()) {
    const std::size_t n = item.Conditions.size();
    e.ppszConditions = static_cast<char**>(library_alloc(n * sizeof(char*)));
    ok = e.ppszConditions != nullptr;
    for (std::size_t i = 0; ok && i < n; ++i) {
      e.ppszConditions[i] = library_strdup(item.Conditions[i]);
      e.nConditionCount = static_cast<std::int32_t>(i + 1);
      ok = e.ppszConditions[i] != nullptr;
    }
  }
  if (!ok) free_entry(e);
  return ok;
}

std::int32_t get_dlg_vars(VMV6DRV* drv, std::int32_t kind, void* owner, DLGVARLIST* list) {
  CVm6Drv* doc = document_of(drv);
  if (doc == nullptr || list == nullptr) return KERFLINE_BAD_ARGUMENT;
  std::vector<Listed> found;
  if (kind == KERFLINE_VARKIND_DRIVER) {
    collect_tree(doc->Root(), found);
  } else if (kind == KERFLINE_VARKIND_OWNER || kind == KERFLINE_VARKIND_LAYER ||
             kind == KERFLINE_VARKIND_TOOLPARM) {
    if (owner == nullptr) return KERFLINE_BAD_ARGUMENT;
    const std::shared_ptr<CDrvItemList> owner_list = owner_group(owner, *doc);
    const CDrvItemList* group = owner_list.get();
    if (group != nullptr && kind == KERFLINE_VARKIND_LAYER)
      group = sub_list(*group, kLayerList, kLayerListType);
    if (group != nullptr && kind == KERFLINE_VARKIND_TOOLPARM)
      group = sub_list(*group, kToolParmList, kToolParmListType);
    if (group == nullptr) return KERFLINE_NOT_FOUND;
    collect_direct(*group, found);
  } else {
    return KERFLINE_NOT_FOUND;
  }
  // First of a name wins, as in every lookup by name; names that do not fit
  // the entry are left out.
  std::unordered_set<std::string> seen;
  std::vector<Listed> kept;
  for (const Listed& l : found) {
    if (l.item->Name.size() < sizeof(DLGVARENTRY::szName) && seen.insert(l.item->Name).second)
      kept.push_back(l);
  }
  auto* entries =
      static_cast<DLGVARENTRY*>(library_alloc((kept.empty() ? 1 : kept.size()) * sizeof(DLGVARENTRY)));
  if (entries == nullptr) return KERFLINE_OUT_OF_MEMORY;
  std::memset(entries, 0, (kept.empty() ? 1 : kept.size()) * sizeof(DLGVARENTRY));
  for (std::size_t i = 0; i < kept.size(); ++i) {
    if (!fill_entry(kept[i], entries[i])) {
      for (std::size_t j = 0; j < i; ++j) free_entry(entries[j]);
      library_free(entries);
      return KERFLINE_OUT_OF_MEMORY;
    }
  }
  list->nCount = static_cast<std::int32_t>(kept.size());
  list->nReserved = 0;
  list->pEntries = entries;
  return 1;
}

std::int32_t free_dlg_vars(DLGVARLIST* list) {
  if (list == nullptr) return KERFLINE_BAD_ARGUMENT;
  if (list->pEntries != nullptr) {
    for (std::int32_t i = 0; i < list->nCount; ++i) free_entry(list->pEntries[i]);
    library_free(list->pEntries);
  }
  std::memset(list, 0, sizeof *list);
  return 1;
}

// ---- values ----------------------------------------------------------------

std::int32_t get_var_val(VMV6VAR* var, char* buffer, std::int32_t size, std::int32_t* length) {
  if (size < 0 || (buffer == nullptr && size > 0)) return KERFLINE_BAD_ARGUMENT;
  const Lookup found = find_variable(var);
  if (found.item == nullptr) return found.status;
  const std::string value = found.item->GetValue();
  if (length != nullptr) *length = static_cast<std::int32_t>(value.size());
  if (value.size() >= static_cast<std::size_t>(size)) {
    if (size > 0) buffer[0] = '\0';
    return 0;
  }
  std::memcpy(buffer, value.c_str(), value.size() + 1);
  return 1;
}

std::string shortest(double v) {
  char buf[64];
  const auto res = std::to_chars(buf, buf + sizeof buf, v);
  return res.ec == std::errc() ? std::string(buf, res.ptr) : std::string("0");
}

std::int32_t get_var_vals(VMV6DLGVAR* var, VARVAL** values, std::int32_t* count) {
  if (values == nullptr || count == nullptr) return KERFLINE_BAD_ARGUMENT;
  const Lookup found = find_dialog_variable(var);
  if (found.item == nullptr) return found.status;
  const CDrvItemDlgVar* dlg = as_dialog(found.item);
  std::vector<double> numbers;
  std::int32_t result = 1;
  if (found.item->Type == driver::type_code::kBool) {
    numbers = {0.0, 1.0};
  } else if (dlg != nullptr && dlg->Ext) {
    const auto& ext = *dlg->Ext;
    if (range_state(ext) != 0) return KERFLINE_BAD_ARGUMENT;
    // The tolerance keeps a last step that rounding put a hair beyond Max.
    const double steps = ext.Increments > 0 ? std::floor((ext.Max - ext.Min) / ext.Increments + 1e-9) : -1;
    if (steps < 0 || steps >= KERFLINE_VARVALS_MAX) {
      result = 0;
    } else {
      for (std::size_t i = 0; i <= static_cast<std::size_t>(steps); ++i)
        numbers.push_back(ext.Min + static_cast<double>(i) * ext.Increments);
    }
  } else {
    result = 0;
  }
  auto* block = static_cast<VARVAL*>(library_alloc((numbers.empty() ? 1 : numbers.size()) * sizeof(VARVAL)));
  if (block == nullptr) return KERFLINE_OUT_OF_MEMORY;
  const auto format = parse_dialog_format(format_of(*found.item));
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    std::memset(&block[i], 0, sizeof block[i]);
    block[i].dValue = numbers[i];
    const std::string plain = shortest(numbers[i]);
    const std::string text = format ? apply_dialog_format(*format, numbers[i], plain) : plain;
    const std::size_t n = text.size() < sizeof block[i].szText ? text.size() : sizeof block[i].szText - 1;
    std::memcpy(block[i].szText, text.data(), n);
  }
  *values = block;
  *count = static_cast<std::int32_t>(numbers.size());
  return numbers.empty() ? 0 : result;
}

// ---- checks ----------------------------------------------------------------

using platform::trim;

// The whole text read as a finite number (blanks around it allowed).
std::optional<double> whole_number(std::string_view text) {
  text = trim(text);
  const auto number = platform::read_decimal(text);
  if (!number || number->out_of_range || number->end != text.size() || !std::isfinite(number->value))
    return std::nullopt;
  return number->value;
}

bool all_digits(std::string_view s) {
  if (s.empty()) return false;
  for (char c : s) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

bool is_date(std::string_view text) {
  text = trim(text);
  const std::size_t a = text.find('.');
  const std::size_t b = a == std::string_view::npos ? a : text.find('.', a + 1);
  if (b == std::string_view::npos) return false;
  const std::string_view day = text.substr(0, a), month = text.substr(a + 1, b - a - 1),
                         year = text.substr(b + 1);
  if (!all_digits(day) || !all_digits(month) || !all_digits(year) || day.size() > 2 || month.size() > 2 ||
      year.size() > 5)
    return false;
  int d = 0, m = 0;
  std::from_chars(day.data(), day.data() + day.size(), d);
  std::from_chars(month.data(), month.data() + month.size(), m);
  return d >= 1 && d <= 31 && m >= 1 && m <= 12;
}

bool type_accepts(std::uint32_t type, std::string_view value) {
  switch (type) {
    case driver::type_code::kInteger: {
      if (value.find_first_of(".,;eE") != std::string_view::npos) return false;
      std::string_view t = trim(value);
      if (!t.empty() && (t.front() == '+' || t.front() == '-')) t.remove_prefix(1);
      return all_digits(t);
    }
    case driver::type_code::kDouble:
      return whole_number(value).has_value();
    case driver::type_code::kBool: {
      const std::string_view t = trim(value);
      return t == "0" || t == "1";
    }
    case driver::type_code::kDate:
      return is_date(value);
    default:
      return true;
  }
}

// The length limit of a standard variable (shorter than the limit), found by
// the item's text number or, for the standard material variables, its name.
std::optional<std::size_t> length_limit(const CDrvItem& item) {
  const driver::TextDefinitions texts(driver::standard_text_lookup());
  std::uint32_t id = 0;
  const auto* kind = item.DictId != 0 ? texts.kind_of_block(item.DictId) : nullptr;
  if (kind != nullptr) {
    id = item.DictId;
  } else {
    for (const auto& k : texts.kinds()) {
      if (k.base != 6000) continue;
      for (std::uint32_t i = 0; i < k.count && id == 0; ++i) {
        if (texts.text(k.base + i * k.step) == item.Name) id = k.base + i * k.step;
      }
      kind = &k;
    }
  }
  // Only the standard, output-mode and material blocks carry a limit (offset 7).
  if (id == 0 || kind == nullptr || kind->step != 8 ||
      (kind->base != 6000 && kind->base != 9000 && kind->base != 2000))
    return std::nullopt;
  const std::string limit = texts.text(id + 7);
  long long n = 0;
  const auto res = std::from_chars(limit.data(), limit.data() + limit.size(), n);
  if (res.ec != std::errc() || n <= 0) return std::nullopt;
  return static_cast<std::size_t>(n);
}

std::int32_t check_mat_var_val(VMV6VAR* var, const char* value, std::int32_t* reason) {
  if (value == nullptr) return KERFLINE_BAD_ARGUMENT;
  const Lookup found = find_variable(var);
  if (found.item == nullptr) return found.status;
  const std::string_view text(value);
  std::int32_t why = 0;
  if (!type_accepts(found.item->Type, text)) {
    why = KERFLINE_CHECK_TYPE;
  } else if (const CDrvItemDlgVar* dlg = as_dialog(found.item);
             dlg != nullptr && dlg->Ext && (dlg->Ext->Flags & KERFLINE_DLGVAR_LIMITS) != 0 &&
             range_state(*dlg->Ext) == 0 &&
             (found.item->Type == driver::type_code::kDouble ||
              found.item->Type == driver::type_code::kInteger)) {
    const double v = whole_number(text).value_or(0.0);
    if (v < dlg->Ext->Min || v > dlg->Ext->Max) why = KERFLINE_CHECK_RANGE;
  }
  if (why == 0) {
    if (const auto limit = length_limit(*found.item); limit && text.size() >= *limit)
      why = KERFLINE_CHECK_LENGTH;
  }
  if (reason != nullptr) *reason = why;
  return why == 0 ? 1 : 0;
}

}  // namespace
}  // namespace kerfline::frame

using kerfline::platform::guarded;

extern "C" {

KERFLINE_API int32_t GetDlgVarExtParms(VMV6DLGVAR* var, DLGVAREXT* ext) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::get_ext_parms(var, ext); });
}

KERFLINE_API int32_t GetDlgVarData(VMV6DLGVAR* var, DLGVARDATA* data) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::get_data(var, data); });
}

KERFLINE_API int32_t GetExtDlgVarData(VMV6DLGVAR* var, EXTDLGVARDATA* data) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::get_ext_data(var, data); });
}

KERFLINE_API int32_t GetDlgDefaultEx(VMV6DLGVAR* var, DLGVARDEFAULT* def) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::get_default(var, def); });
}

KERFLINE_API int32_t FreeDlgDefaultEx(DLGVARDEFAULT* def) noexcept {
  if (def == nullptr) return KERFLINE_BAD_ARGUMENT;
  kerfline::platform::library_free(def->pszDefault);
  kerfline::platform::library_free(def->pszShown);
  std::memset(def, 0, sizeof *def);
  return 1;
}

KERFLINE_API int32_t IsRelativeFlag(VMV6DLGVAR* var) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::is_relative(var); });
}

KERFLINE_API int32_t GetDlgVars(VMV6DRV* drv, int32_t kind, void* owner, DLGVARLIST* list) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT,
                 [&] { return kerfline::frame::get_dlg_vars(drv, kind, owner, list); });
}

KERFLINE_API int32_t FreeDlgVars(DLGVARLIST* list) noexcept { return kerfline::frame::free_dlg_vars(list); }

KERFLINE_API int32_t GetVarVal(VMV6VAR* var, char* buffer, int32_t size, int32_t* length) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT,
                 [&] { return kerfline::frame::get_var_val(var, buffer, size, length); });
}

KERFLINE_API int32_t GetVarVals(VMV6DLGVAR* var, VARVAL** values, int32_t* count) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT, [&] { return kerfline::frame::get_var_vals(var, values, count); });
}

// One body with FreeCutDeviceList: both hand a single library block back.
KERFLINE_API void FreeVarVals(void* values) noexcept { kerfline::platform::library_free(values); }

KERFLINE_API int32_t CheckMatVarVal(VMV6VAR* var, const char* value, int32_t* reason) noexcept {
  return guarded(KERFLINE_BAD_ARGUMENT,
                 [&] { return kerfline::frame::check_mat_var_val(var, value, reason); });
}

}  // extern "C"
