#include "devconfig/spool_dir.hpp"

#include "devconfig/spool_paths.hpp"
#include "platform/codepage.hpp"
#include "platform/directories.hpp"
#include "platform/host_hooks.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace kerfline::devconfig {

namespace ini = platform::ini;

bool create_spool_layout(const std::string& spool) {
  const std::string parent = directory_part(spool);
  if (!parent.empty() && !platform::make_directory(parent.substr(0, parent.size() - 1))) return false;
  if (!platform::make_directory(spool)) return false;
  const bool saved = platform::make_directory(saved_dir_of(spool)).ok();
  const bool index = platform::create_empty_file(index_file_of(spool)).ok();
  return saved && index;
}

void remove_spool_layout(const std::string& spool) {
  (void)platform::remove_directory_files(spool, {"saved"});
}

std::string setup_index_file(std::string_view base_dir, std::string_view name) {
  std::string leaf = "SL_";
  for (const char c : name) leaf += c == ':' ? '_' : c;
  const std::string dir =
      platform::join_path(platform::join_path(base_dir, "SPOOLER"), platform::cp1252::to_upper(leaf));
  return index_file_of(dir);
}

std::string device_list_file() { return platform::join_path(platform::home_dir(), "plotman.ini"); }

void remove_device(const std::string& name) {
  remove_spool_layout(spool_dir(platform::home_dir(), name));
  const std::string file = device_list_file();
  ini::delete_key("DeviceNames", name, file);
  ini::delete_section(name, file);
}

void delete_device(const std::string& name) {
  remove_device(name);
  announce_device_change();
}

void announce_device_change() { platform::host::broadcast("Umsg_StartDeviceDlg", 0, 0, false); }

}  // namespace kerfline::devconfig
