#include "devconfig/spool_paths.hpp"

#include <charconv>
#include <vector>

#include "platform/codepage.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace kerfline::devconfig {

namespace ini = platform::ini;

std::string safe_device_name(std::string_view name) {
  std::string out;
  out.reserve(name.size() + 8);
  for (const char c : name) {
    switch (c) {
      case ':':
      case '/':
      case '\\':
      case '[':
      case ']':
      case '.':
        out += '_';
        break;
      default: {
        const auto upper = static_cast<char>(platform::cp1252::to_upper(static_cast<unsigned char>(c)));
        // The other programs of the suite spell the umlauts out in directory names.
        if (upper == '\xC4') {
          out += "AE";
        } else if (upper == '\xDC') {
          out += "UE";
        } else if (upper == '\xD6') {
          out += "OE";
        } else {
          out += upper;
        }
      }
    }
  }
  return out;
}

std::string spool_dir(std::string_view base_dir, std::string_view device_name) {
  return platform::join_path(platform::join_path(base_dir, "SPOOLER"), "SL_" + safe_device_name(device_name));
}

std::string index_file_of(std::string_view spool) { return platform::join_path(spool, "index.hot"); }

std::string saved_dir_of(std::string_view spool) { return platform::join_path(spool, "saved"); }

std::string directory_part(std::string_view path) {
  const auto cut = path.find_last_of("/\\");
  return cut == std::string_view::npos ? std::string() : std::string(path.substr(0, cut + 1));
}

std::string file_part(std::string_view path) {
  const auto cut = path.find_last_of("/\\");
  return std::string(cut == std::string_view::npos ? path : path.substr(cut + 1));
}

std::string ini_directory(const std::string& ini_file) {
  std::string dir = directory_part(ini::resolve_file(ini_file));
  return dir.empty() ? platform::home_dir() : dir;
}

std::string read_text(std::string_view section, std::string_view key, std::string_view default_value,
                      const std::string& file, std::uint32_t buffer_size) {
  std::vector<char> buffer(buffer_size, '\0');
  const std::string s(section);
  const std::string k(key);
  const std::string d(default_value);
  const std::uint32_t n = ini::get_string(s.c_str(), k.c_str(), d.c_str(), buffer.data(), buffer_size, file);
  return std::string(buffer.data(), n);
}

std::string flag_text(std::int32_t value) { return value != 0 ? "1" : "0"; }

std::string int_text(std::int32_t value) { return std::to_string(value); }

std::string uint_text(std::uint32_t value) { return std::to_string(value); }

std::uint32_t leading_uint(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  std::uint32_t value = 0;
  std::from_chars(text.data() + i, text.data() + text.size(), value);
  return value;
}

std::int32_t active_job_count(const std::string& index_file) {
  return ini::read_int("ActiveJobs", "Count", 0, index_file);
}

}  // namespace kerfline::devconfig
