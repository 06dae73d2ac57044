// kerfline device: send a plot file to a device, ask it one question, list
// the USB devices present. Opens through the same exports a host uses.
#include <atomic>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include "commands.hpp"
#include "devconfig/spool_dir.hpp"
#include "device/port_access.hpp"
#include "kerfline/device_settings.hpp"
#include "kerfline/kerfline.h"
#include "open_driver.hpp"
#include "platform/paths.hpp"
#include "platform/serial_port.hpp"
#include "platform/usb_devices.hpp"
#include "port_hint.hpp"

namespace kerfline::cli {
namespace {

struct DeviceOptions {
  std::string name;
  std::string file;
  std::string instruction;
  std::string driver;
  std::uint32_t chunk = 4096;
};

std::atomic<bool> interrupted{false};
extern "C" void on_interrupt(int) { interrupted = true; }

// The device's driver: --driver, else the one its settings name.
std::string driver_of(const DeviceOptions& o) {
  if (!o.driver.empty()) return o.driver;
  CCutterDeviceSettings record(o.name.c_str());
  record.ReadFromIni(devconfig::device_list_file().c_str());
  const std::string file = record.GetDrvFileName() != nullptr ? record.GetDrvFileName() : "";
  if (file.empty()) return {};
  return platform::join_path(record.GetDrvPath() != nullptr ? record.GetDrvPath() : "", file);
}

std::unique_ptr<OpenDriver> open_driver(const DeviceOptions& o) {
  const std::string path = driver_of(o);
  if (path.empty()) return nullptr;
  auto drv = std::make_unique<OpenDriver>(path);
  return drv->ok() ? std::move(drv) : nullptr;
}

bool read_input(const std::string& file, std::string& data) {
  if (file == "-") {
    data.assign(std::istreambuf_iterator<char>(std::cin), {});
    return true;
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) return false;
  data.assign(std::istreambuf_iterator<char>(in), {});
  return true;
}

void progress(std::size_t done, std::size_t total) {
  constexpr int kWidth = 40;
  const int filled = total == 0 ? kWidth : static_cast<int>(kWidth * done / total);
  std::fprintf(stderr, "\r[%s%s] %zu/%zu bytes", std::string(filled, '#').c_str(),
               std::string(kWidth - filled, ' ').c_str(), done, total);
  std::fflush(stderr);
}

int run_send(const DeviceOptions& o) {
  std::string data;
  if (!read_input(o.file, data)) {
    std::fprintf(stderr, "kerfline: cannot read %s\n", o.file.c_str());
    return kExitFailure;
  }
  auto drv = open_driver(o);
  VMV6DRV empty{};
  VMV6DRV* record = drv ? drv->record() : &empty;
  void* read = KERFLINE_INVALID_DEVICE_HANDLE;
  void* write = KERFLINE_INVALID_DEVICE_HANDLE;
  ConnectToDevice(record, o.name.c_str(), &read, &write);
  if (write == KERFLINE_INVALID_DEVICE_HANDLE) {
    std::fprintf(stderr, "kerfline: cannot open device %s\n", o.name.c_str());
    return kExitFailure;
  }
  const bool bar = platform::port::is_terminal(2);
  interrupted = false;
  auto previous = std::signal(SIGINT, on_interrupt);
  std::size_t sent = 0;
  const std::size_t chunk = o.chunk == 0 ? 4096 : o.chunk;
  while (sent < data.size() && !interrupted) {
    const std::size_t n = std::min(chunk, data.size() - sent);
    WriteToDevice(&write, data.data() + sent, static_cast<std::uint32_t>(n));
    sent += n;
    if (bar) progress(sent, data.size());
  }
  std::signal(SIGINT, previous);
  if (bar) std::fprintf(stderr, "\n");
  if (interrupted) {
    // Stopped between chunks: the device gets the driver's cancel sequence.
    const std::string cancel = device::driver_variable(record, "%PlotCancel%").value_or("");
    if (!cancel.empty()) WriteToDevice(&write, cancel.data(), static_cast<std::uint32_t>(cancel.size()));
    std::fprintf(stderr, "kerfline: cancelled after %zu of %zu bytes\n", sent, data.size());
  }
  CloseDevice(&read, &write);
  return interrupted ? kExitFailure : kExitOk;
}

// One dialogue, started as the device readers start theirs.
int run_query(const DeviceOptions& o) {
  auto drv = open_driver(o);
  VMV6DRV empty{};
  VMV6DRV* record = drv ? drv->record() : &empty;
  device::LinkState& state = device::link_state();
  state.graphtec_request = false;
  state.no_flush = false;
  state.out_flag_4 = false;
  std::string usb_name;
  const device::EDeviceLink link = device::DecideDeviceLink(record, o.name, usb_name);
  std::optional<std::string> answer;
  switch (link) {
    case device::LinkRdgUsb:
      answer = device::RdgQuery(usb_name, o.instruction);
      break;
    case device::LinkSlotReader:
      answer = device::SlotRead(usb_name);
      break;
    case device::LinkUsbApi:
      answer = device::UsbApiQuery(o.instruction);
      break;
    case device::LinkTcpIp:
      std::fprintf(stderr, "kerfline: the TCP/IP link is not supported by this command\n");
      return kExitFailure;
    default: {
      if (link == device::LinkUsbPipeSingle || link == device::LinkGraphtecUsb) {
        state.single_handle_request = true;
        state.no_flush = link == device::LinkUsbPipeSingle;
        state.graphtec_request = link == device::LinkGraphtecUsb;
      }
      device::Handle read = platform::port::kInvalidHandle;
      device::Handle write = platform::port::kInvalidHandle;
      std::int32_t error = 1;
      if (device::OpenDevicePort(record, o.name.c_str(), &error, &read, &write) != 0 ||
          !platform::port::is_open_handle(write)) {
        std::fprintf(stderr, "kerfline: cannot open device %s (error %d)\n", o.name.c_str(), error);
        return kExitFailure;
      }
      answer = device::QueryDevice(read, write, o.instruction.c_str(), nullptr);
    }
  }
  if (!answer) {
    std::fprintf(stderr, "kerfline: no answer\n");
    return kExitFailure;
  }
  std::printf("%s\n", answer->c_str());
  return kExitOk;
}

int run_ports() {
  const auto present = platform::usb::enumerate();
  if (present.empty()) std::printf("no USB printers or serial adapters found\n");
  for (const auto& c : present) {
    std::printf("%s\t%s\t%s\n", c.node.c_str(), c.name.c_str(), c.path.c_str());
    std::fflush(stdout);  // a hint follows the port it is about
    print_port_hint(c.path);
  }
  return kExitOk;
}

}  // namespace

void register_device(CLI::App& app, CommandList& commands) {
  auto opts = std::make_shared<DeviceOptions>();
  CLI::App* device =
      app.add_subcommand("device", "Talk to a device: send a plot, ask a question, list USB ports");
  device->require_subcommand(1);

  CLI::App* send =
      device->add_subcommand("send", "Write a plot file to the device in chunks (Ctrl-C cancels)");
  send->add_option("name", opts->name, "Device name")->required();
  send->add_option("file", opts->file, "Plot file, or - for standard input")->required();
  send->add_option("--driver", opts->driver, "Driver file (default: the device's)");
  send->add_option("--chunk", opts->chunk, "Bytes per write (default 4096)");
  commands.add(send, [opts] { return run_send(*opts); });

  CLI::App* query = device->add_subcommand("query", "Send one instruction and print the answer");
  query->add_option("name", opts->name, "Device name")->required();
  query->add_option("instruction", opts->instruction, "Instruction, e.g. OI;")->required();
  query->add_option("--driver", opts->driver, "Driver file (default: the device's)");
  commands.add(query, [opts] { return run_query(*opts); });

  CLI::App* ports =
      device->add_subcommand("ports", "USB printers and serial adapters present, with stable paths");
  commands.add(ports, run_ports);
}

}  // namespace kerfline::cli
