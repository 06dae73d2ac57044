// `kerfline driver dialog FILE [--json]`: a driver's dialog variables as a
// host's settings dialog shows them, read through the C interface.
#include <cstdio>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "commands.hpp"
#include "kerfline/kerfline.h"
#include "open_driver.hpp"
#include "platform/codepage.hpp"

namespace kerfline::cli {
namespace {

struct DialogOptions {
  std::string file;
  bool json = false;
};

std::string utf8(const char* text) { return platform::cp1252::to_utf8(text != nullptr ? text : ""); }

const char* type_name(int32_t type) {
  switch (type) {
    case 0:
      return "Double";
    case 1:
      return "Integer";
    case 2:
      return "Bool";
    case 3:
      return "Date";
    default:
      return "String";
  }
}

std::string number(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.10g", v);
  return buf;
}

nlohmann::ordered_json problems_of(uint32_t state) {
  auto out = nlohmann::ordered_json::array();
  if ((state & KERFLINE_DLGSTATE_BAD_FORMAT) != 0) out.push_back("format has a stray % or two conversions");
  if ((state & KERFLINE_DLGSTATE_BAD_RANGE) != 0) out.push_back("range is broken (min > max or bad step)");
  if ((state & KERFLINE_DLGSTATE_CUT) != 0) out.push_back("a text was cut to fit");
  return out;
}

// One entry with the data that only the single-variable calls give.
nlohmann::ordered_json describe(VMV6DRV* drv, const DLGVARENTRY& e) {
  nlohmann::ordered_json v;
  v["name"] = utf8(e.szName);
  v["group"] = utf8(e.pszGroup);
  v["caption"] = utf8(e.pszCaption);
  v["type"] = type_name(e.nType);
  v["format"] = utf8(e.pszFormat);
  v["value"] = utf8(e.pszValue);
  VMV6DLGVAR var{};
  std::memcpy(var.szName, e.szName, sizeof var.szName);
  var.pDrv = drv;
  var.nKind = KERFLINE_VARKIND_DRIVER;
  EXTDLGVARDATA data{};
  const bool have = GetExtDlgVarData(&var, &data) == 1;
  v["shown"] = have ? utf8(data.data.szShown) : utf8(e.pszValue);
  if (e.nHasExt != 0) {
    v["range"] = {{"min", e.ext.dMin},
                  {"max", e.ext.dMax},
                  {"step", e.ext.dIncrements},
                  {"limits", (e.ext.nFlags & KERFLINE_DLGVAR_LIMITS) != 0},
                  {"relative", (e.ext.nFlags & KERFLINE_DLGVAR_RELATIVE) != 0},
                  {"flags", e.ext.nFlags}};
  } else {
    v["range"] = nullptr;
  }
  v["default"] = have && data.nHasDefault != 0 ? nlohmann::ordered_json(utf8(data.szDefault)) : nullptr;
  auto conditions = nlohmann::ordered_json::array();
  for (int32_t i = 0; i < e.nConditionCount; ++i) conditions.push_back(utf8(e.ppszConditions[i]));
  v["conditions"] = conditions;
  v["problems"] = problems_of(e.nState);
  return v;
}

void print_text(const nlohmann::ordered_json& v) {
  auto text = [](const nlohmann::ordered_json& j) { return j.get<std::string>(); };
  std::printf("%s  %s  [%s, group %s]\n", text(v["name"]).c_str(), text(v["caption"]).c_str(),
              text(v["type"]).c_str(), text(v["group"]).c_str());
  std::printf("    value:      %s  (shown: %s)\n", text(v["value"]).c_str(), text(v["shown"]).c_str());
  std::printf("    format:     %s\n", text(v["format"]).c_str());
  if (v["range"].is_null()) {
    std::printf("    range:      (none)\n");
  } else {
    const auto& r = v["range"];
    std::printf("    range:      %s .. %s, step %s%s%s\n", number(r["min"].get<double>()).c_str(),
                number(r["max"].get<double>()).c_str(), number(r["step"].get<double>()).c_str(),
                r["limits"].get<bool>() ? ", enforced" : "", r["relative"].get<bool>() ? ", relative" : "");
  }
  std::printf("    default:    %s\n", v["default"].is_null() ? "(none)" : text(v["default"]).c_str());
  std::string conditions;
  for (const auto& c : v["conditions"]) conditions += (conditions.empty() ? "" : "; ") + text(c);
  std::printf("    conditions: %s\n", conditions.empty() ? "(none)" : conditions.c_str());
  for (const auto& p : v["problems"]) std::printf("    problem:    %s\n", text(p).c_str());
}

int run_dialog(const DialogOptions& o) {
  OpenDriver drv(o.file);
  if (!drv.ok()) return kExitFailure;
  DLGVARLIST list{};
  const int32_t result = GetDlgVars(drv.record(), KERFLINE_VARKIND_DRIVER, nullptr, &list);
  if (result != 1) {
    std::fprintf(stderr, "kerfline: %s: cannot list dialog variables (result %d)\n", o.file.c_str(), result);
    return kExitFailure;
  }
  auto all = nlohmann::ordered_json::array();
  for (int32_t i = 0; i < list.nCount; ++i) all.push_back(describe(drv.record(), list.pEntries[i]));
  FreeDlgVars(&list);
  if (o.json) {
    std::printf("%s\n", all.dump(2).c_str());
  } else if (all.empty()) {
    std::printf("(no dialog variables)\n");
  } else {
    for (const auto& v : all) print_text(v);
  }
  return kExitOk;
}

}  // namespace

void register_driver_dialog(CLI::App& driver, CommandList& commands) {
  auto o = std::make_shared<DialogOptions>();
  CLI::App* dialog =
      driver.add_subcommand("dialog", "Show the dialog variables as a host's settings dialog would");
  dialog->add_option("file", o->file, "Driver file")->required();
  dialog->add_flag("--json", o->json, "Print JSON instead of text");
  commands.add(dialog, [o] { return run_dialog(*o); });
}

}  // namespace kerfline::cli
