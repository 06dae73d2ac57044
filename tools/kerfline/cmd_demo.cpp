// `kerfline demo`: the library doing its main job, in a few seconds, on the
// example drivers in a temporary suite directory.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <system_error>

#include "commands.hpp"
#include "device/port_access.hpp"
#include "kerfline/kerfline.h"
#include "open_driver.hpp"
#include "platform/paths.hpp"
#include "platform/process.hpp"
#include "platform/serial_port.hpp"

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
    if (keep_) return;
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  DemoSuite(const DemoSuite&) = delete;
  DemoSuite& operator=(const DemoSuite&) = delete;

  [[nodiscard]] std::string path() const { return dir_.string(); }
  void keep() { keep_ = true; }
  [[nodiscard]] std::string driver(const char* name) const { return (dir_ / "Drivers" / name).string(); }

 private:
  fs::path dir_;
  bool keep_ = false;
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

std::string read_file(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

std::size_t count_of(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size())) ++n;
  return n;
}

// The simulator writes its slave path to a file once it is ready; a full line
// means the rename into place happened. Waits at most timeout_ms, sleeping in
// the child's own wait so a simulator that dies ends the wait at once.
std::optional<std::string> wait_for_path(platform::ChildProcess& sim, const fs::path& file,
                                         std::uint32_t timeout_ms) {
  constexpr std::uint32_t kStep = 50;
  for (std::uint32_t waited = 0; waited < timeout_ms; waited += kStep) {
    const std::string text = read_file(file);
    const auto end = text.find('\n');
    if (end != std::string::npos) return text.substr(0, end);
    if (sim.wait_for(kStep)) return std::nullopt;
  }
  return std::nullopt;
}

// The driver's output for a small job: initialisation, tool 1, a square.
std::string square_job(VMV6DRV* drv) {
  auto eval = [&](const char* name) {
    char* out = DoEval(read_template(drv, name).c_str());
    std::string text = out != nullptr ? out : "";
    FreeEval(out);
    return text;
  };
  LoadEvalVars(drv, 0xFFFFFFFFu);
  SetEvalVar("%Tool%", "1", 0xFFFFFFFFu);
  std::string job = eval("%PlotInit%") + eval("%ToolChange%");
  const char* const corners[][2] = {
      {"1000", "1000"}, {"5000", "1000"}, {"5000", "5000"}, {"1000", "5000"}, {"1000", "1000"}};
  for (const auto& c : corners) {
    SetEvalVar("%x%", c[0], 0xFFFFFFFFu);
    SetEvalVar("%y%", c[1], 0xFFFFFFFFu);
    job += eval(&c == &corners[0] ? "%Move%" : "%Line%");
  }
  return job;
}

// Sends the job and, on the same connection, asks for the status: once the
// answer is back the device has taken the whole job, so the next open's purge
// (which drops whatever still waits in the line) cannot eat part of it.
bool send_to_device(VMV6DRV* drv, const char* device, const std::string& job) {
  void* read = KERFLINE_INVALID_DEVICE_HANDLE;
  void* write = KERFLINE_INVALID_DEVICE_HANDLE;
  ConnectToDevice(drv, device, &read, &write);
  if (write == KERFLINE_INVALID_DEVICE_HANDLE) {
    std::printf("cannot open %s\n", device);
    return false;
  }
  const std::string data = job + "OS;";
  WriteToDevice(&write, data.data(), static_cast<std::uint32_t>(data.size()));
  char answer[64] = {};
  const auto got = platform::port::read(reinterpret_cast<platform::port::Handle>(read), answer,
                                        sizeof answer - 1, platform::port::ReadTimeouts{50, 2000});
  CloseDevice(&read, &write);
  const std::string status(answer, got.count);
  if (status.find('\r') == std::string::npos) {
    std::printf("%s did not confirm the job within 2 s\n", device);
    return false;
  }
  std::printf("status after the job (OS;): %s\n", status.substr(0, status.find('\r')).c_str());
  return true;
}

// One dialogue over the port the device's settings name, as `kerfline device
// query` holds it for a port or file path.
std::string query_device(VMV6DRV* drv, const char* device, const char* instruction) {
  device::Handle read = platform::port::kInvalidHandle;
  device::Handle write = platform::port::kInvalidHandle;
  std::int32_t error = 1;
  if (device::OpenDevicePort(drv, device, &error, &read, &write) != 0 ||
      !platform::port::is_open_handle(write)) {
    return "(cannot open, error " + std::to_string(error) + ")";
  }
  const auto answer = device::QueryDevice(read, write, instruction, nullptr);
  if (!answer) return "(no answer)";
  // The device ends its answer with a carriage return; not for the screen.
  return answer->substr(0, answer->find('\r'));
}

// The simulated cutter on a pseudo-terminal, added as a device, cut on and
// asked; its SVG shows what it cut.
void show_simulated_cutter(const std::string& suite_dir, const std::string& driver, bool keep) {
  heading("The simulated cutter on a pseudo-terminal (ConnectToDevice, WriteToDevice, CloseDevice, a query)");
  fs::path sim_exe = fs::path(platform::executable_dir()) / "kerfline-sim";
  std::error_code ec;
  if (!fs::is_regular_file(sim_exe, ec) && fs::is_regular_file(fs::path(sim_exe) += ".exe", ec))
    sim_exe += ".exe";
  if (!fs::is_regular_file(sim_exe, ec)) {
    std::printf("kerfline-sim is not beside kerfline (%s); skipped\n", sim_exe.string().c_str());
    return;
  }
  const fs::path svg = fs::path(suite_dir) / "cut.svg";
  const fs::path path_file = fs::path(suite_dir) / "sim-device-path";
  const std::string command = "\"" + sim_exe.string() + "\" --pty --svg \"" + svg.string() +
                              "\" --path-file \"" + path_file.string() + "\"";
  std::printf("starting kerfline-sim (it prints its device path):\n");
  std::fflush(stdout);
  auto started = platform::ChildProcess::spawn(command, 0);
  if (!started) {
    std::printf("cannot start kerfline-sim: %s\n", started.error().message.c_str());
    return;
  }
  // Ends the simulator and collects it on every path out of here.
  platform::ChildProcess sim = std::move(*started);
  const auto slave = wait_for_path(sim, path_file, 5000);
  if (!slave) {
    std::printf("kerfline-sim did not report its device path within 5 s\n");
    return;
  }
  CUTDEVICE add{};
  std::strncpy(add.szDrvPath, driver.c_str(), sizeof(add.szDrvPath) - 1);
  std::strcpy(add.szName, "Simulated");
  std::strncpy(add.szPort, slave->c_str(), sizeof(add.szPort) - 1);
  std::printf("add Simulated on %s: %d\n", slave->c_str(), WriteCutDevice(&add));

  OpenDriver drv(driver);
  if (!drv.ok()) return;
  const std::string job = square_job(drv.record());
  std::printf("send %zu bytes: %s\n", job.size(), job.c_str());
  send_to_device(drv.record(), "Simulated", job);
  for (const char* instruction : {"OI;", "OA;"}) {
    std::printf("query %s -> %s\n", instruction,
                query_device(drv.record(), "Simulated", instruction).c_str());
  }
  sim.terminate();
  sim.wait_for(5000);
  const std::string picture = read_file(svg);
  if (picture.empty()) {
    std::printf("kerfline-sim wrote no SVG\n");
    return;
  }
  std::printf("SVG of the cut: %s (strokes: %zu)%s\n", svg.string().c_str(), count_of(picture, "<polyline"),
              keep ? "" : ", removed with the suite directory (--keep keeps it)");
}

int run_demo(bool keep) {
  DemoSuite suite;
  if (keep) suite.keep();
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
  show_simulated_cutter(suite.path(), cutter, keep);
  std::printf("\ndemo done%s\n", keep ? "; the suite directory is kept" : "");
  return kExitOk;
}

}  // namespace

void register_demo(CLI::App& app, CommandList& commands) {
  CLI::App* sub = app.add_subcommand("demo", "Show the library at work on the example drivers");
  auto keep = std::make_shared<bool>(false);
  sub->add_flag("--keep", *keep, "Keep the temporary suite directory (and the SVG of the cut)");
  commands.add(sub, [keep] { return run_demo(*keep); });
}

}  // namespace kerfline::cli
