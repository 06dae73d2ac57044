#include "driver/drv_item.hpp"

#include <charconv>
#include <cstdio>

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"
#include "driver/text_definitions.hpp"
#include "platform/text_trim.hpp"

namespace kerfline::driver {

const ArchiveClass CDrvItem::kClass{"CDrvItem", 2, true};

void trim_right(std::string& s) { s.resize(platform::trim_right(s).size()); }

void CDrvItem::UpdateAtEnd() {
  AtEnd = ValueIndex == -1 ||
          static_cast<std::int64_t>(ValueIndex) >= static_cast<std::int64_t>(Value.size()) - 1;
}

void CDrvItem::ApplyDefinition(const TextDefinitions& texts, std::uint32_t id) {
  ItemDefinition def = texts.definition(id);
  Name = std::move(def.name);
  Description = std::move(def.description);
  if (def.type) Type = *def.type;
}

void CDrvItem::Serialize(ArchiveReader& ar) { ReadPlainRecord(ar, ar.schema()); }
void CDrvItem::Serialize(ArchiveWriter& ar) { WritePlainRecord(ar); }

void CDrvItem::ReadPlainRecord(ArchiveReader& ar, std::uint16_t schema) {
  Value = ar.read_string();
  Attributes = ar.read_dword();
  Linked = ar.read_dword();
  DictId = ar.read_dword();
  if (DictId == 0) {
    Name = ar.read_string();
    ValueIndex = ar.read_long();
    Type = ar.read_dword();
    Description = ar.read_string();
    if (schema >= 2) AuxText = ar.read_string();
  } else if (Linked != 0) {
    Name = ar.read_string();
  } else if (ar.definitions != nullptr) {
    ApplyDefinition(*ar.definitions, DictId);
  }
  UpdateAtEnd();
}

void CDrvItem::WritePlainRecord(ArchiveWriter& ar) {
  ar.write_string(Value);
  ar.write_dword(Attributes);
  ar.write_dword(Linked);
  ar.write_dword(DictId);
  if (DictId == 0) {
    ar.write_string(Name);
    ar.write_long(ValueIndex);
    ar.write_dword(Type);
    ar.write_string(Description);
    ar.write_string(AuxText);
  } else if (Linked != 0) {
    ar.write_string(Name);
  }
}

void CDrvItem::ReadGroupStyleHead(ArchiveReader& ar) {
  Name = ar.read_string();
  trim_right(Name);
  Value = ar.read_string();
  Description = ar.read_string();
  trim_right(Description);
  Attributes = ar.read_dword();
  Type = ar.read_dword();
  Linked = ar.read_dword();
  DictId = ar.read_dword();
  ValueIndex = ar.read_long();
  UpdateAtEnd();
}

void CDrvItem::WriteGroupStyleHead(ArchiveWriter& ar) {
  trim_right(Name);
  trim_right(Description);
  ar.write_string(Name);
  ar.write_string(Value);
  ar.write_string(Description);
  ar.write_dword(Attributes);
  ar.write_dword(Type);
  ar.write_dword(Linked);
  ar.write_dword(DictId);
  ar.write_long(ValueIndex);
}

const CDrvItem* CDrvItem::Resolve() const {
  // Links are followed to the first local item. A chain that loops (only a
  // broken merge could make one) stops after a bounded number of steps.
  constexpr int kMaxHops = 64;
  const CDrvItem* item = this;
  std::shared_ptr<CDrvItem> hold;
  for (int hop = 0; hop < kMaxHops && item->Linked != 0; ++hop) {
    std::shared_ptr<CDrvItem> next = item->link_target_.lock();
    if (!next) break;
    hold = std::move(next);
    item = hold.get();
  }
  return item;
}

std::string CDrvItem::GetValue() const { return Resolve()->Value; }

void CDrvItem::SetValue(const std::string& value) {
  if (Linked != 0) {
    if (const auto target = link_target_.lock()) Description = target->Description;
  }
  Linked = 0;
  Value = value;
}

std::string CDrvItem::TypeName(std::uint32_t type) {
  switch (type) {
    case type_code::kInteger:
      return "Integer";
    case type_code::kDouble:
      return "Double";
    case type_code::kDate:
      return "Date";
    case type_code::kBool:
      return "Bool";
    default:
      return "String";
  }
}

std::string CDrvItem::TypeName() const { return TypeName(Type); }

void CDrvItem::SetTypeByName(const std::string& name) {
  if (Linked != 0) {
    if (const auto target = link_target_.lock()) {
      Value = target->GetValue();
      Description = target->Description;
    }
  }
  Linked = 0;
  if (const auto code = type_code_of(name)) Type = *code;
}

std::string CDrvItem::ValueAsEscapedText() const {
  const std::string value = GetValue();
  std::string out;
  out.reserve(value.size());
  for (const char ch : value) {
    const auto c = static_cast<unsigned char>(ch);
    if (c >= 32 && c <= 253) {
      out.push_back(ch);
      continue;
    }
    switch (c) {
      case 7:
        out += "\\a";
        break;
      case 8:
        out += "\\b";
        break;
      case 9:
        out += "\\t";
        break;
      case 10:
        out += "\\n";
        break;
      case 11:
        out += "\\v";
        break;
      case 12:
        out += "\\f";
        break;
      case 13:
        out += "\\r";
        break;
      default: {
        char hex[8];
        const auto res = std::to_chars(hex, hex + sizeof(hex), static_cast<unsigned>(c), 16);
        out += "\\X";
        out.append(hex, res.ptr);
      }
    }
  }
  return out;
}

void CDrvItem::SetDate(std::uint32_t packed) {
  const unsigned day = packed & 0xFF;
  const unsigned month = (packed >> 8) & 0xFF;
  const unsigned year = packed >> 16;
  SetValue(std::to_string(day) + "." + std::to_string(month) + "." + std::to_string(year));
}

namespace {

// One "%d" of a scanf-style read: blanks, a sign, digits. False when no
// number stands at `pos`.
bool scan_int(const std::string& s, std::size_t& pos, int& out) {
  while (pos < s.size() && (s[pos] == ' ' || (s[pos] >= '\t' && s[pos] <= '\r'))) ++pos;
  std::size_t start = pos;
  if (pos < s.size() && s[pos] == '+') start = ++pos;
  const auto [ptr, ec] = std::from_chars(s.data() + start, s.data() + s.size(), out);
  if (ec == std::errc::result_out_of_range) {
    // scanf would store something undefined; take 0.
    out = 0;
  } else if (ec != std::errc()) {
    return false;
  }
  pos = static_cast<std::size_t>(ptr - s.data());
  return true;
}

}  // namespace

std::uint32_t CDrvItem::GetDate() const {
  const std::string value = GetValue();
  int parts[3] = {0, 0, 0};
  std::size_t pos = 0;
  for (int i = 0; i < 3; ++i) {
    if (i > 0) {
      if (pos >= value.size() || value[pos] != '.') break;
      ++pos;
    }
    if (!scan_int(value, pos, parts[i])) break;
  }
  return (static_cast<std::uint32_t>(parts[0]) & 0xFF) |
         ((static_cast<std::uint32_t>(parts[1]) & 0xFF) << 8) | (static_cast<std::uint32_t>(parts[2]) << 16);
}

}  // namespace kerfline::driver
