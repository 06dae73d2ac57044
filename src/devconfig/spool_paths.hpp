// Where a device's spool files live and how its INI values are read.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kerfline::devconfig {

// The device name made safe for a directory name: ':', '/', '\', '[', ']'
// and '.' become '_', the rest is upper-cased (1252) with Ä, Ü, Ö as AE,
// UE, OE. The result never contains a separator or a dot.
std::string safe_device_name(std::string_view name);

// <base dir>/SPOOLER/SL_<safe name>, without a trailing separator.
std::string spool_dir(std::string_view base_dir, std::string_view device_name);
// The spool directory's index file and saved-jobs directory.
std::string index_file_of(std::string_view spool);
std::string saved_dir_of(std::string_view spool);

// The directory of an INI file (a bare name is a file in the suite
// directory), ending in the separator.
std::string ini_directory(const std::string& ini_file);

// Everything up to and including the last '/' or '\' ("" when none).
std::string directory_part(std::string_view path);
// What follows the last '/' or '\'.
std::string file_part(std::string_view path);

// A text value as the suite reads it: into a buffer of buffer_size bytes,
// so at most buffer_size - 1 characters.
std::string read_text(std::string_view section, std::string_view key, std::string_view default_value,
                      const std::string& file, std::uint32_t buffer_size = 512);

// "1" or "0" for a flag, a number in decimal.
std::string flag_text(std::int32_t value);
std::string int_text(std::int32_t value);
std::string uint_text(std::uint32_t value);

// The leading decimal digits of a text as an unsigned number (0 when none),
// as the C run-time's strtoul reads a value.
std::uint32_t leading_uint(std::string_view text);

// "ActiveJobs"/"Count" of an index file (0 when missing).
std::int32_t active_job_count(const std::string& index_file);

}  // namespace kerfline::devconfig
