// Reading the device list: the rules by which a section of "plotman.ini"
// becomes a CUTDEVICE record.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kerfline/kerfline.h"

namespace kerfline::devconfig {

struct ListedDevice {
  std::string name;
  std::string port;
  std::string driver_path;
};

// The devices of "DeviceNames" in file order, type 3 left out. Cost linear
// in the number of devices.
std::vector<ListedDevice> list_devices(const std::string& ini_file);

// Copies the texts into the record's fixed fields, cut to fit.
void fill_record(const ListedDevice& device, CUTDEVICE& record);

// False for a name that cannot be a key and a section name of its own: a
// control character, '=', a leading '[' or ';', or blanks at either end
// (the INI file would trim them away from the spool directory's name).
bool usable_device_name(std::string_view name);

// The driver's display name as GetDrvName reads it, at most 511 characters,
// trailing blanks removed.
std::string driver_display_name(const std::string& driver_path);

// device_list_file() as a C string that lives until the next call.
const char* device_list_file_c();

}  // namespace kerfline::devconfig
