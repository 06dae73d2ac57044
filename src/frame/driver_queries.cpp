// Queries that open a driver file only for the call: its name and its class.
#include <cstring>
#include <string>

#include "driver/vm6drv.hpp"
#include "frame/driver_flags.hpp"
#include "frame/driver_handle.hpp"
#include "frame/library_start.hpp"
#include "kerfline/kerfline.h"
#include "platform/binary_file.hpp"
#include "platform/c_boundary.hpp"

namespace {

// The name at the start of a fixed-layout file; "" when it cannot be read.
std::string fixed_layout_name(const std::string& path) {
  auto head = kerfline::platform::read_binary_file_head(path, kerfline::frame::kFixedLayoutBytes);
  if (!head) return {};
  return head->substr(0, head->find('\0'));
}

// The driver name after the file header; "" when it cannot be read. It is
// handed out as a C string, so it ends at a zero byte the file may hold.
std::string stored_name(const std::string& path) {
  std::string title;
  if (!kerfline::driver::CVm6Drv::ReadDriverTitle(path, title)) return {};
  return title.substr(0, title.find('\0'));
}

}  // namespace

extern "C" {

KERFLINE_API int32_t GetDrvName(const char* path, char* buffer, int32_t size) noexcept {
  if (path == nullptr) return 0;
  return kerfline::platform::guarded_as(0, [path, buffer, size] {
    const std::string name =
        kerfline::frame::is_fixed_layout_path(path) ? fixed_layout_name(path) : stored_name(path);
    const auto needed = static_cast<int64_t>(name.size()) + 1;
    // One byte to spare is required, so a buffer of exactly length + 1 is
    // too small, whichever format the name came from.
    if (buffer == nullptr || size <= needed) return static_cast<int32_t>(-needed);
    std::memcpy(buffer, name.c_str(), name.size() + 1);
    return static_cast<int32_t>(name.size());
  });
}

KERFLINE_API int32_t GetDrvClass2(VMV6DRV* drv, char* buffer, uint32_t size) noexcept {
  kerfline::driver::CVm6Drv* doc = kerfline::frame::document_of(drv);
  if (doc == nullptr) return KERFLINE_BAD_ARGUMENT;
  return kerfline::platform::guarded_as(0, [doc, buffer, size] {
    const kerfline::driver::CDrvItem* item = doc->FindItem(KERFLINE_DRIVER_CLASS_ITEM);
    if (item == nullptr) return 0;
    const std::string text = item->GetValue();
    if (buffer != nullptr && text.size() < size) std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<int32_t>(text.size());
  });
}

KERFLINE_API int32_t GetDrvClass(const char* path, char* buffer, uint32_t size) noexcept {
  // Hosts have always received 1 when the driver could not be opened.
  constexpr int32_t kNotOpened = 1;
  return kerfline::platform::guarded_as(kNotOpened, [path, buffer, size] {
    kerfline::frame::ensure_translation_started();
    if (path == nullptr) return kNotOpened;
    const auto doc = kerfline::frame::open_document(path, false);
    if (doc == nullptr) return kNotOpened;
    VMV6DRV local{};
    local.pDrv = doc.get();
    return GetDrvClass2(&local, buffer, size);
  });
}

}  // extern "C"
