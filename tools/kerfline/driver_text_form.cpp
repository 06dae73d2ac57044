#include "driver_text_form.hpp"

#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "cli_io.hpp"
#include "driver/drv_item_cut_instr.hpp"
#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/drv_item_mat_db.hpp"
#include "driver/drv_item_tool_parm_var.hpp"
#include "driver/item_classes.hpp"
#include "driver/text_definitions.hpp"
#include "platform/codepage.hpp"

namespace kerfline::cli {
namespace {

using json = nlohmann::ordered_json;
namespace cp1252 = platform::cp1252;
using driver::CDrvItem;

// A malformed form: the message names the JSON path.
struct FormError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string hex(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  out.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    out.push_back(kDigits[static_cast<unsigned char>(c) >> 4]);
    out.push_back(kDigits[static_cast<unsigned char>(c) & 0xF]);
  }
  return out;
}

int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string unhex(const std::string& text, const std::string& path) {
  if (text.size() % 2 != 0) throw FormError(path + ": odd number of hex digits");
  std::string out;
  out.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int hi = hex_digit(text[i]);
    const int lo = hex_digit(text[i + 1]);
    if (hi < 0 || lo < 0) throw FormError(path + ": not a hex digit");
    out.push_back(static_cast<char>(hi * 16 + lo));
  }
  return out;
}

// ---- reading the form ------------------------------------------------------

// A key the form does not know is a typo, never something to ignore.
void only_known_keys(const json& object, const std::vector<std::string_view>& known, const std::string& path,
                     std::string_view what = "") {
  for (const auto& [key, value] : object.items()) {
    bool found = false;
    for (const std::string_view k : known) found = found || k == key;
    if (!found) {
      std::string message = path;
      message.append(".").append(key).append(": unknown key").append(what);
      throw FormError(message);
    }
  }
}

constexpr std::string_view kCommonKeys[] = {"class", "id",  "name",       "type",   "description",
                                            "value", "aux", "attributes", "linked", "valueIndex"};

void check_item_keys(const json& form, std::string_view cls, const std::string& path) {
  std::vector<std::string_view> known(std::begin(kCommonKeys), std::end(kCommonKeys));
  if (cls == "CDrvItemList") known.insert(known.end(), {"params", "param4", "listAtEnd", "items"});
  if (cls == "CDrvItemCutInstr") known.push_back("cutInstr");
  if (cls == "CDrvItemToolParmVar") known.push_back("toolParm");
  if (cls == "CDrvItemDlgVar") known.insert(known.end(), {"dlgText", "dlgFormat", "ext", "conditions"});
  only_known_keys(form, known, path, " for an item of class " + std::string(cls));
}

const json* member(const json& object, const char* key) {
  const auto it = object.find(key);
  return it == object.end() ? nullptr : &*it;
}

std::string text_of(const json& object, const char* key, const std::string& path, std::string fallback = {}) {
  const json* v = member(object, key);
  if (v == nullptr) return fallback;
  if (!v->is_string()) throw FormError(path + "." + key + ": expected a text");
  auto converted = cp1252::from_utf8(v->get_ref<const std::string&>());
  if (!converted) throw FormError(path + "." + key + ": a character that Windows-1252 cannot hold");
  return *converted;
}

std::uint32_t dword_of(const json& object, const char* key, const std::string& path,
                       std::uint32_t fallback = 0) {
  const json* v = member(object, key);
  if (v == nullptr) return fallback;
  if (v->is_number_unsigned()) {
    const auto n = v->get<std::uint64_t>();
    if (n <= 0xFFFFFFFFULL) return static_cast<std::uint32_t>(n);
  }
  throw FormError(path + "." + key + ": expected a whole number from 0 to 4294967295");
}

std::int32_t long_of(const json& object, const char* key, const std::string& path, std::int32_t fallback) {
  const json* v = member(object, key);
  if (v == nullptr) return fallback;
  if (v->is_number_integer()) {
    const auto n = v->get<std::int64_t>();
    if (n >= INT32_MIN && n <= INT32_MAX) return static_cast<std::int32_t>(n);
  }
  throw FormError(path + "." + key + ": expected a whole number from -2147483648 to 2147483647");
}

double double_of(const json& object, const char* key, const std::string& path) {
  const json* v = member(object, key);
  if (v == nullptr) return 0.0;
  if (!v->is_number()) throw FormError(path + "." + key + ": expected a number");
  return v->get<double>();
}

constexpr struct {
  const char* name;
  std::uint32_t code;
} kTypeNames[] = {
    {"Double", driver::type_code::kDouble}, {"Integer", driver::type_code::kInteger},
    {"Bool", driver::type_code::kBool},     {"Date", driver::type_code::kDate},
    {"String", driver::type_code::kString}, {"CutInstr", driver::type_code::kCutInstr},
};

json type_to_json(std::uint32_t type) {
  for (const auto& t : kTypeNames) {
    if (t.code == type) return t.name;
  }
  return type;
}

std::uint32_t type_of(const json& object, const std::string& path, std::uint32_t fallback) {
  const json* v = member(object, "type");
  if (v == nullptr) return fallback;
  if (v->is_string()) {
    for (const auto& t : kTypeNames) {
      if (v->get_ref<const std::string&>() == t.name) return t.code;
    }
    throw FormError(path + ".type: unknown type name \"" + v->get<std::string>() + "\"");
  }
  return dword_of(object, "type", path);
}

// ---- one item --------------------------------------------------------------

// Plain items and cut instructions named by a text number take name, type
// and description from the dictionary; the file does not hold them.
bool defined_by_text_number(const CDrvItem& item) {
  const std::string_view cls = item.GetClass().name;
  return item.DictId != 0 && item.Linked == 0 && (cls == "CDrvItem" || cls == "CDrvItemCutInstr");
}

void put_text(json& out, const char* key, const std::string& value) {
  if (!value.empty()) out[key] = cp1252::to_utf8(value);
}

void put_number(json& out, const char* key, std::uint32_t value) {
  if (value != 0) out[key] = value;
}

json item_to_json(const std::shared_ptr<CDrvItem>& item);

json common_to_json(const CDrvItem& item) {
  json out = json::object();
  const std::string_view cls = item.GetClass().name;
  if (cls != "CDrvItem") out["class"] = std::string(cls);
  put_number(out, "id", item.DictId);
  if (!defined_by_text_number(item)) {
    put_text(out, "name", item.Name);
    const auto fresh = driver::make_item(cls);
    if (item.Type != fresh->Type) out["type"] = type_to_json(item.Type);
    put_text(out, "description", item.Description);
  }
  put_text(out, "value", item.Value);
  put_text(out, "aux", item.AuxText);
  put_number(out, "attributes", item.Attributes);
  put_number(out, "linked", item.Linked);
  if (item.ValueIndex != -1) out["valueIndex"] = item.ValueIndex;
  return out;
}

json item_to_json(const std::shared_ptr<CDrvItem>& item) {
  json out = common_to_json(*item);
  if (const auto* list = dynamic_cast<const driver::CDrvItemList*>(item.get())) {
    const std::uint32_t params[] = {list->ListParam0, list->ListParam1, list->ListParam2, list->ListParam3};
    if (params[0] != 0 || params[1] != 0 || params[2] != 0 || params[3] != 0) {
      out["params"] = json::array({params[0], params[1], params[2], params[3]});
    }
    if (list->ListParam2 != 0) put_number(out, "param4", list->ListParam4);
    put_number(out, "listAtEnd", list->ListAtEnd);
    json children = json::array();
    for (const auto& child : list->GetChildren()) children.push_back(item_to_json(child));
    out["items"] = std::move(children);
  } else if (const auto* cut = dynamic_cast<const driver::CDrvItemCutInstr*>(item.get())) {
    put_text(out, "cutInstr", cut->CutInstrText);
  } else if (const auto* tool = dynamic_cast<const driver::CDrvItemToolParmVar*>(item.get())) {
    put_text(out, "toolParm", tool->ToolParmText);
  } else if (const auto* dlg = dynamic_cast<const driver::CDrvItemDlgVar*>(item.get())) {
    put_text(out, "dlgText", dlg->DlgText);
    put_text(out, "dlgFormat", dlg->DlgFormat);
    if (dlg->Ext) {
      out["ext"] = {{"flags", dlg->Ext->Flags},
                    {"min", dlg->Ext->Min},
                    {"max", dlg->Ext->Max},
                    {"increments", dlg->Ext->Increments}};
    }
    if (!dlg->Conditions.empty()) {
      json conditions = json::array();
      for (const auto& c : dlg->Conditions) conditions.push_back(cp1252::to_utf8(c));
      out["conditions"] = std::move(conditions);
    }
  }
  return out;
}

std::shared_ptr<CDrvItem> item_from_json(const json& form, const std::string& path, int depth,
                                         const driver::TextDefinitions& texts);

void common_from_json(const json& form, CDrvItem& item, const std::string& path) {
  item.DictId = dword_of(form, "id", path);
  item.Name = text_of(form, "name", path);
  if (item.Name.size() > kMaxNameBytes) {
    throw FormError(path + ".name: " + std::to_string(item.Name.size()) +
                    " characters, a name holds at most " + std::to_string(kMaxNameBytes));
  }
  item.Type = type_of(form, path, item.Type);
  item.Description = text_of(form, "description", path);
  item.Value = text_of(form, "value", path);
  item.AuxText = text_of(form, "aux", path);
  item.Attributes = dword_of(form, "attributes", path);
  item.Linked = dword_of(form, "linked", path);
  item.ValueIndex = long_of(form, "valueIndex", path, -1);
  item.UpdateAtEnd();
}

void list_from_json(const json& form, driver::CDrvItemList& list, const std::string& path, int depth,
                    const driver::TextDefinitions& texts) {
  if (const json* params = member(form, "params")) {
    if (!params->is_array() || params->size() != 4) throw FormError(path + ".params: expected four numbers");
    std::uint32_t* fields[] = {&list.ListParam0, &list.ListParam1, &list.ListParam2, &list.ListParam3};
    for (std::size_t i = 0; i < 4; ++i) {
      const json holder = {{"n", (*params)[i]}};
      *fields[i] = dword_of(holder, "n", path + ".params[" + std::to_string(i) + "]");
    }
  }
  list.ListParam4 = dword_of(form, "param4", path);
  list.ListAtEnd = dword_of(form, "listAtEnd", path);
  if (const json* items = member(form, "items")) {
    if (!items->is_array()) throw FormError(path + ".items: expected a list of items");
    for (std::size_t i = 0; i < items->size(); ++i) {
      list.AddChild(
          item_from_json((*items)[i], path + ".items[" + std::to_string(i) + "]", depth + 1, texts));
    }
  }
}

void dlgvar_from_json(const json& form, driver::CDrvItemDlgVar& dlg, const std::string& path) {
  dlg.DlgText = text_of(form, "dlgText", path);
  dlg.DlgFormat = text_of(form, "dlgFormat", path);
  if (const json* ext = member(form, "ext")) {
    if (!ext->is_object()) throw FormError(path + ".ext: expected an object");
    only_known_keys(*ext, {"flags", "min", "max", "increments"}, path + ".ext");
    dlg.Ext = std::make_unique<driver::CDrvItemDlgVar::ExtParms>();
    dlg.Ext->Flags = dword_of(*ext, "flags", path + ".ext");
    dlg.Ext->Min = double_of(*ext, "min", path + ".ext");
    dlg.Ext->Max = double_of(*ext, "max", path + ".ext");
    dlg.Ext->Increments = double_of(*ext, "increments", path + ".ext");
  }
  if (const json* conditions = member(form, "conditions")) {
    if (!conditions->is_array()) throw FormError(path + ".conditions: expected a list of texts");
    for (std::size_t i = 0; i < conditions->size(); ++i) {
      const json holder = {{"c", (*conditions)[i]}};
      dlg.Conditions.push_back(text_of(holder, "c", path + ".conditions[" + std::to_string(i) + "]"));
    }
  }
}

// The fields the file keeps only through a text number.
struct NumberedFields {
  std::string name;
  std::uint32_t type = 0;
  std::string description;
};

NumberedFields numbered_fields(const CDrvItem& item) { return {item.Name, item.Type, item.Description}; }

// The file keeps no type or description (and, unless linked, no name) for an
// item with a text number: what the author wrote must be what reading the
// file gives back, or it would be lost without a word.
void refuse_unstored(const json& form, const NumberedFields& given, const NumberedFields& read_back,
                     std::uint32_t number, const std::string& path) {
  const std::string id = std::to_string(number);
  if (member(form, "name") != nullptr && given.name != read_back.name) {
    throw FormError(path + ".name: the file keeps only the text number " + id + ", which names \"" +
                    cp1252::to_utf8(read_back.name) + "\"");
  }
  if (member(form, "type") != nullptr && given.type != read_back.type) {
    throw FormError(path + ".type: the file keeps no type for text number " + id + "; it reads back as " +
                    type_to_json(read_back.type).dump());
  }
  if (member(form, "description") != nullptr && given.description != read_back.description) {
    throw FormError(path + ".description: the file keeps no description for text number " + id);
  }
}

std::shared_ptr<CDrvItem> item_from_json(const json& form, const std::string& path, int depth,
                                         const driver::TextDefinitions& texts) {
  constexpr int kMaxDepth = 200;  // the binary reader's own limit
  if (depth > kMaxDepth) throw FormError(path + ": items nested too deep");
  if (!form.is_object()) throw FormError(path + ": expected an item object");
  const std::string cls = text_of(form, "class", path, "CDrvItem");
  std::shared_ptr<CDrvItem> item = driver::make_item(cls);
  if (!item) throw FormError(path + ".class: unknown item class \"" + cls + "\"");
  check_item_keys(form, cls, path);
  common_from_json(form, *item, path);
  // As when the file is read: such an item takes name, type and description
  // from its text number.
  if (defined_by_text_number(*item)) {
    const NumberedFields given = numbered_fields(*item);
    item->ApplyDefinition(texts, item->DictId);
    refuse_unstored(form, given, numbered_fields(*item), item->DictId, path);
  } else if (item->DictId != 0 && (cls == "CDrvItem" || cls == "CDrvItemCutInstr")) {
    // Linked: the file keeps the name, and the type reads back as a new item's.
    refuse_unstored(form, numbered_fields(*item), {item->Name, driver::make_item(cls)->Type, {}},
                    item->DictId, path);
  }
  if (auto* list = dynamic_cast<driver::CDrvItemList*>(item.get())) {
    list_from_json(form, *list, path, depth, texts);
  } else if (auto* cut = dynamic_cast<driver::CDrvItemCutInstr*>(item.get())) {
    // The file keeps a cut instruction's name only through its text number.
    if (cut->DictId == 0) throw FormError(path + ".id: a cut instruction needs the text number of its name");
    cut->CutInstrText = text_of(form, "cutInstr", path);
    cut->Refresh();
  } else if (auto* tool = dynamic_cast<driver::CDrvItemToolParmVar*>(item.get())) {
    tool->ToolParmText = text_of(form, "toolParm", path);
  } else if (auto* dlg = dynamic_cast<driver::CDrvItemDlgVar*>(item.get())) {
    dlgvar_from_json(form, *dlg, path);
  }
  return item;
}

}  // namespace

json driver_to_json(driver::CVm6Drv& doc) {
  json out = json::object();
  out["format"] = doc.Header.Present ? "VM6DRV$" : "VM6DRV";
  if (doc.Header.Present) {
    out["header"] = {{"text", hex(doc.Header.EncodedText)},
                     {"note", cp1252::to_utf8(doc.Header.Note)},
                     {"dword", doc.Header.DwordFollows}};
  }
  if (CDrvItem* name = doc.FindItem(driver::CVm6Drv::kDriverNameItem)) {
    out["title"] = cp1252::to_utf8(name->GetValue());
  }
  put_number(out, "baseDriverFlag", doc.BaseDriverFlag);
  json root = item_to_json(std::static_pointer_cast<CDrvItem>(doc.Root().shared_from_this()));
  root.erase("class");  // the root is always a group
  out["root"] = std::move(root);
  return out;
}

std::unique_ptr<driver::CVm6Drv> driver_from_json(const json& form, std::string& error) {
  try {
    if (!form.is_object()) throw FormError("$: expected a driver object");
    only_known_keys(form, {"format", "header", "title", "baseDriverFlag", "root"}, "$");
    auto doc = std::make_unique<driver::CVm6Drv>();
    const std::string format = text_of(form, "format", "$", "VM6DRV");
    if (format != "VM6DRV" && format != "VM6DRV$") throw FormError("$.format: expected VM6DRV or VM6DRV$");
    doc->Header.Present = format == "VM6DRV$";
    if (const json* header = member(form, "header")) {
      if (!doc->Header.Present) throw FormError("$.header: only a VM6DRV$ driver has an extended header");
      if (!header->is_object()) throw FormError("$.header: expected an object");
      only_known_keys(*header, {"text", "note", "dword"}, "$.header");
      doc->Header.EncodedText = unhex(text_of(*header, "text", "$.header"), "$.header.text");
      doc->Header.Note = text_of(*header, "note", "$.header");
      const json* dword = member(*header, "dword");
      doc->Header.DwordFollows = dword != nullptr && dword->is_boolean() && dword->get<bool>();
    }
    doc->BaseDriverFlag = dword_of(form, "baseDriverFlag", "$");
    const json* root = member(form, "root");
    if (root == nullptr || !root->is_object()) throw FormError("$.root: missing the root group");
    json root_form = *root;
    root_form["class"] = "CDrvItemList";
    auto parsed =
        std::dynamic_pointer_cast<driver::CDrvItemList>(item_from_json(root_form, "$.root", 0, doc->Texts()));
    auto& target = doc->Root();
    common_from_json(root_form, target, "$.root");
    target.ListParam0 = parsed->ListParam0;
    target.ListParam1 = parsed->ListParam1;
    target.ListParam2 = parsed->ListParam2;
    target.ListParam3 = parsed->ListParam3;
    target.ListParam4 = parsed->ListParam4;
    target.ListAtEnd = parsed->ListAtEnd;
    for (const auto& child : parsed->GetChildren()) target.AddChild(child);
    doc->RefreshGroupList();
    return doc;
  } catch (const FormError& e) {
    error = e.what();
  } catch (const json::exception& e) {
    error = std::string("$: ") + e.what();
  }
  return nullptr;
}

}  // namespace kerfline::cli
