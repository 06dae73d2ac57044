// The port layer: how a named device is reached, opening it, one question
// and its answer, and the vendor USB libraries. One device dialogue at a
// time per process; the link state below is shared by every caller.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "kerfline/kerfline.h"
#include "platform/serial_port.hpp"

namespace kerfline::device {

using Handle = platform::port::Handle;

enum EDeviceLink : std::int32_t {
  LinkPort = 0,
  LinkRdgUsb = 1,
  LinkUsbApi = 2,
  LinkUsbPipeSingle = 3,
  LinkGraphtecUsb = 4,
  LinkSlotReader = 5,
  LinkTcpIp = 6,
};

// Process-wide flags and retry counters of the device dialogue.
struct LinkState {
  bool single_handle_request = false;
  bool graphtec_request = false;
  bool pipe_flag = false;
  bool no_flush = true;  // set at load: a pipe query sends no flush until a reader clears it
  bool out_flag_4 = false;
  int single_retries = 0;
  int out_retries = 0;
  int in_retries = 0;
  int graphtec_write_retries = 0;
  int graphtec_read_retries = 0;
};
LinkState& link_state();
void reset_link_state();  // back to the state at load (tests)

// What the layer needs of a device's settings record.
struct PortSettings {
  std::int32_t port_type = 2;
  std::string write_to;         // "DevOut"
  std::string usb_device_name;  // friendly name the device was set up with
  std::string usb_device_path;  // its last known path
  std::string ip_address;       // "IP_ADDR", for the TCP/IP link
  std::int32_t ip_port = 0;     // "IP_PORT"
};
using SettingsReader = std::function<PortSettings(const std::string& device)>;
// Replaces where settings come from (null: the settings record of the INI
// file again).
void set_settings_reader(SettingsReader reader);
PortSettings read_port_settings(const std::string& device);

// The waits of open retries and vendor bridges go through here so that a
// test can see them without spending them; query waits always sleep.
using WaitFunction = std::function<void(std::uint32_t ms)>;
void set_wait_function(WaitFunction wait);  // null: sleep
void wait_ms(std::uint32_t ms);

// The value of a driver variable ("%RolandUSB%"), nothing when undefined.
std::optional<std::string> driver_variable(const VMV6DRV* drv, const std::string& name);

EDeviceLink DecideDeviceLink(const VMV6DRV* drv, const std::string& device, std::string& usb_device_name);

// 0 opened (or nothing to open), -1 failed with *error set.
std::int32_t OpenDevicePort(const VMV6DRV* drv, const char* device, std::int32_t* error, Handle* read_handle,
                            Handle* write_handle);

// Sends the instruction and collects the answer (at most 128 bytes); closes
// both handles. Nothing when the query failed.
std::optional<std::string> QueryDevice(Handle read_handle, Handle write_handle, const char* instruction,
                                       const char* mark_instruction);

// The device path a stored USB name and path stand for now.
struct UsbEntry {
  std::string name;
  std::string path;
};
std::string resolve_usb_path(const std::vector<UsbEntry>& present, const std::string& stored_name,
                             const std::string& stored_path);

// Vendor bridges; nothing when the library or an entry point is missing or
// the device refused.
std::optional<std::string> UsbApiQuery(const std::string& instruction);
std::optional<std::string> RdgQuery(const std::string& usb_device_name, const std::string& instruction,
                                    const std::string& library = "rdg77001.dll");
std::optional<std::string> SlotRead(const std::string& usb_device_name);

// The text a user typed in place of the device's answer.
std::optional<std::string> ManualAnswer();

// Closes the read handle and, when different, the write handle; both become
// invalid.
void close_pair(Handle& read_handle, Handle& write_handle);

}  // namespace kerfline::device
