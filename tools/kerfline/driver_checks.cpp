#include "driver_checks.hpp"

#include <charconv>
#include <cmath>

#include "cli_io.hpp"
#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/item_classes.hpp"
#include "driver/text_definitions.hpp"
#include "driver/vm6drv.hpp"
#include "frame/driver_handle.hpp"

namespace kerfline::cli {
namespace {

std::optional<double> number_of(const std::string& text) {
  double d = 0;
  const auto r = std::from_chars(text.data(), text.data() + text.size(), d, std::chars_format::general);
  if (r.ec != std::errc() || r.ptr != text.data() + text.size() || text.empty()) return std::nullopt;
  return d;
}

void check_item(const driver::CDrvItem& item, const driver::TextDefinitions& texts, const std::string& where,
                std::vector<std::string>& out) {
  const std::string name = where + to_terminal(item.Name);
  if (item.DictId != 0 && texts.text(item.DictId).empty()) {
    out.push_back(name + ": text number " + std::to_string(item.DictId) + " is not a standard text");
  }
  if (item.Linked != 0 || item.Value.empty()) return;
  const auto number = number_of(item.Value);
  const bool whole =
      number && std::floor(*number) == *number && item.Value.find_first_of(".,;eE") == std::string::npos;
  if ((item.Type == driver::type_code::kDouble && !number) ||
      (item.Type == driver::type_code::kInteger && !whole)) {
    out.push_back(name + ": \"" + to_terminal(item.Value) + "\" is not " +
                  (item.Type == driver::type_code::kInteger ? "an Integer" : "a Double"));
  }
  const auto* dlg = dynamic_cast<const driver::CDrvItemDlgVar*>(&item);
  if (dlg == nullptr || !dlg->Ext || (dlg->Ext->Flags & KERFLINE_DLGVAR_LIMITS) == 0 || !number) return;
  if (*number < dlg->Ext->Min || *number > dlg->Ext->Max) {
    char range[96];
    std::snprintf(range, sizeof(range), "%g to %g", dlg->Ext->Min, dlg->Ext->Max);
    out.push_back(name + ": " + to_terminal(item.Value) + " is outside its range " + range);
  }
}

void check_tree(const driver::CDrvItemList& list, const driver::TextDefinitions& texts,
                const std::string& where, std::vector<std::string>& out) {
  for (const auto& child : list.GetChildren()) {
    if (const auto* group = dynamic_cast<const driver::CDrvItemList*>(child.get())) {
      check_tree(*group, texts, where + to_terminal(group->Name) + "/", out);
    } else {
      check_item(*child, texts, where, out);
    }
  }
}

}  // namespace

std::vector<std::string> driver_warnings(VMV6DRV* drv, const std::string& file) {
  std::vector<std::string> out;
  driver::CVm6Drv* doc = frame::document_of(drv);
  if (doc == nullptr) return out;
  const driver::CDrvItem* base = doc->FindItem(driver::CVm6Drv::kBaseDriverItem);
  if (doc->BaseDriverFlag != 0 && base != nullptr && !base->Value.empty() && doc->BaseDriver() == nullptr) {
    out.push_back(file + ": base driver " + to_terminal(base->Value) +
                  " cannot be read; its linked variables are empty");
  }
  check_tree(doc->Root(), doc->Texts(), "", out);
  return out;
}

}  // namespace kerfline::cli
