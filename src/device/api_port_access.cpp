// The exported port-access functions. Handles cross the boundary as void*:
// the HANDLE on Windows, the descriptor on POSIX; nothing is thrown out.
#include "device/port_access.hpp"
#include "platform/c_boundary.hpp"
#include "platform/host_hooks.hpp"

namespace {

namespace port = kerfline::platform::port;
using kerfline::device::Handle;

Handle from_void(void* h) { return reinterpret_cast<Handle>(h); }  // NOLINT
void* to_void(Handle h) { return reinterpret_cast<void*>(h); }     // NOLINT

// A write that keeps failing is given up after this many attempts that moved
// nothing, so a dead device cannot hold the caller for ever.
constexpr int kStalledWrites = 3;

}  // namespace

extern "C" {

KERFLINE_API int32_t ConnectToDevice(VMV6DRV* drv, const char* device, void** readHandle,
                                     void** writeHandle) noexcept {
  kerfline::platform::guarded_void([drv, device, readHandle, writeHandle] {
    Handle read = readHandle != nullptr ? from_void(*readHandle) : port::kInvalidHandle;
    Handle write = writeHandle != nullptr ? from_void(*writeHandle) : port::kInvalidHandle;
    std::int32_t error = 1;
    // The open changes the handles only where it opened something (the
    // Graphtec road marks both invalid first), as with the host's pointers.
    kerfline::device::OpenDevicePort(drv, device, &error, &read, &write);
    if (readHandle != nullptr) *readHandle = to_void(read);
    if (writeHandle != nullptr) *writeHandle = to_void(write);
  });
  return 1;
}

KERFLINE_API int32_t WriteToDevice(void** handle, const void* bytes, uint32_t length) noexcept {
  if (handle == nullptr || bytes == nullptr || length == 0) return 1;
  const Handle h = from_void(*handle);
  if (!port::is_open_handle(h)) return 1;
  const auto* data = static_cast<const unsigned char*>(bytes);
  std::uint32_t sent = 0;
  int stalled = 0;
  while (sent < length && stalled < kStalledWrites) {
    const port::IoResult r = port::write(h, data + sent, length - sent);
    sent += r.count;
    stalled = r.count == 0 ? stalled + 1 : 0;
  }
  return 1;
}

KERFLINE_API int32_t CloseDevice(void** readHandle, void** writeHandle) noexcept {
  Handle read = readHandle != nullptr ? from_void(*readHandle) : port::kInvalidHandle;
  Handle write = writeHandle != nullptr ? from_void(*writeHandle) : port::kInvalidHandle;
  kerfline::device::close_pair(read, write);
  return 1;
}

KERFLINE_API int32_t DeviceWriteString(VMV6DRV* drv, const char* device, const char* text) noexcept {
  return kerfline::platform::guarded_as(0, [drv, device, text] {
    using namespace kerfline::device;
    kerfline::platform::host::WaitCursor cursor;
    std::string usb_name;
    const EDeviceLink link = DecideDeviceLink(drv, device != nullptr ? device : "", usb_name);
    LinkState& state = link_state();
    if (link == LinkGraphtecUsb) {
      state.single_handle_request = true;
      state.graphtec_request = true;
    } else if (link == LinkUsbPipeSingle) {
      state.single_handle_request = true;
      state.no_flush = true;
    }
    Handle read = port::kNullHandle;
    Handle write = port::kNullHandle;
    std::int32_t error = 1;
    if (OpenDevicePort(drv, device, &error, &read, &write) == -1) return 0;
    port::flush_buffers(write);
    port::flush_buffers(read);
    const std::string bytes = text != nullptr ? text : "";
    // The null handle of a port type with nothing to open is no descriptor:
    // this write fails instead of reaching descriptor 0.
    const port::IoResult r = port::write(write, bytes.data(), bytes.size());
    close_pair(read, write);
    return r.ok ? 1 : 0;
  });
}

}  // extern "C"
