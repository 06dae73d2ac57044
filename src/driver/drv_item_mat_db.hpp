// CDrvItemMatDB: the material database item. Its own loading of materials
// lies outside the driver file; the file carries its item fields.
#pragma once

#include "driver/drv_item.hpp"

namespace kerfline::driver {

class CDrvItemMatDB : public CDrvItem {
 public:
  static const ArchiveClass kClass;
  [[nodiscard]] const ArchiveClass& GetClass() const override { return kClass; }

  void Serialize(ArchiveReader& ar) override;
  void Serialize(ArchiveWriter& ar) override;

  [[nodiscard]] bool IsLoaded() const { return loaded_; }

 private:
  bool loaded_ = false;
};

}  // namespace kerfline::driver
