// Private-profile (INI) files with the Windows semantics the suite relies on:
// "plotman.ini" and the language files are shared with Windows installations
// and with the other programs of the suite, which read and write them at the
// same time.
//
// The buffer forms keep the Win32 results exactly (including those for a
// buffer that is too small); the string forms are for the rest of the code.
// Section and key names match without regard to case. A null section, key or
// value has the Win32 meaning given at each function. A file name without a
// path separator means a file in the suite directory.
//
// Every write reaches the disk before it returns and replaces the file
// atomically; concurrent writers in several processes lose nothing; a file
// changed by another process is seen at the next read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kerfline::platform::ini {

// Section and key names given to any function here are trimmed at both ends
// like the file's own names before they are matched or written.

// --- Buffer forms (GetPrivateProfile* / WritePrivateProfile*) ---------------

// section null: the list of section names; key null: the list of the
// section's key names (both "a\0b\0\0"); else the value, quotes removed, or
// the default without trailing blanks. Returns the count of characters
// written, not counting the final NUL; for lists that did not fit, size - 2.
std::uint32_t get_string(const char* section, const char* key, const char* default_value, char* buffer,
                         std::uint32_t size, const std::string& file);

// The value as an unsigned 32-bit number (callers may read it as signed);
// the default when the key is missing or empty.
std::uint32_t get_int(const char* section, const char* key, std::int32_t default_value,
                      const std::string& file);

// Every line of the section but comments, "k=v\0...\0\0".
std::uint32_t get_section(const char* section, char* buffer, std::uint32_t size, const std::string& file);

// The names of all sections, "a\0b\0\0".
std::uint32_t get_section_names(char* buffer, std::uint32_t size, const std::string& file);

// key null deletes the section; value null deletes the key. False for a null
// section, an empty file name or a file that cannot be written.
bool write_string(const char* section, const char* key, const char* value, const std::string& file);

// Replaces the key lines of the section by "k=v\0...\0\0"; null deletes it.
bool write_section(const char* section, const char* data, const std::string& file);

// --- String forms ----------------------------------------------------------

// The value with quotes removed, or the default (trailing blanks removed)
// when the key, section or file is missing.
std::string read_string(std::string_view section, std::string_view key, std::string_view default_value,
                        const std::string& file);

// The value, or nothing when the key is missing.
std::optional<std::string> find_string(std::string_view section, std::string_view key,
                                       const std::string& file);

// get_int with the result read as signed.
std::int32_t read_int(std::string_view section, std::string_view key, std::int32_t default_value,
                      const std::string& file);

std::vector<std::string> read_section_names(const std::string& file);
std::vector<std::string> read_key_names(std::string_view section, const std::string& file);
// The section's lines as get_section returns them ("k=v", trimmed).
std::vector<std::string> read_section(std::string_view section, const std::string& file);

bool write_value(std::string_view section, std::string_view key, std::string_view value,
                 const std::string& file);
bool delete_key(std::string_view section, std::string_view key, const std::string& file);
bool delete_section(std::string_view section, const std::string& file);

// The path a file name stands for (a bare name is a file in the suite
// directory); exposed for callers that build messages.
std::string resolve_file(const std::string& file);

// True where these functions are the system's own (Windows): the file format
// is then whatever the system makes of it, and the cache below is not ours.
bool uses_system_engine();

// --- Cache -----------------------------------------------------------------
// Reads are served from parsed copies of the last few files, checked against
// the file on disk at every call. These counters let tests and diagnostics
// see whether a read parsed the file again.
struct CacheStats {
  std::uint64_t hits = 0;   // reads served from a parsed copy
  std::uint64_t loads = 0;  // files read from disk and parsed
};
CacheStats cache_stats();
// Drops every parsed copy (the counters stay). With the system engine there
// are no counters (always zero) and this asks the system to drop its copies.
void clear_cache();

}  // namespace kerfline::platform::ini
