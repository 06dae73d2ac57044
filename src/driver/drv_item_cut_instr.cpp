#include "driver/drv_item_cut_instr.hpp"

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"
#include "driver/text_definitions.hpp"

namespace kerfline::driver {

const ArchiveClass CDrvItemCutInstr::kClass{"CDrvItemCutInstr", 1, false};

void CDrvItemCutInstr::Serialize(ArchiveReader& ar) {
  // The plain record inside is read under this class's schema (1), so it
  // carries no AuxText of its own; the copy after CutInstrText is the one.
  ReadPlainRecord(ar, ar.schema());
  CutInstrText = ar.read_string();
  AuxText = ar.read_string();
  if (DictId != 0 && ar.definitions != nullptr) ApplyDefinition(*ar.definitions, DictId);
  Refresh();
  Type = type_code::kCutInstr;
}

void CDrvItemCutInstr::Serialize(ArchiveWriter& ar) {
  Type = type_code::kCutInstr;
  WritePlainRecord(ar);
  ar.write_string(CutInstrText);
  ar.write_string(AuxText);
}

void CDrvItemCutInstr::Refresh() {
  code_.clear();
  arguments_.clear();
  const std::string value = GetValue();
  if (value.size() < 2 || value.front() != '(' || value.back() != ')') return;
  const std::size_t colon = value.find(':');
  if (colon == std::string::npos) return;
  code_ = value.substr(1, colon - 1);
  arguments_ = value.substr(colon + 1, value.size() - colon - 2);
}

}  // namespace kerfline::driver
