// CDrvItemDlgVar: a variable shown in a device dialog, with its dialog text,
// format, optional limits and condition array.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "driver/drv_item.hpp"

namespace kerfline::driver {

class TextDefinitions;

class CDrvItemDlgVar : public CDrvItem {
 public:
  static const ArchiveClass kClass;
  [[nodiscard]] const ArchiveClass& GetClass() const override { return kClass; }

  void Serialize(ArchiveReader& ar) override;
  void Serialize(ArchiveWriter& ar) override;

  // Sets the value unless an Integer variable is given text with ".,;eE";
  // that refusal is shown in a message box captioned by `caption_format`
  // (text 35589 of the second dictionary: "%s" stands for the description).
  bool SetCheckedValue(const std::string& text, const std::string& caption_format);
  // The same with the caption of the library's dictionary.
  bool SetCheckedValue(const std::string& text);

  struct ExtParms {
    std::uint32_t Flags = 0;
    double Max = 0;
    double Min = 0;
    double Increments = 0;
  };

  std::string DlgText;
  std::string DlgFormat;
  std::unique_ptr<ExtParms> Ext;  // null: no extended parameters
  std::vector<std::string> Conditions;
};

}  // namespace kerfline::driver
