#include "driver/drv_item_dlg_var.hpp"

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"
#include "driver/text_dictionary.hpp"
#include "platform/host_hooks.hpp"

namespace kerfline::driver {

const ArchiveClass CDrvItemDlgVar::kClass{"CDrvItemDlgVar", 3, true};

void CDrvItemDlgVar::Serialize(ArchiveReader& ar) {
  ReadGroupStyleHead(ar);
  DlgText = ar.read_string();
  DlgFormat = ar.read_string();
  if (ar.read_dword() != 0) {
    // The file order differs from the order in memory.
    auto ext = std::make_unique<ExtParms>();
    ext->Increments = ar.read_double();
    ext->Max = ar.read_double();
    ext->Min = ar.read_double();
    ext->Flags = ar.read_dword();
    Ext = std::move(ext);
  } else {
    Ext.reset();
  }
  const std::uint16_t schema = ar.schema();
  if (schema >= 2) AuxText = ar.read_string();
  Conditions.clear();
  if (schema >= 3) {
    const std::uint32_t count = ar.read_dword();
    if (count > ar.remaining()) throw ArchiveError("condition count exceeds the file");
    for (std::uint32_t i = 0; i < count; ++i) Conditions.push_back(ar.read_string());
  }
}

void CDrvItemDlgVar::Serialize(ArchiveWriter& ar) {
  WriteGroupStyleHead(ar);
  ar.write_string(DlgText);
  ar.write_string(DlgFormat);
  ar.write_dword(Ext ? 1 : 0);
  if (Ext) {
    ar.write_double(Ext->Increments);
    ar.write_double(Ext->Max);
    ar.write_double(Ext->Min);
    ar.write_dword(Ext->Flags);
  }
  ar.write_string(AuxText);
  ar.write_dword(static_cast<std::uint32_t>(Conditions.size()));
  for (const std::string& c : Conditions) ar.write_string(c);
}

bool CDrvItemDlgVar::SetCheckedValue(const std::string& text, const std::string& caption_format) {
  if (Type == type_code::kInteger && text.find_first_of(".,;eE") != std::string::npos) {
    std::string caption = caption_format;
    if (const std::size_t at = caption.find("%s"); at != std::string::npos) {
      caption.replace(at, 2, Description);
    }
    platform::host::message_box(text + " (Integer Error)", caption, KERFLINE_MB_OK | KERFLINE_MB_ICONWARNING);
    return false;
  }
  SetValue(text);
  return true;
}

bool CDrvItemDlgVar::SetCheckedValue(const std::string& text) {
  if (Type != type_code::kInteger) return SetCheckedValue(text, std::string());
  return SetCheckedValue(text, kerfline_dictionary_text(kIntegerErrorCaptionId));
}

}  // namespace kerfline::driver
