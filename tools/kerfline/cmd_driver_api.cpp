// `kerfline driver info|get|set|tools|materials`: a driver as a host sees it
// through the library's C interface.
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "commands.hpp"
#include "kerfline/kerfline.h"
#include "message_boxes.hpp"
#include "open_driver.hpp"
#include "platform/codepage.hpp"

namespace kerfline::cli {
namespace {

struct ApiOptions {
  std::string file;
  std::string name;
  std::string value;
  int kind = KERFLINE_VARKIND_DRIVER;
  std::string type = "text";
};

std::string shown(const char* text) { return platform::cp1252::to_utf8(text != nullptr ? text : ""); }

// A variable request by name; false (with a message) when the name does not fit.
bool make_request(VMV6VAR& var, VMV6DRV* drv, const std::string& name, int kind, int value_type) {
  std::memset(&var, 0, sizeof(var));
  if (name.size() >= sizeof(var.szName)) {
    std::fprintf(stderr, "kerfline: variable name too long (at most 63 characters): %s\n", name.c_str());
    return false;
  }
  std::memcpy(var.szName, name.c_str(), name.size() + 1);
  var.pDrv = drv;
  var.nKind = kind;
  var.nValueType = value_type;
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

void print_value(const VMV6VAR& var) {
  char number[64];
  switch (var.nValueType) {
    case KERFLINE_VT_INTEGER:
      std::printf("%d\n", var.uValue.nInt);
      break;
    case KERFLINE_VT_FLOAT:
      std::snprintf(number, sizeof(number), "%g", static_cast<double>(var.uValue.fFloat));
      std::printf("%s\n", number);
      break;
    case KERFLINE_VT_DOUBLE:
      std::snprintf(number, sizeof(number), "%.10g", var.uValue.dDouble);
      std::printf("%s\n", number);
      break;
    case KERFLINE_VT_DATE:
      std::printf("%d.%d.%d\n", var.uValue.anDate[0], var.uValue.anDate[1], var.uValue.anDate[2]);
      break;
    default:
      std::printf("%s\n", shown(var.uValue.pszText).c_str());
  }
}

}  // namespace

int print_driver_info(const std::string& file) {
  ApiOptions o;
  o.file = file;
  OpenDriver drv(o.file);
  if (!drv.ok()) return kExitFailure;
  char name[260] = {};
  const int32_t name_len = GetDrvName(o.file.c_str(), name, sizeof(name));
  std::string title;
  read_text(drv.record(), "%DriverName%", title);
  char driver_class[260] = {};
  const int32_t class_len = GetDrvClass2(drv.record(), driver_class, sizeof(driver_class));
  uint32_t flags = 0;
  GetDrvFlags(drv.record(), nullptr, &flags);

  std::printf("file:      %s\n", o.file.c_str());
  std::printf("name:      %s\n", name_len > 0 ? shown(name).c_str() : "(none)");
  std::printf("title:     %s\n", shown(title.c_str()).c_str());
  std::printf("class:     %s\n", class_len > 0 && class_len < 260 ? shown(driver_class).c_str() : "(none)");
  std::printf("flags:     0x%04X\n", flags);
  std::printf("tools:     %d\n", CountTools(drv.record()));
  std::printf("materials: %d\n", CountMaterial(drv.record()));
  return kExitOk;
}

namespace {

int run_get(const ApiOptions& o) {
  OpenDriver drv(o.file);
  if (!drv.ok()) return kExitFailure;
  VMV6VAR var;
  if (!make_request(var, drv.record(), o.name, o.kind, value_types().at(o.type))) return kExitFailure;
  const int32_t result = GetVar(&var);
  if (result != 1) {
    std::fprintf(stderr, "kerfline: %s: variable %s not found (result %d)\n", o.file.c_str(), o.name.c_str(),
                 result);
    return kExitFailure;
  }
  print_value(var);
  FreeVar(&var);
  return kExitOk;
}

int run_set(const ApiOptions& o) {
  OpenDriver drv(o.file);
  if (!drv.ok()) return kExitFailure;
  VMV6VAR var;
  if (!make_request(var, drv.record(), o.name, o.kind, KERFLINE_VT_TEXT)) return kExitFailure;
  const auto value = platform::cp1252::from_utf8(o.value);
  if (!value) {
    std::fprintf(stderr, "kerfline: the value holds a character that Windows-1252 cannot hold\n");
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

int print_driver_tools(const std::string& file) {
  OpenDriver drv(file);
  if (!drv.ok()) return kExitFailure;
  DRVTOOL tool{};
  for (int32_t r = GetFirstTool(drv.record(), &tool); r == 1; r = GetNextTool(drv.record(), &tool)) {
    uint32_t flags = 0;
    GetDrvFlags(drv.record(), tool.pszName, &flags);
    std::printf("%-20s %-10s flags 0x%04X  %d variables\n", shown(tool.pszName).c_str(),
                shown(tool.pszType).c_str(), flags, tool.nVarCount);
  }
  FreeTool(&tool);
  return kExitOk;
}

namespace {

int run_materials(const ApiOptions& o) {
  OpenDriver drv(o.file);
  if (!drv.ok()) return kExitFailure;
  DRVMATERIAL material{};
  for (int32_t r = GetFirstMaterial(drv.record(), &material); r == 1;
       r = GetNextMaterial(drv.record(), &material)) {
    std::printf("%-20s %d variables\n", shown(material.pszName).c_str(), material.nVarCount);
  }
  FreeMaterial(&material);
  return kExitOk;
}

}  // namespace

void register_driver_api(CLI::App& driver, CommandList& commands) {
  auto o = std::make_shared<ApiOptions>();
  auto file_arg = [o](CLI::App* sub) {
    sub->add_option("file", o->file, "Driver file")->required();
  };

  CLI::App* info = driver.add_subcommand("info", "Name, title, class, flags and counts of a driver");
  file_arg(info);
  commands.add(info, [o] { return print_driver_info(o->file); });

  CLI::App* get = driver.add_subcommand("get", "Read a variable as a host does (GetVar)");
  file_arg(get);
  get->add_option("name", o->name, "Variable name as stored, e.g. %Speed%")->required();
  get->add_option("--kind", o->kind, "Where to look: 1 driver, 7 joystick, 8 video settings")
      ->check(CLI::IsMember({1, 7, 8}));
  get->add_option("--type", o->type, "Value type: int, float, double, text, date, auto")
      ->check(CLI::IsMember({"int", "float", "double", "text", "date", "auto"}));
  commands.add(get, [o] { return run_get(*o); });

  CLI::App* set = driver.add_subcommand("set", "Change a variable and store the driver (SetVar, StoreDrv)");
  file_arg(set);
  set->add_option("name", o->name, "Variable name as stored")->required();
  set->add_option("value", o->value, "New value")->required();
  set->add_option("--kind", o->kind, "Where to look: 1 driver, 7 joystick, 8 video settings")
      ->check(CLI::IsMember({1, 7, 8}));
  commands.add(set, [o] { return run_set(*o); });

  CLI::App* tools = driver.add_subcommand("tools", "List the driver's tools");
  file_arg(tools);
  commands.add(tools, [o] { return print_driver_tools(o->file); });

  CLI::App* materials = driver.add_subcommand("materials", "List the driver's materials");
  file_arg(materials);
  commands.add(materials, [o] { return run_materials(*o); });
}

}  // namespace kerfline::cli
