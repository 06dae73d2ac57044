// The link between a host's VMV6DRV record and the driver document it opened.
// Every frame export that takes a VMV6DRV* reaches the document through here.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kerfline/kerfline.h"

namespace kerfline::driver {
class CVm6Drv;
}

namespace kerfline::frame {

// The open document of the record; null for a null record or a record that is
// not open: pDrv null, or naming no live document (a copy of a freed record, a
// forged pointer). pDrv is compared with the live documents, never followed.
driver::CVm6Drv* document_of(const VMV6DRV* drv);

// The record's file name as a string (it need not be terminated within its
// 260 bytes); "" for a null record.
std::string file_name_of(const VMV6DRV* drv);

// A new, empty document; in library mode unless app_mode. Throws bad_alloc.
std::unique_ptr<driver::CVm6Drv> new_document(bool app_mode);

// Opens the driver at path the way InitDrv does (the open failure is shown
// to the user); null when it cannot be opened or read.
std::unique_ptr<driver::CVm6Drv> open_document(const std::string& path, bool app_mode);

}  // namespace kerfline::frame
