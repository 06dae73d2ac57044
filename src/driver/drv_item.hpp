// CDrvItem: one named setting of a driver. Every value is kept as text; the
// type code says how the text is read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "driver/archive_common.hpp"

namespace kerfline::driver {

class ArchiveReader;
class ArchiveWriter;

namespace type_code {
inline constexpr std::uint32_t kDouble = 0;
inline constexpr std::uint32_t kInteger = 1;
inline constexpr std::uint32_t kBool = 2;
inline constexpr std::uint32_t kDate = 3;
inline constexpr std::uint32_t kString = 4;
inline constexpr std::uint32_t kCutInstr = 8;
}  // namespace type_code

// Right-trims blanks (space, tab, line ends) in place.
void trim_right(std::string& s);

class CDrvItem : public std::enable_shared_from_this<CDrvItem> {
 public:
  CDrvItem() = default;
  virtual ~CDrvItem() = default;
  CDrvItem(const CDrvItem&) = delete;
  CDrvItem& operator=(const CDrvItem&) = delete;

  static const ArchiveClass kClass;
  [[nodiscard]] virtual const ArchiveClass& GetClass() const { return kClass; }

  // Reads or writes the item's own record (the stream's object schema
  // governs reading).
  virtual void Serialize(ArchiveReader& ar);
  virtual void Serialize(ArchiveWriter& ar);

  // The value, followed through links to the first item that is not linked.
  [[nodiscard]] std::string GetValue() const;
  // Makes the item local: a linked item first takes its target's description.
  void SetValue(const std::string& value);
  void SetLinkTarget(const std::shared_ptr<CDrvItem>& target) { link_target_ = target; }
  [[nodiscard]] std::shared_ptr<CDrvItem> GetLinkTarget() const { return link_target_.lock(); }

  [[nodiscard]] const std::string& GetName() const { return Name; }
  [[nodiscard]] const std::string& GetDescription() const { return Description; }
  [[nodiscard]] const std::string& GetAuxText() const { return AuxText; }

  [[nodiscard]] std::string TypeName() const;
  static std::string TypeName(std::uint32_t type);
  // Unknown names leave the code; a linked item first copies its target's
  // value and description. Either way the item is no longer linked.
  void SetTypeByName(const std::string& name);

  // The value with control bytes and 254/255 escaped ("\t", "\X1b").
  [[nodiscard]] std::string ValueAsEscapedText() const;

  // Dates: day in bits 0-7, month 8-15, year 16-31; text "d.m.y".
  void SetDate(std::uint32_t packed);
  [[nodiscard]] std::uint32_t GetDate() const;

  // Takes name, description and (when the text gives one) type from the
  // definition of text number `id`.
  void ApplyDefinition(const class TextDefinitions& texts, std::uint32_t id);

  // Recomputes AtEnd from ValueIndex and Value.
  void UpdateAtEnd();

  std::string Name;
  std::string Value;
  std::string Description;
  std::string AuxText;
  std::uint32_t Attributes = 0;
  std::uint32_t Type = type_code::kString;
  std::uint32_t Linked = 0;
  std::uint32_t DictId = 0;
  std::int32_t ValueIndex = -1;
  bool AtEnd = true;

 protected:
  // The plain item record under the given schema.
  void ReadPlainRecord(ArchiveReader& ar, std::uint16_t schema);
  void WritePlainRecord(ArchiveWriter& ar);
  // The head that groups, tool parameter and dialog variables share.
  void ReadGroupStyleHead(ArchiveReader& ar);
  void WriteGroupStyleHead(ArchiveWriter& ar);

 private:
  const CDrvItem* Resolve() const;

  std::weak_ptr<CDrvItem> link_target_;
};

}  // namespace kerfline::driver
