// The link between a host's VMV6DRV record and the driver document it opened.
// Every frame export that takes a VMV6DRV* reaches the document through here.
#pragma once

#include "kerfline/kerfline.h"

namespace kerfline::driver {
class CVm6Drv;
}

namespace kerfline::frame {

// The open document of the record; null for a null record or a record that is
// not open (pDrv null).
driver::CVm6Drv* document_of(const VMV6DRV* drv);

}  // namespace kerfline::frame
