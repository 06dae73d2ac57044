// Opening a device: a port or file path, the USB pipes (one or two) or the
// Graphtec library, with the retry prompts users know.
#include <filesystem>

#include "device/port_access.hpp"
#include "driver/text_dictionary.hpp"
#include "platform/dynlib.hpp"
#include "platform/host_hooks.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"
#include "platform/usb_devices.hpp"

namespace kerfline::device {
namespace {

namespace port = platform::port;

constexpr int kSilentAttempts = 10;
constexpr std::uint32_t kInPipeId = 9104;
constexpr std::uint32_t kOutPipeId = 9112;
constexpr std::uint32_t kDefaultOffset = 3;  // a variable's default text follows its name

bool ask_retry(const std::string& text, const std::string& title) {
  return platform::host::message_box(text, title, KERFLINE_MB_YESNO) == KERFLINE_IDYES;
}

// The "ports" entry of the system profile for an output path, at most 29
// characters as the 30-byte buffer held.
std::string port_parameters(const std::string& name_with_colon) {
  std::string text = platform::ini::read_string("ports", name_with_colon, "FILE", "win.ini");
  if (text.size() > 29) text.resize(29);
  return text;
}

void serial_setup(Handle h, const std::string& write_to) {
  std::string name = write_to;
  if (name.empty() || name.back() != ':') name += ':';
  port::setup_serial(h, name, port_parameters(name));
}

std::int32_t fail(std::int32_t* error, std::int32_t code) {
  if (error != nullptr) *error = code;
  return -1;
}

// A pipe's name from the driver (%USBIn% / %USBOut%), else its default.
std::string pipe_name(const VMV6DRV* drv, std::uint32_t id) {
  const std::string variable = driver::dictionary_text(id);
  if (auto value = driver_variable(drv, variable)) return *value;
  return driver::dictionary_text(id + kDefaultOffset);
}

std::string rewritten(std::string path) {
  auto replace = [&path](const std::string& from, const std::string& to) {
    for (std::size_t at = path.find(from); at != std::string::npos; at = path.find(from, at + to.size())) {
      path.replace(at, from.size(), to);
    }
  };
  replace("DosDevices", "\\.");
  replace("\\??\\", "\\\\.\\");
  return path;
}

// A character device is the device itself; a directory holds the pipes.
std::string pipe_path(const std::string& device_path, const std::string& pipe) {
  std::error_code ec;
  if (std::filesystem::is_character_file(device_path, ec)) return device_path;
  std::string path = device_path + platform::path_separator();
  if (!pipe.empty()) path += pipe;
  return rewritten(path);
}

std::string current_usb_path(const PortSettings& settings) {
  std::vector<UsbEntry> present;
  for (const auto& c : platform::usb::enumerate()) present.push_back({c.name, c.path});
  return resolve_usb_path(present, settings.usb_device_name, settings.usb_device_path);
}

// Opens until it works, asking after every ten silent attempts; false when
// the user declined.
struct RetryWaits {
  std::initializer_list<std::uint32_t> waits;
  bool pump_each = true;
  bool pump_after_count = false;
};

template <typename OpenFn, typename PromptFn>
bool open_with_retries(OpenFn open, int& counter, RetryWaits plan, PromptFn prompt) {
  for (;;) {
    if (open()) {
      counter = 0;
      return true;
    }
    if (counter < kSilentAttempts) {
      for (std::uint32_t ms : plan.waits) {
        wait_ms(ms);
        if (plan.pump_each) platform::host::pump_messages();
      }
      ++counter;
      if (plan.pump_after_count) platform::host::pump_messages();
      continue;
    }
    counter = 0;
    if (!prompt()) return false;
  }
}

std::int32_t open_graphtec(std::int32_t* error, Handle* read_handle, Handle* write_handle) {
  *read_handle = port::kInvalidHandle;
  *write_handle = port::kInvalidHandle;
  auto library = platform::DynamicLibrary::open("GITKUSBP.DLL");
  if (!library) return -1;
  using OpenUsb = std::intptr_t(int, int, int);
  auto* open_usb = library->function<OpenUsb>("GITK_OpenUsb");
  if (open_usb == nullptr) return -1;
  LinkState& state = link_state();
  auto open_side = [&](int side, Handle* out) {
    return [=] {
      *out = open_usb(0, side, 0);
      return port::is_open_handle(*out);
    };
  };
  auto prompt = [](const char* text) {
    return [=] { return ask_retry(text, "Error from CreateFile: Retry ?"); };
  };
  if (!open_with_retries(open_side(0, write_handle), state.graphtec_write_retries, {{2000}, false, false},
                         prompt("Error (1) Kerfline.GitkUSB (Graphtec)"))) {
    return fail(error, -3);
  }
  if (!open_with_retries(open_side(1, read_handle), state.graphtec_read_retries, {{2000}, false, false},
                         prompt("Error (2) Kerfline.GitkUSB (Graphtec)"))) {
    port::close(*write_handle);
    *write_handle = port::kInvalidHandle;
    return fail(error, -4);
  }
  // The library stays loaded: the handles may depend on it.
  static std::vector<platform::DynamicLibrary> kept;
  kept.push_back(std::move(*library));
  return 0;
}

std::int32_t open_usb_pipes(const VMV6DRV* drv, const PortSettings& settings, std::int32_t* error,
                            Handle* read_handle, Handle* write_handle) {
  LinkState& state = link_state();
  const std::string device_path = current_usb_path(settings);
  auto opener = [](const std::string& path, port::Access access, Handle* out, int* last_error) {
    return [=] {
      auto opened = port::open_existing(path, access);
      *out = opened ? opened.value() : port::kInvalidHandle;
      if (!opened) *last_error = opened.error().code;
      return opened.ok();
    };
  };
  int last_error = 0;
  if (state.single_handle_request) {
    const std::string path = pipe_path(device_path, pipe_name(drv, kInPipeId));
    Handle h = port::kInvalidHandle;
    if (!open_with_retries(opener(path, port::Access::kReadWrite, &h, &last_error), state.single_retries,
                           {{2000, 1000, 1000}, true, true},
                           [&] { return ask_retry(path, "Error from CreateFile(RW): Retry ?"); })) {
      return fail(error, -4);
    }
    *read_handle = *write_handle = h;
    state.single_handle_request = false;
    state.pipe_flag = true;
    return 0;
  }
  const std::string in_path = pipe_path(device_path, pipe_name(drv, kInPipeId));
  const std::string out_path = pipe_path(device_path, pipe_name(drv, kOutPipeId));
  auto title = [&](const char* side) {
    return "Error from CreateFile(" + std::string(side) + ", ErrorCode= " + std::to_string(last_error) +
           " ): Retry ?";
  };
  Handle out = port::kInvalidHandle;
  if (!open_with_retries(opener(out_path, port::Access::kWrite, &out, &last_error), state.out_retries,
                         {{2000}, true, false}, [&] { return ask_retry(out_path, title("Out")); })) {
    return fail(error, -3);
  }
  Handle in = port::kInvalidHandle;
  if (!open_with_retries(opener(in_path, port::Access::kRead, &in, &last_error), state.in_retries,
                         {{2000, 1000, 1000}, true, false},
                         [&] { return ask_retry(in_path, title("In")); })) {
    port::close(out);
    return fail(error, -4);
  }
  *write_handle = out;
  *read_handle = in;
  state.pipe_flag = true;
  return 0;
}

}  // namespace

std::int32_t OpenDevicePort(const VMV6DRV* drv, const char* device, std::int32_t* error, Handle* read_handle,
                            Handle* write_handle) {
  link_state().pipe_flag = false;
  if (device == nullptr || *device == '\0') return fail(error, -7);
  const PortSettings settings = read_port_settings(device);
  const std::int32_t type = settings.port_type;
  if (type == 1 || type == 3 || type == 5) return fail(error, -6);
  if (type < 1 || type > 5) return 0;
  if (type == 2) {
    auto opened = port::open_existing(port::map_port_name(settings.write_to), port::Access::kReadWrite);
    if (!opened) return fail(error, -5);
    serial_setup(opened.value(), settings.write_to);
    *read_handle = *write_handle = opened.value();
    return 0;
  }
  if (link_state().graphtec_request) return open_graphtec(error, read_handle, write_handle);
  return open_usb_pipes(drv, settings, error, read_handle, write_handle);
}

}  // namespace kerfline::device
