// Opening, storing and releasing the driver behind a host's VMV6DRV record.
#include "frame/driver_handle.hpp"

#include <cstring>
#include <new>

#include "driver/vm6drv.hpp"
#include "frame/library_start.hpp"
#include "support/config_set.hpp"

namespace kerfline::frame {

namespace {

constexpr int32_t kOpened = 1;
constexpr int32_t kBadArgument = -2;
constexpr int32_t kNoMemory = -3;
constexpr int32_t kUnreadable = -4;

bool has_file_name(const VMV6DRV* drv) { return drv != nullptr && drv->szFileName[0] != '\0'; }

void run_config_set_self_test() {
  // Every open exercises the configuration-set reader once; the outcome is
  // not needed here, and a failure of the check must not fail the open.
  try {
    (void)support::config_set_self_test();
  } catch (...) {
  }
}

// InitDrv and InitDrvS: the record changes only on success; the caller
// decides what a failure leaves behind.
int32_t open_into(VMV6DRV* drv) {
  if (!has_file_name(drv)) return kBadArgument;
  run_config_set_self_test();
  std::unique_ptr<driver::CVm6Drv> doc;
  try {
    doc = new_document(drv->nAppMode != 0);
  } catch (const std::bad_alloc&) {
    return kNoMemory;
  }
  if (!doc->LoadDriver(file_name_of(drv))) return kUnreadable;
  doc->PendingState = 0;
  drv->pDrv = doc.release();
  return kOpened;
}

}  // namespace

driver::CVm6Drv* document_of(const VMV6DRV* drv) {
  if (drv == nullptr) return nullptr;
  return static_cast<driver::CVm6Drv*>(drv->pDrv);
}

std::string file_name_of(const VMV6DRV* drv) {
  if (drv == nullptr) return {};
  return {drv->szFileName, ::strnlen(drv->szFileName, sizeof(drv->szFileName))};
}

std::unique_ptr<driver::CVm6Drv> new_document(bool app_mode) {
  auto doc = std::make_unique<driver::CVm6Drv>();
  if (!app_mode) doc->SetDllMode();
  return doc;
}

std::unique_ptr<driver::CVm6Drv> open_document(const std::string& path, bool app_mode) {
  if (path.empty()) return nullptr;
  ensure_resources_loaded();
  run_config_set_self_test();
  auto doc = new_document(app_mode);
  if (!doc->LoadDriver(path)) return nullptr;
  doc->PendingState = 0;
  return doc;
}

}  // namespace kerfline::frame

using kerfline::frame::document_of;

extern "C" {

KERFLINE_API int32_t InitDrv(VMV6DRV* drv) {
  try {
    kerfline::frame::ensure_resources_loaded();
    const int32_t result = kerfline::frame::open_into(drv);
    if (result != kerfline::frame::kOpened && result != kerfline::frame::kBadArgument) {
      std::memset(drv, 0, sizeof(*drv));
    }
    return result;
  } catch (...) {
    if (drv != nullptr) std::memset(drv, 0, sizeof(*drv));
    return kerfline::frame::kUnreadable;
  }
}

KERFLINE_API int32_t InitDrvS(VMV6DRV* drv) {
  try {
    return kerfline::frame::open_into(drv);
  } catch (...) {
    return kerfline::frame::kUnreadable;
  }
}

KERFLINE_API int32_t InitDrvQuick(VMV6DRV* drv) {
  if (drv == nullptr) return kerfline::frame::kBadArgument;
  try {
    drv->pDrv = kerfline::frame::new_document(drv->nAppMode != 0).release();
    return kerfline::frame::kOpened;
  } catch (...) {
    return kerfline::frame::kNoMemory;
  }
}

KERFLINE_API int32_t FreeDrv(VMV6DRV* drv) {
  if (!kerfline::frame::has_file_name(drv) || drv->pDrv == nullptr) return kerfline::frame::kBadArgument;
  delete document_of(drv);
  drv->pDrv = nullptr;
  return 1;
}

KERFLINE_API int32_t StoreDrv(VMV6DRV* drv) {
  if (!kerfline::frame::has_file_name(drv) || drv->pDrv == nullptr) return kerfline::frame::kBadArgument;
  try {
    // A failed write has already been shown to the user by the writer.
    (void)document_of(drv)->StoreDriver(kerfline::frame::file_name_of(drv));
  } catch (...) {
  }
  return 1;
}

KERFLINE_API int32_t SetDllMode(VMV6DRV* drv) {
  kerfline::driver::CVm6Drv* doc = document_of(drv);
  if (doc == nullptr) return kerfline::frame::kBadArgument;
  doc->SetDllMode();
  return 1;
}

}  // extern "C"
