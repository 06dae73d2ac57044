// Opening, storing and releasing the driver behind a host's VMV6DRV record.
#include "frame/driver_handle.hpp"

#include <cstring>
#include <new>

#include "driver/vm6drv.hpp"
#include "frame/library_start.hpp"
#include "platform/c_boundary.hpp"
#include "support/config_set.hpp"

namespace kerfline::frame {

namespace {

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
// decides what a failure leaves behind. Throws bad_alloc.
int32_t open_into(VMV6DRV* drv) {
  if (!has_file_name(drv)) return KERFLINE_BAD_ARGUMENT;
  run_config_set_self_test();
  std::unique_ptr<driver::CVm6Drv> doc = new_document(drv->nAppMode != 0);
  if (!doc->LoadDriver(file_name_of(drv))) return KERFLINE_FILE_UNREADABLE;
  doc->PendingState = 0;
  drv->pDrv = doc.release();
  return KERFLINE_SUCCESS;
}

}  // namespace

driver::CVm6Drv* document_of(const VMV6DRV* drv) {
  if (drv == nullptr) return nullptr;
  return driver::CVm6Drv::Live(drv->pDrv);
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
using kerfline::platform::guarded;
using kerfline::platform::guarded_as;

extern "C" {

KERFLINE_API int32_t InitDrv(VMV6DRV* drv) noexcept {
  const int32_t result = guarded(KERFLINE_FILE_UNREADABLE, [drv] {
    kerfline::frame::ensure_resources_loaded();
    return kerfline::frame::open_into(drv);
  });
  if (drv != nullptr && result != KERFLINE_SUCCESS && result != KERFLINE_BAD_ARGUMENT) {
    std::memset(drv, 0, sizeof(*drv));
  }
  return result;
}

KERFLINE_API int32_t InitDrvS(VMV6DRV* drv) noexcept {
  return guarded(KERFLINE_FILE_UNREADABLE, [drv] { return kerfline::frame::open_into(drv); });
}

KERFLINE_API int32_t InitDrvQuick(VMV6DRV* drv) noexcept {
  if (drv == nullptr) return KERFLINE_BAD_ARGUMENT;
  return guarded_as(KERFLINE_OUT_OF_MEMORY, [drv] {
    drv->pDrv = kerfline::frame::new_document(drv->nAppMode != 0).release();
    return KERFLINE_SUCCESS;
  });
}

KERFLINE_API int32_t FreeDrv(VMV6DRV* drv) noexcept {
  kerfline::driver::CVm6Drv* doc = document_of(drv);
  if (!kerfline::frame::has_file_name(drv) || doc == nullptr) return KERFLINE_BAD_ARGUMENT;
  delete doc;
  drv->pDrv = nullptr;
  return KERFLINE_SUCCESS;
}

KERFLINE_API int32_t StoreDrv(VMV6DRV* drv) noexcept {
  kerfline::driver::CVm6Drv* doc = document_of(drv);
  if (!kerfline::frame::has_file_name(drv) || doc == nullptr) return KERFLINE_BAD_ARGUMENT;
  // A failed write has already been shown to the user by the writer.
  return guarded_as(KERFLINE_SUCCESS, [drv, doc] {
    (void)doc->StoreDriver(kerfline::frame::file_name_of(drv));
    return KERFLINE_SUCCESS;
  });
}

KERFLINE_API int32_t SetDllMode(VMV6DRV* drv) noexcept {
  kerfline::driver::CVm6Drv* doc = document_of(drv);
  if (doc == nullptr) return KERFLINE_BAD_ARGUMENT;
  doc->SetDllMode();
  return KERFLINE_SUCCESS;
}

}  // extern "C"
