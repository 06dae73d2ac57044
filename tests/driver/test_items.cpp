#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "driver/archive_writer.hpp"
#include "driver/drv_item_cut_instr.hpp"
#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/text_definitions.hpp"
#include "driver/text_dictionary.hpp"
#include "driver_samples.hpp"
#include "fixtures/host_recorder.hpp"

namespace drv = kerfline::driver;
using kerfline::test::named;

namespace {

TEST(ItemValue, FollowsLinksToTheFirstLocalItemUntilSet) {
  drv::CDrvItem orphan;
  orphan.Value = "own";
  orphan.Linked = 1;
  EXPECT_EQ(orphan.GetValue(), "own") << "linked without a target";
  orphan.SetLinkTarget(std::make_shared<drv::CDrvItem>());  // gone at once
  EXPECT_EQ(orphan.GetValue(), "own") << "a target that went away";

  auto base = named<drv::CDrvItem>("%A%", "base");
  base->Description = "from the base";
  auto middle = named<drv::CDrvItem>("%A%", "middle");
  middle->Description = base->Description;
  middle->Linked = 1;
  middle->SetLinkTarget(base);
  drv::CDrvItem item;
  item.Description = "mine";
  item.Linked = 1;
  item.SetLinkTarget(middle);
  EXPECT_EQ(item.GetValue(), "base");
  // Setting a linked value takes the description and unlinks; a local item keeps its own.
  item.SetValue("new");
  EXPECT_EQ(item.Value + "|" + item.Description + "|" + std::to_string(item.Linked), "new|from the base|0");
  item.Description = "kept";
  item.SetValue("again");
  EXPECT_EQ(item.Description, "kept");
  drv::CDrvItem typed;  // setting the type of a linked item makes it local too
  typed.Linked = 1;
  typed.SetLinkTarget(base);
  typed.SetTypeByName("Nonsense");
  EXPECT_EQ(typed.Value + "|" + typed.Description + "|" + std::to_string(typed.Linked) + "|" +
                std::to_string(typed.Type),
            "base|from the base|0|" + std::to_string(drv::type_code::kString));
}

TEST(ItemType, NamesAndCodes) {
  const std::pair<std::uint32_t, const char*> names[] = {
      {0, "Double"}, {1, "Integer"}, {2, "Bool"}, {3, "Date"}, {4, "String"}, {8, "String"}, {77, "String"}};
  for (const auto& [code, name] : names) EXPECT_EQ(drv::CDrvItem::TypeName(code), name) << code;
  const std::pair<const char*, std::uint32_t> set[] = {
      {"String", 4}, {"Integer", 1}, {"Double", 0}, {"Date", 3}, {"Bool", 2}, {"integer", 3}, {"", 3}};
  for (const auto& [name, code] : set) {
    drv::CDrvItem item;
    item.Type = 3;
    item.SetTypeByName(name);
    EXPECT_EQ(item.Type, code) << name;
  }
}

TEST(ItemValue, EscapesControlBytesAnd254Up) {
  const std::pair<std::string, std::string> cases[] = {{"\t\x1b", "\\t\\X1b"},
                                                       {std::string("\a\b\n\v\f\r", 6), "\\a\\b\\n\\v\\f\\r"},
                                                       {std::string("a\0b", 3), "a\\X0b"},
                                                       {"\x1f \xfd\xfe\xff", "\\X1f \xfd\\Xfe\\Xff"},
                                                       {"PU %x%,%y%;", "PU %x%,%y%;"}};
  for (const auto& [value, escaped] : cases) {
    drv::CDrvItem item;
    item.Value = value;
    EXPECT_EQ(item.ValueAsEscapedText(), escaped);
  }
}

TEST(ItemDate, PackedDayMonthYear) {
  drv::CDrvItem item;
  item.SetDate(0x07D90C1F);
  EXPECT_EQ(item.Value, "31.12.2009");
  const std::pair<const char*, std::uint32_t> parsed[] = {
      {"1.2.2020", 0x07E40201}, {" 5. 6. 7", 0x00070605}, {"9", 0x00000009}, {"x", 0}, {"3.4", 0x0403}};
  for (const auto& [text, packed] : parsed) {
    item.Value = text;
    EXPECT_EQ(item.GetDate(), packed) << text;
  }
}

TEST(DialogVariable, IntegerCheckRefusesFractionsWithAMessage) {
  kerfline::test::HostRecorder host;
  drv::CDrvItemDlgVar var;
  var.Type = drv::type_code::kInteger;
  var.Description = "Speed";
  var.Value = "10";
  for (const char* bad : {"1.5", "1,5", "1;5", "1e3", "1E3"})
    EXPECT_FALSE(var.SetCheckedValue(bad, "Input for %s:"));
  EXPECT_EQ(var.Value, "10");
  ASSERT_EQ(host.boxes.size(), 5u);
  EXPECT_EQ(host.boxes[0].text + "|" + host.boxes[0].caption, "1.5 (Integer Error)|Input for Speed:");
  EXPECT_EQ(host.boxes[0].type, KERFLINE_MB_OK | KERFLINE_MB_ICONWARNING);
  EXPECT_TRUE(var.SetCheckedValue("25", "Input for %s:"));
  EXPECT_EQ(var.Value, "25");

  // Without a caption of its own, the second dictionary's (never the first's) is used.
  drv::TextServices services;
  services.resource_text = [](int table, std::uint32_t id) -> std::optional<std::string> {
    if (id != drv::kIntegerErrorCaptionId) return std::nullopt;
    return table == 1 ? "Wrong input for %s" : "from the first table";
  };
  drv::install_text_services(services);
  EXPECT_FALSE(var.SetCheckedValue("2.5"));
  drv::install_text_services({});
  ASSERT_EQ(host.boxes.size(), 6u);
  EXPECT_EQ(host.boxes[5].caption, "Wrong input for Speed");
  var.Type = drv::type_code::kDouble;
  EXPECT_TRUE(var.SetCheckedValue("2.5", "Input for %s:"));
  EXPECT_EQ(host.boxes.size(), 6u);
}

TEST(Group, FindByNameTrimsUnmappedChildrenAndMapsLetTheLaterChildWin) {
  drv::CDrvItemList group;
  auto abc = named<drv::CDrvItem>("abc   ");
  group.AddChild(named<drv::CDrvItem>("ab"));
  group.AddChild(abc);
  EXPECT_EQ(group.FindChild("abc"), abc.get());
  EXPECT_EQ(abc->Name, "abc");
  EXPECT_EQ(group.FindChild("ABC"), nullptr) << "names compare case-sensitively";
  auto first = named<drv::CDrvItem>("%A%"), second = named<drv::CDrvItem>("%A%");
  first->DictId = second->DictId = 9000;
  group.AddChild(first);
  group.AddChild(second);
  EXPECT_EQ(group.FindChild("%A%"), first.get()) << "before the maps, the first in order";
  group.BuildMaps();
  EXPECT_EQ(group.FindChild("%A%"), second.get());
  EXPECT_EQ(group.FindChildByDictId(9000), second.get());
  auto third = named<drv::CDrvItem>("%A%");
  group.AddChild(third);
  EXPECT_EQ(group.FindChild("%A%"), third.get()) << "a child added later joins the maps";
  group.RemoveChild(third.get());
  EXPECT_EQ(group.FindChild("%A%"), second.get());
}

TEST(Group, PopulateAddsOnlyMissingCutInstructions) {
  const drv::TextDefinitions texts(kerfline::test::sample_lookup());
  drv::CDrvItemList group;
  auto own = named<drv::CDrvItemCutInstr>("%CI_AltHPGL%", "(AT:PR)");
  group.AddChild(own);
  group.Populate(texts);
  group.Populate(texts);
  ASSERT_EQ(group.GetChildren().size(), 2u);
  EXPECT_EQ(group.GetChildren()[0], own);
  const auto* added = dynamic_cast<const drv::CDrvItemCutInstr*>(group.GetChildren()[1].get());
  ASSERT_NE(added, nullptr);
  EXPECT_EQ(added->Name + "|" + added->Description + "|" + added->Value + "|" +
                std::to_string(added->DictId) + "|" + added->Code() + "|" + added->Arguments(),
            "%CI_ArcLimit%|Arc limit|(AL:10e6)|1000|AL|10e6");
  EXPECT_EQ(added->Type, drv::type_code::kCutInstr);
}

TEST(TextDefinitions, TakeTypeAndDefaultFromTheKindsBlock) {
  const drv::TextDefinitions texts(kerfline::test::sample_lookup());
  const auto digits = texts.definition(9288);
  EXPECT_EQ(digits.name, "%Digits%");
  EXPECT_EQ(digits.description, "Digits after the point");
  EXPECT_EQ(digits.default_value, "0");
  EXPECT_EQ(digits.type, drv::type_code::kInteger);
  const auto between = texts.definition(9289);
  EXPECT_EQ(between.name, "Digits after the point");
  EXPECT_FALSE(between.type) << "not the start of a block";
  EXPECT_EQ(texts.cut_instruction_count(), 2u);
  const drv::TextDefinitions none([](std::uint32_t id) { return id == 109 ? std::string("99999") : ""; });
  EXPECT_EQ(none.cut_instruction_count(), 0u) << "an absurd count populates nothing";

  // By default, the library's own dictionary.
  const drv::TextDefinitions standard(drv::standard_text_lookup());
  EXPECT_EQ(standard.cut_instruction_count(), 22u);
  EXPECT_EQ(standard.definition(drv::TextDefinitions::cut_instruction_id(3)).type, drv::type_code::kBool);
  EXPECT_EQ(standard.definition(9000 + 8 * 36).name, "%Digits%");
  EXPECT_EQ(standard.definition(9000 + 8 * 36).type, drv::type_code::kInteger);
  EXPECT_EQ(standard.definition(6000 + 8).default_value, "20");
}

TEST(ReservedGroup, LosesEveryChildThatIsNotAGroupWhenStored) {
  kerfline::test::HostRecorder host;
  const std::tuple<const char*, const char*, std::uint32_t, bool> groups[] = {
      {"Dialogvariablen", "", 0, true}, {"", "Werkzeugvariablen", 0, true}, {"x", "", 33025, true},
      {"x", "", 33058, true},           {"dialogvariablen", "", 0, false},  {"x", "", 33026, false}};
  for (const auto& [name, description, dict_id, reserved] : groups) {
    host.boxes.clear();
    drv::CDrvItemList group;
    group.Name = name;
    group.Description = description;
    group.DictId = dict_id;
    group.AddChild(named<drv::CDrvItem>("%A%"));
    group.AddChild(named<drv::CDrvItemList>("Page"));
    group.AddChild(named<drv::CDrvItemDlgVar>("%B%"));
    drv::ArchiveWriter w;
    group.Serialize(w);
    EXPECT_EQ(group.GetChildren().size(), reserved ? 1u : 3u) << name << dict_id;
    ASSERT_EQ(host.boxes.size(), reserved ? 2u : 0u);
    for (const auto& box : host.boxes)
      EXPECT_EQ(box.caption + "|" + box.text, "Driver check:|(1) - Removed unexpected link");
  }
}

}  // namespace
