#include "driver/drv_item_mat_db.hpp"

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"

namespace kerfline::driver {

const ArchiveClass CDrvItemMatDB::kClass{"CDrvItemMatDB", 2, true};

void CDrvItemMatDB::Serialize(ArchiveReader& ar) {
  Value = ar.read_string();
  Attributes = ar.read_dword();
  Linked = ar.read_dword();
  DictId = ar.read_dword();
  if (DictId == 0 && ar.schema() >= 2) AuxText = ar.read_string();
  Name = ar.read_string();
  ValueIndex = ar.read_long();
  Type = ar.read_dword();
  Description = ar.read_string();
  UpdateAtEnd();
  loaded_ = true;
}

void CDrvItemMatDB::Serialize(ArchiveWriter& ar) {
  ar.write_string(Value);
  ar.write_dword(Attributes);
  ar.write_dword(Linked);
  ar.write_dword(DictId);
  if (DictId == 0) ar.write_string(AuxText);
  ar.write_string(Name);
  ar.write_long(ValueIndex);
  ar.write_dword(Type);
  ar.write_string(Description);
}

}  // namespace kerfline::driver
