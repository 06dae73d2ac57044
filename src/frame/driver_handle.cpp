#include "frame/driver_handle.hpp"

#include "driver/vm6drv.hpp"

namespace kerfline::frame {

driver::CVm6Drv* document_of(const VMV6DRV* drv) {
  if (drv == nullptr) return nullptr;
  return static_cast<driver::CVm6Drv*>(drv->pDrv);
}

}  // namespace kerfline::frame
