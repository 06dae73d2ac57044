#include "driver/drv_item_tool_parm_var.hpp"

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"

namespace kerfline::driver {

const ArchiveClass CDrvItemToolParmVar::kClass{"CDrvItemToolParmVar", 1, false};

void CDrvItemToolParmVar::Serialize(ArchiveReader& ar) {
  ReadGroupStyleHead(ar);
  ToolParmText = ar.read_string();
}

void CDrvItemToolParmVar::Serialize(ArchiveWriter& ar) {
  WriteGroupStyleHead(ar);
  ar.write_string(ToolParmText);
}

}  // namespace kerfline::driver
