// Making and removing a device's spool directory, and removing a device
// from the device list.
#pragma once

#include <string>
#include <string_view>

namespace kerfline::devconfig {

// Creates SPOOLER/, the spool directory, its "saved" subdirectory and an
// empty index file, never through a symbolic link. False when a step failed
// (callers report success anyway, as the suite always has).
bool create_spool_layout(const std::string& spool);

// Removes the spool directory's own files: index.hot, the job files and
// saved/ with its files. Links are unlinked, never followed.
void remove_spool_layout(const std::string& spool);

// The index file IsSetupAllowed looks at: only ':' is made safe.
std::string setup_index_file(std::string_view base_dir, std::string_view name);

// The device-list INI file: "plotman.ini" in the suite directory.
std::string device_list_file();

// Removes one device: its spool files below the suite directory, its key in
// "DeviceNames" and its section. No broadcast.
void remove_device(const std::string& name);

// remove_device, then tells the suite's programs that the list changed.
void delete_device(const std::string& name);

// Posts "Umsg_StartDeviceDlg" (0, 0) to the suite's programs.
void announce_device_change();

}  // namespace kerfline::devconfig
