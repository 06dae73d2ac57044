// `kerfline driver info|get|set|tools|materials`: a driver as a host sees it
// through the library's C interface.
#include <nlohmann/json.hpp>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "cli_io.hpp"
#include "commands.hpp"
#include "driver_checks.hpp"
#include "kerfline/kerfline.h"
#include "message_boxes.hpp"
#include "open_driver.hpp"
#include "variable_owner.hpp"

namespace kerfline::cli {
namespace {

using json = nlohmann::ordered_json;

struct ApiOptions {
  std::string file;
  std::string name;
  std::string value;
  std::string tool;
  std::string material;
  int kind = KERFLINE_VARKIND_DRIVER;
  std::string type = "text";
  bool force = false;
  bool json = false;
};

std::string shown(const char* text) { return to_terminal(text != nullptr ? text : ""); }

void print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

// A variable request; false (with a message) when the name does not fit.
bool make_request(VMV6VAR& var, VMV6DRV* drv, const std::string& name, int kind, int value_type) {
  std::memset(&var, 0, sizeof(var));
  if (name.size() > kMaxNameBytes) {
    std::fprintf(stderr, "kerfline: variable name too long (at most 63 characters): %s\n", name.c_str());
    return false;
  }
  std::memcpy(var.szName, name.c_str(), name.size() + 1);
  var.pDrv = drv;
  var.nKind = kind;
  var.nValueType = value_type;
  return true;
}

// The request the options describe: the name in the library's encoding, and
// the tool or material that owns it.
bool make_owned_request(VMV6VAR& var, OpenDriver& drv, VariableOwner& owner, const ApiOptions& o,
                        int value_type) {
  const auto name = from_terminal(o.name, "variable name");
  const auto tool = from_terminal(o.tool, "tool name");
  const auto material = from_terminal(o.material, "material name");
  if (!name || !tool || !material || !owner.find(drv.record(), *tool, *material)) return false;
  const bool owned = owner.record() != nullptr;
  if (!make_request(var, drv.record(), *name, owned ? KERFLINE_VARKIND_OWNER : o.kind, value_type))
    return false;
  var.pOwner = owner.record();
  return true;
}

// The variable's value as text, or nothing when it is not found.
bool read_text(VMV6DRV* drv, const std::string& name, std::string& out) {
  VMV6VAR var;
  if (!make_request(var, drv, name, KERFLINE_VARKIND_DRIVER, KERFLINE_VT_TEXT)) return false;
  if (GetVar(&var) != 1) return false;
  out = var.uValue.pszText != nullptr ? var.uValue.pszText : "";
  FreeVar(&var);
  return true;
}

const std::map<std::string, int>& value_types() {
  static const std::map<std::string, int> types = {
      {"int", KERFLINE_VT_INTEGER}, {"float", KERFLINE_VT_FLOAT}, {"double", KERFLINE_VT_DOUBLE},
      {"text", KERFLINE_VT_TEXT},   {"date", KERFLINE_VT_DATE},   {"auto", KERFLINE_VT_AUTO},
  };
  return types;
}

// Whether a stored text reads as the value type asked for; the library
// answers 0 for a text that is no number, which must not pass as a value.
bool text_fits(const std::string& text, int value_type) {
  const char* first = text.data();
  const char* last = text.data() + text.size();
  if (value_type == KERFLINE_VT_INTEGER) {
    long long n = 0;
    const auto r = std::from_chars(first, last, n);
    return r.ec == std::errc() && r.ptr == last;
  }
  if (value_type == KERFLINE_VT_FLOAT || value_type == KERFLINE_VT_DOUBLE) {
    double d = 0;
    const auto r = std::from_chars(first, last, d, std::chars_format::general);
    return r.ec == std::errc() && r.ptr == last;
  }
  if (value_type == KERFLINE_VT_DATE) {
    int parts[3] = {};
    const char* p = first;
    for (int i = 0; i < 3; ++i) {
      const auto r = std::from_chars(p, last, parts[i]);
      if (r.ec != std::errc() || (i < 2 && (r.ptr == last || *r.ptr != '.'))) return false;
      p = i < 2 ? r.ptr + 1 : r.ptr;
    }
    return p == last;
  }
  return true;
}

json value_json(const VMV6VAR& var) {
  switch (var.nValueType) {
    case KERFLINE_VT_INTEGER:
      return var.uValue.nInt;
    case KERFLINE_VT_FLOAT:
      return static_cast<double>(var.uValue.fFloat);
    case KERFLINE_VT_DOUBLE:
      return var.uValue.dDouble;
    case KERFLINE_VT_DATE:
      return json::array({var.uValue.anDate[0], var.uValue.anDate[1], var.uValue.anDate[2]});
    default:
      return shown(var.uValue.pszText);
  }
}

std::string value_text(const VMV6VAR& var) {
  char number[64];
  switch (var.nValueType) {
    case KERFLINE_VT_INTEGER:
      return std::to_string(var.uValue.nInt);
    case KERFLINE_VT_FLOAT:
      std::snprintf(number, sizeof(number), "%g", static_cast<double>(var.uValue.fFloat));
      return number;
    case KERFLINE_VT_DOUBLE:
      std::snprintf(number, sizeof(number), "%.10g", var.uValue.dDouble);
      return number;
    case KERFLINE_VT_DATE:
      return std::to_string(var.uValue.anDate[0]) + "." + std::to_string(var.uValue.anDate[1]) + "." +
             std::to_string(var.uValue.anDate[2]);
    default:
      return shown(var.uValue.pszText);
  }
}

}  // namespace

int print_driver_info(const std::string& file, bool as_json) {
  OpenDriver drv(file);
  if (!drv.ok()) return kExitFailure;
  char name[260] = {};
  const int32_t name_len = GetDrvName(file.c_str(), name, sizeof(name));
  std::string title;
  read_text(drv.record(), "%DriverName%", title);
  char driver_class[260] = {};
  const int32_t class_len = GetDrvClass2(drv.record(), driver_class, sizeof(driver_class));
  uint32_t flags = 0;
  GetDrvFlags(drv.record(), nullptr, &flags);
  const std::string shown_name = name_len > 0 ? shown(name) : "";
  const std::string shown_class = class_len > 0 && class_len < 260 ? shown(driver_class) : "";
  const std::vector<std::string> warnings = driver_warnings(drv.record(), file);
  if (as_json) {
    const json info = {{"file", file},
                       {"name", shown_name},
                       {"title", shown(title.c_str())},
                       {"class", shown_class},
                       {"flags", flags},
                       {"tools", CountTools(drv.record())},
                       {"materials", CountMaterial(drv.record())},
                       {"warnings", warnings}};
    print(info.dump(2) + "\n");
    return kExitOk;
  }
  std::printf("file:      %s\n", file.c_str());
  std::printf("name:      %s\n", name_len > 0 ? shown_name.c_str() : "(none)");
  std::printf("title:     %s\n", shown(title.c_str()).c_str());
  std::printf("class:     %s\n", shown_class.empty() ? "(none)" : shown_class.c_str());
  std::printf("flags:     0x%04X\n", flags);
  std::printf("tools:     %d\n", CountTools(drv.record()));
  std::printf("materials: %d\n", CountMaterial(drv.record()));
  std::fflush(stdout);  // the warnings follow what they are about
  for (const std::string& w : warnings) std::fprintf(stderr, "warning: %s\n", w.c_str());
  return kExitOk;
}

namespace {

int run_get(const ApiOptions& o) {
  OpenDriver drv(o.file);
  if (!drv.ok()) return kExitFailure;
  VariableOwner owner;
  VMV6VAR var;
  if (!make_owned_request(var, drv, owner, o, value_types().at(o.type))) return kExitFailure;
  const int32_t result = GetVar(&var);
  if (result != 1) {
    std::fprintf(stderr, "kerfline: %s: variable %s not found (result %d)\n", o.file.c_str(), o.name.c_str(),
                 result);
    return kExitFailure;
  }
  const int asked = value_types().at(o.type);
  if (asked != KERFLINE_VT_TEXT && asked != KERFLINE_VT_AUTO) {
    VMV6VAR as_text = var;
    as_text.nValueType = KERFLINE_VT_TEXT;
    as_text.uValue.pszText = nullptr;
    if (GetVar(&as_text) == 1) {
      const std::string text = as_text.uValue.pszText != nullptr ? as_text.uValue.pszText : "";
      FreeVar(&as_text);
      if (!text_fits(text, asked)) {
        std::fprintf(stderr, "kerfline: %s holds \"%s\", which is not a %s\n", o.name.c_str(),
                     to_terminal(text).c_str(), asked == KERFLINE_VT_DATE ? "date" : "number of that type");
        FreeVar(&var);
        return kExitFailure;
      }
    }
  }
  if (o.json) {
    print(json({{"name", o.name}, {"value", value_json(var)}}).dump() + "\n");
  } else {
    print(value_text(var) + "\n");
  }
  FreeVar(&var);
  return kExitOk;
}

const char* check_reason(int32_t reason) {
  switch (reason) {
    case KERFLINE_CHECK_TYPE:
      return "not a value of the variable's type";
    case KERFLINE_CHECK_RANGE:
      return "outside the dialog variable's range";
    case KERFLINE_CHECK_LENGTH:
      return "longer than the variable may be";
    default:
      return "refused";
  }
}

int run_set(const ApiOptions& o) {
  OpenDriver drv(o.file);
  if (!drv.ok()) return kExitFailure;
  VariableOwner owner;
  VMV6VAR var;
  if (!make_owned_request(var, drv, owner, o, KERFLINE_VT_TEXT)) return kExitFailure;
  const auto value = from_terminal(o.value, "value");
  if (!value) return kExitFailure;
  int32_t reason = 0;
  if (!o.force && CheckMatVarVal(&var, value->c_str(), &reason) == 0) {
    std::fprintf(stderr, "kerfline: %s: \"%s\" for %s is %s (--force stores it anyway)\n", o.file.c_str(),
                 o.value.c_str(), o.name.c_str(), check_reason(reason));
    return kExitFailure;
  }
  std::vector<char> text(value->begin(), value->end());
  text.push_back('\0');
  var.uValue.pszText = text.data();
  const int32_t result = SetVar(&var);
  if (result != 1) {
    std::fprintf(stderr, "kerfline: %s: cannot set %s (result %d)\n", o.file.c_str(), o.name.c_str(), result);
    return kExitFailure;
  }
  // StoreDrv answers 1 even when the file could not be written; the
  // library tells only through an error message.
  const int errors_before = error_boxes_shown();
  if (StoreDrv(drv.record()) != 1 || error_boxes_shown() != errors_before) {
    std::fprintf(stderr, "kerfline: cannot store %s\n", o.file.c_str());
    return kExitFailure;
  }
  return kExitOk;
}

}  // namespace

int print_driver_tools(const std::string& file, bool as_json) {
  OpenDriver drv(file);
  if (!drv.ok()) return kExitFailure;
  json list = json::array();
  DRVTOOL tool{};
  for (int32_t r = GetFirstTool(drv.record(), &tool); r == 1; r = GetNextTool(drv.record(), &tool)) {
    uint32_t flags = 0;
    GetDrvFlags(drv.record(), tool.pszName, &flags);
    if (as_json) {
      list.push_back({{"name", shown(tool.pszName)},
                      {"type", shown(tool.pszType)},
                      {"flags", flags},
                      {"variables", tool.nVarCount}});
      continue;
    }
    std::printf("%-20s %-10s flags 0x%04X  %d variables\n", shown(tool.pszName).c_str(),
                shown(tool.pszType).c_str(), flags, tool.nVarCount);
  }
  FreeTool(&tool);
  if (as_json) print(list.dump(2) + "\n");
  return kExitOk;
}

namespace {

int run_materials(const ApiOptions& o) {
  OpenDriver drv(o.file);
  if (!drv.ok()) return kExitFailure;
  json list = json::array();
  DRVMATERIAL material{};
  for (int32_t r = GetFirstMaterial(drv.record(), &material); r == 1;
       r = GetNextMaterial(drv.record(), &material)) {
    if (o.json) {
      list.push_back({{"name", shown(material.pszName)}, {"variables", material.nVarCount}});
      continue;
    }
    std::printf("%-20s %d variables\n", shown(material.pszName).c_str(), material.nVarCount);
  }
  FreeMaterial(&material);
  if (o.json) print(list.dump(2) + "\n");
  return kExitOk;
}

}  // namespace

void register_driver_api(CLI::App& driver, CommandList& commands) {
  auto o = std::make_shared<ApiOptions>();
  auto file_arg = [o](CLI::App* sub) { sub->add_option("file", o->file, "Driver file")->required(); };
  auto json_flag = [o](CLI::App* sub) { sub->add_flag("--json", o->json, "Print JSON"); };
  auto owner_options = [o](CLI::App* sub) {
    auto* tool = sub->add_option("--tool", o->tool, "A variable of this tool");
    sub->add_option("--material", o->material, "A variable of this material")->excludes(tool);
  };

  CLI::App* info = driver.add_subcommand("info", "Name, title, class, flags and counts of a driver");
  file_arg(info);
  json_flag(info);
  commands.add(info, [o] { return print_driver_info(o->file, o->json); });

  CLI::App* get = driver.add_subcommand("get", "Read a variable as a host does (GetVar)");
  file_arg(get);
  get->add_option("name", o->name, "Variable name as stored, e.g. %Speed%")->required();
  get->add_option("--kind", o->kind, "Where to look: 1 driver, 7 joystick, 8 video settings")
      ->check(CLI::IsMember({1, 7, 8}));
  get->add_option("--type", o->type, "Value type: int, float, double, text, date, auto")
      ->check(CLI::IsMember({"int", "float", "double", "text", "date", "auto"}));
  owner_options(get);
  json_flag(get);
  commands.add(get, [o] { return run_get(*o); });

  CLI::App* set = driver.add_subcommand("set", "Change a variable and store the driver (SetVar, StoreDrv)");
  file_arg(set);
  set->add_option("name", o->name, "Variable name as stored")->required();
  set->add_option("value", o->value, "New value")->required();
  set->add_option("--kind", o->kind, "Where to look: 1 driver, 7 joystick, 8 video settings")
      ->check(CLI::IsMember({1, 7, 8}));
  owner_options(set);
  set->add_flag("--force", o->force, "Store a value that does not fit the variable's type or range");
  commands.add(set, [o] { return run_set(*o); });

  CLI::App* tools = driver.add_subcommand("tools", "List the driver's tools");
  file_arg(tools);
  json_flag(tools);
  commands.add(tools, [o] { return print_driver_tools(o->file, o->json); });

  CLI::App* materials = driver.add_subcommand("materials", "List the driver's materials");
  file_arg(materials);
  json_flag(materials);
  commands.add(materials, [o] { return run_materials(*o); });
}

}  // namespace kerfline::cli
