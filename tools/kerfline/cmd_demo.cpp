// `kerfline demo`: the library doing its main job, in a few seconds, on the
// example drivers in a temporary suite directory.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

#include "commands.hpp"
#include "kerfline/kerfline.h"
#include "open_driver.hpp"
#include "platform/paths.hpp"

namespace kerfline::cli {
namespace {

namespace fs = std::filesystem;

// Where the string tables and the built example drivers are: beside the tool
// in a build tree, under share/ in an installation.
struct DemoSources {
  fs::path tables;
  fs::path drivers;
};

DemoSources demo_sources() {
  const fs::path bin = platform::executable_dir();
  std::error_code ec;
  if (fs::is_directory(bin / ".." / "examples" / "drivers", ec)) {
    return {bin / "Res", bin / ".." / "examples" / "drivers"};
  }
  const fs::path data = platform::data_dir();
  return {data / "Res", data / ".." / "doc" / "kerfline" / "examples" / "drivers"};
}

// A fresh suite directory holding the string tables and the example drivers.
class DemoSuite {
 public:
  DemoSuite() {
    std::random_device rd;
    dir_ = fs::temp_directory_path() / ("kerfline-demo-" + std::to_string(rd()));
    fs::create_directories(dir_ / "Res");
    fs::create_directories(dir_ / "Drivers");
    const DemoSources from = demo_sources();
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(from.tables, ec)) {
      fs::copy_file(entry.path(), dir_ / "Res" / entry.path().filename(), ec);
    }
    for (const auto& entry : fs::directory_iterator(from.drivers, ec)) {
      if (entry.path().extension() == ".vmd") {
        fs::copy_file(entry.path(), dir_ / "Drivers" / entry.path().filename(), ec);
      }
    }
  }
  ~DemoSuite() {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  DemoSuite(const DemoSuite&) = delete;
  DemoSuite& operator=(const DemoSuite&) = delete;

  [[nodiscard]] std::string path() const { return dir_.string(); }
  [[nodiscard]] std::string driver(const char* name) const { return (dir_ / "Drivers" / name).string(); }

 private:
  fs::path dir_;
};

void heading(const char* text) { std::printf("\n== %s\n", text); }

std::string read_template(VMV6DRV* drv, const char* name) {
  VMV6VAR var{};
  std::strncpy(var.szName, name, sizeof(var.szName) - 1);
  var.pDrv = drv;
  var.nKind = KERFLINE_VARKIND_DRIVER;
  var.nValueType = KERFLINE_VT_TEXT;
  if (GetVar(&var) != 1) return {};
  std::string text = var.uValue.pszText != nullptr ? var.uValue.pszText : "";
  FreeVar(&var);
  return text;
}

// Evaluates a driver's template variable and shows template and output.
void show_eval(VMV6DRV* drv, const char* name, const char* note) {
  const std::string text = read_template(drv, name);
  char* out = DoEval(text.c_str());
  std::printf("%-14s %s\n", name, note);
  std::printf("  template: %s\n", text.c_str());
  std::printf("  output:   %s\n", out != nullptr ? out : "(empty or script error)");
  FreeEval(out);
}

void print_devices() {
  int32_t count = 0;
  CUTDEVICE* list = GetCutDeviceList(&count);
  for (int32_t i = 0; list != nullptr && i < count; ++i) {
    std::printf("  %-12s %-14s %s\n", list[i].szName, list[i].szPort, list[i].szDrvPath);
  }
  if (count == 0) std::printf("  (no devices)\n");
  FreeCutDeviceList(list);
}

// Adds two cutters to the suite's plotman.ini, lists them, removes one.
void show_device_list(const std::string& driver) {
  heading("The device list in plotman.ini (WriteCutDevice, GetCutDeviceList, GetCutDevicePath)");
  CUTDEVICE add{};
  std::strncpy(add.szDrvPath, driver.c_str(), sizeof(add.szDrvPath) - 1);
  std::strcpy(add.szName, "Vinyl:1");
  std::strcpy(add.szPort, "/dev/ttyUSB0");
  std::printf("add Vinyl:1 on /dev/ttyUSB0: %d\n", WriteCutDevice(&add));
  std::strcpy(add.szName, "Wide");
  std::strcpy(add.szPort, "COM3");
  std::printf("add Wide on COM3: %d\n", WriteCutDevice(&add));
  print_devices();
  char spool[1024];
  if (GetCutDevicePath("Vinyl:1", spool, sizeof spool) == 1)
    std::printf("spool directory of Vinyl:1: %s\n", spool);
  const CUTDEVICE remove = [] {
    CUTDEVICE d{};
    std::strcpy(d.szName, "Vinyl:1");
    return d;
  }();
  std::printf("remove Vinyl:1: %d\n", WriteCutDevice(&remove));
  print_devices();
}

int run_demo() {
  DemoSuite suite;
  KerflineSetHomeDir(suite.path().c_str());
  std::printf("Kerfline %s demo, suite directory %s\n", KerflineGetVersion(), suite.path().c_str());
  std::printf("start-up (InitKerflineDll): %d\n", InitKerflineDll());

  const std::string cutter = suite.driver("hpgl-cutter.vmd");
  heading("A driver as a host sees it (InitDrv, GetDrvName, GetDrvClass2, GetDrvFlags, CountTools)");
  if (print_driver_info(cutter) != kExitOk) {
    std::fprintf(stderr, "kerfline: the example drivers are missing; build or install the project first\n");
    return kExitFailure;
  }
  heading("Its tools (GetFirstTool/GetNextTool, GetDrvFlags with a tool name)");
  print_driver_tools(cutter);

  heading("Output templates evaluated with the driver's variables (LoadEvalVars, DoEval)");
  InitEval(0, 0, nullptr);
  {
    OpenDriver drv(cutter);
    if (!drv.ok()) return kExitFailure;
    LoadEvalVars(drv.record(), 0xFFFFFFFFu);
    show_eval(drv.record(), "%PlotInit%", "initialisation");
    SetEvalVar("%Tool%", "1", 0xFFFFFFFFu);
    show_eval(drv.record(), "%ToolChange%", "tool change to tool 1 (a conditional block)");
    SetEvalVar("%Tool%", "2", 0xFFFFFFFFu);
    show_eval(drv.record(), "%ToolChange%", "tool change to tool 2");
    SetEvalVar("%x%", "1200", 0xFFFFFFFFu);
    SetEvalVar("%y%", "800", 0xFFFFFFFFu);
    show_eval(drv.record(), "%Move%", "a move with x=1200, y=800");
    show_eval(drv.record(), "%OvercutUnits%", "an arithmetic block");
  }
  {
    OpenDriver drv(suite.driver("dialog-cutter.vmd"));
    if (!drv.ok()) return kExitFailure;
    LoadEvalVars(drv.record(), 0xFFFFFFFFu);
    show_eval(drv.record(), "%PlotInit%", "dialog-cutter: conditional and arithmetic from dialog variables");
  }
  {
    OpenDriver drv(suite.driver("hpgl-cutter-plus.vmd"));
    if (!drv.ok()) return kExitFailure;
    LoadEvalVars(drv.record(), 0xFFFFFFFFu);
    show_eval(drv.record(), "%PlotInit%", "hpgl-cutter-plus: linked to its base driver, own speed");
  }

  heading("Change a variable, store the driver and read it back (SetVar, StoreDrv, GetVar)");
  {
    OpenDriver drv(cutter);
    if (!drv.ok()) return kExitFailure;
    VMV6VAR var{};
    std::strcpy(var.szName, "%Speed%");
    var.pDrv = drv.record();
    var.nKind = KERFLINE_VARKIND_DRIVER;
    var.nValueType = KERFLINE_VT_INTEGER;
    GetVar(&var);
    std::printf("%%Speed%% before: %d\n", var.uValue.nInt);
    var.uValue.nInt = 55;
    const int32_t set = SetVar(&var);
    const int32_t stored = StoreDrv(drv.record());
    std::printf("SetVar(%%Speed%% = 55): %d, StoreDrv: %d\n", set, stored);
  }
  {
    OpenDriver drv(cutter);
    if (!drv.ok()) return kExitFailure;
    VMV6VAR var{};
    std::strcpy(var.szName, "%Speed%");
    var.pDrv = drv.record();
    var.nKind = KERFLINE_VARKIND_DRIVER;
    var.nValueType = KERFLINE_VT_INTEGER;
    const int32_t result = GetVar(&var);
    std::printf("%%Speed%% after reopening: %d (GetVar %d)\n", var.uValue.nInt, result);
  }
  show_device_list(cutter);
  std::printf("\ndemo done\n");
  return kExitOk;
}

}  // namespace

void register_demo(CLI::App& app, CommandList& commands) {
  CLI::App* sub = app.add_subcommand("demo", "Show the library at work on the example drivers");
  commands.add(sub, run_demo);
}

}  // namespace kerfline::cli
