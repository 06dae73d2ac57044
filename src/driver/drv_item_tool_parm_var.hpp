// CDrvItemToolParmVar: a tool parameter variable with its definition text.
#pragma once

#include <string>

#include "driver/drv_item.hpp"

namespace kerfline::driver {

class CDrvItemToolParmVar : public CDrvItem {
 public:
  static const ArchiveClass kClass;
  [[nodiscard]] const ArchiveClass& GetClass() const override { return kClass; }

  void Serialize(ArchiveReader& ar) override;
  void Serialize(ArchiveWriter& ar) override;

  std::string ToolParmText;
};

}  // namespace kerfline::driver
