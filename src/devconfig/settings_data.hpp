// The private state of the device-settings classes. Modules that extend a
// class (the remote link adds its socket to the TCP/IP client) include this
// header; hosts never see it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kerfline/device_settings.hpp"

struct CBaseDeviceSettings::Data {
  std::string write_to;
  std::int32_t device_type = DEVTYPE_BASE;
  std::string device_name;
  std::string device_info;
  std::string dir;
  std::string read_from;
  std::string ini;
  std::string index_file;
  std::string wav;
  std::vector<std::string> suffixes;
  std::int32_t server = 0;
  std::int32_t ask = 0;
  std::int32_t active = 1;
  std::int32_t play_wav = 1;
  std::int32_t plot_to_file = 0;
  std::int32_t def_count = 1;
  std::int32_t max_file_count = 5;
  // Backing store of GetJobSuffix(): the joined list.
  std::string joined_suffixes;
};

struct CDriverDeviceSettings::Data {
  std::string drv_path;
  std::string drv_file_name;
  std::string drv_name;
};

// Four address bytes with their dotted text, kept in step.
struct IpAddress {
  unsigned char bytes[4] = {0, 0, 0, 0};
  std::string text = "0.0.0.0";
};

struct CCutterDeviceSettings::Data {
  IpAddress address;
  std::int32_t tcpip_port = 0;
  std::int32_t spooler = 0;
  std::uint32_t job_nr = 0;
  std::string usb_device_name;
  std::int32_t port_type = PORTTYPE_PATH;
  std::int32_t server_port = 1;
};

struct CRemoteDeviceSettings::Data {
  std::string remote_index_file;
  std::string remote_ini;
  std::string server_device_name;
  std::string server_drv_file_name;
  std::string server_drv_info;
};

struct CTcpIpClientDeviceSettings::Data {
  std::string server_device_name;
  IpAddress address;
  std::int32_t tcpip_port = 0;
  std::int32_t tcpip_type = TCPIPTYPE_PLOTMAN;
  std::string server_drv_file_name;
  std::string server_drv_info;
  std::string host_name;
  // The remote link's connection state; the module that owns the link puts
  // its own object here (released with the settings).
  std::shared_ptr<void> link;
};

struct CHFDeviceSettings::Data {
  std::string start_app_tmpl;
  std::int32_t locale_hf = 0;
  std::int32_t start_app = 0;
  std::int32_t port_type = PORTTYPE_NONE;
};

struct CExtHFDeviceSettings::Data {
  IpAddress address;
  std::int32_t tcpip_port = 0;
  std::string usb_device_name;
  std::string usb_friendly_name;
  std::string file_mask;
  std::int32_t rip = 0;
  std::string last_dir;
  std::uint32_t alternate_bufsize = 0;
  std::int32_t rip_min_percent = 5;
};

struct CLocaleDeviceSettings::Data {
  std::int32_t port_type = PORTTYPE_NONE;
  std::string last_dir;
};

namespace kerfline::devconfig {

// "a.b.c.d" into the address; anything else gives 0.0.0.0 (text included).
void parse_address(const std::string& text, IpAddress& out);

// Runs fn, swallowing any exception: members of exported classes never
// throw, and one that fails leaves its object as far as it got.
template <typename Fn>
void guarded(Fn&& fn) noexcept {
  try {
    fn();
  } catch (...) {
  }
}

// The text of a possibly null C string.
inline std::string text_of(const char* sz) { return sz != nullptr ? std::string(sz) : std::string(); }

}  // namespace kerfline::devconfig
