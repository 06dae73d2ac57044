// CDrvItemCutInstr: a special cut instruction such as "(AL:10e6)". Its
// derived state is the instruction's code and its argument text.
#pragma once

#include <string>

#include "driver/drv_item.hpp"

namespace kerfline::driver {

class CDrvItemCutInstr : public CDrvItem {
 public:
  CDrvItemCutInstr() { Type = type_code::kCutInstr; }

  static const ArchiveClass kClass;
  [[nodiscard]] const ArchiveClass& GetClass() const override { return kClass; }

  void Serialize(ArchiveReader& ar) override;
  void Serialize(ArchiveWriter& ar) override;

  // Splits the value "(CODE:arguments)" into code and arguments; a value of
  // another form leaves both empty.
  void Refresh();
  [[nodiscard]] const std::string& Code() const { return code_; }
  [[nodiscard]] const std::string& Arguments() const { return arguments_; }

  std::string CutInstrText;

 private:
  std::string code_;
  std::string arguments_;
};

}  // namespace kerfline::driver
