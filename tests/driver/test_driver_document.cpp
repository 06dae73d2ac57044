#include <gtest/gtest.h>

#include <string>

#include "driver/archive_writer.hpp"
#include "driver/drv_item_cut_instr.hpp"
#include "driver/drv_item_dlg_var.hpp"
#include "driver/drv_item_mat_db.hpp"
#include "driver/vm6drv.hpp"
#include "driver_samples.hpp"
#include "fixtures/host_recorder.hpp"

namespace drv = kerfline::driver;
using kerfline::test::bytes;
using kerfline::test::named;
using kerfline::test::new_class;
using kerfline::test::sample_lookup;

namespace {

std::string dword(std::uint32_t v) {
  drv::ArchiveWriter w;
  w.write_dword(v);
  return w.bytes();
}

// The record of an unnamed root with `count` children.
std::string root_record(std::uint16_t count) {
  drv::ArchiveWriter w;
  kerfline::test::write_group_head(w, count, drv::type_code::kString);
  return w.bytes();
}

TEST(DriverDocument, RoundTripsEveryClassByteForByte) {
  kerfline::test::HostRecorder host;
  drv::CVm6Drv doc(sample_lookup());
  kerfline::test::fill_sample_document(doc);
  doc.WriteToBytes();  // the root group completes its cut instructions
  const std::string first = doc.WriteToBytes();

  drv::CVm6Drv copy(sample_lookup());
  ASSERT_TRUE(copy.ReadFromBytes(first)) << copy.LastError();
  EXPECT_TRUE(copy.WriteToBytes() == first);
  EXPECT_TRUE(host.boxes.empty());

  EXPECT_EQ(copy.Title, "Sample Cutter 1000");
  const auto* full = copy.FindItem("%Full%");
  ASSERT_NE(full, nullptr);
  EXPECT_EQ(
      full->Description + "|" + full->AuxText + "|" + std::to_string(full->Attributes) + "|" +
          std::to_string(full->Type) + "|" + std::to_string(full->ValueIndex) + "|" +
          std::to_string(full->AtEnd),
      "an item defined by the file|aux|3735928559|" + std::to_string(drv::type_code::kInteger) + "|1|1");

  const auto* speed = dynamic_cast<const drv::CDrvItemDlgVar*>(copy.FindItem("%Speed%"));
  ASSERT_NE(speed, nullptr);
  ASSERT_NE(speed->Ext, nullptr);
  EXPECT_EQ(std::to_string(speed->Ext->Flags) + " " + std::to_string(speed->Ext->Max) + " " +
                std::to_string(speed->Ext->Min) + " " + std::to_string(speed->Ext->Increments),
            "3 100.500000 -2.250000 0.500000");
  EXPECT_EQ(speed->Conditions, (std::vector<std::string>{"%A%>1", "", "%B%"}));
  EXPECT_EQ(dynamic_cast<const drv::CDrvItemDlgVar*>(copy.FindItem("%Plain%"))->Ext, nullptr);

  const auto* mat = dynamic_cast<const drv::CDrvItemMatDB*>(copy.FindItem("%MatDB%"));
  ASSERT_NE(mat, nullptr);
  EXPECT_EQ(mat->AuxText + (mat->IsLoaded() ? " loaded" : ""), "mat aux loaded");

  auto groups = copy.Groups();
  ASSERT_EQ(groups.size(), 4u);
  EXPECT_EQ(groups[0]->Name + "|" + std::to_string(groups[0]->ListParam4) + "|" +
                std::to_string(groups[0]->ListAtEnd),
            "%OutputFrmt%|305419896|1");
}

TEST(DriverDocument, ATextNumberedItemKeepsOnlyFourFields) {
  drv::CVm6Drv doc(sample_lookup());
  auto name = named<drv::CDrvItem>("%DriverName%", "v");
  name->DictId = 9016;
  doc.Root().AddChild(name);
  const std::string expected = bytes({6}) + "VM6DRV" + bytes({1, 'v'}) + dword(0) + root_record(1) +
                               new_class(2, "CDrvItem") + bytes({1, 'v'}) + dword(0) + dword(0) + dword(9016);
  EXPECT_EQ(doc.WriteToBytes(), expected);

  drv::CVm6Drv copy(sample_lookup());
  ASSERT_TRUE(copy.ReadFromBytes(expected)) << copy.LastError();
  const auto& item = *copy.Root().GetChildren().at(0);
  EXPECT_EQ(item.Name + "|" + item.Description, "%DriverName%|Name of the driver");
  EXPECT_EQ(item.Type, drv::type_code::kString);
}

TEST(DriverDocument, ExtendedHeaderKeepsTheStoredBytesAndTheDword) {
  const std::pair<drv::ExtendedHeader, std::string> cases[] = {
      {{true, "\x93\x01\xfe", "note", true}, "Title"},
      {{true, "\x93\x01\xfe", "note", false}, "Title"},
      {{true, "x", "", true}, ""},
      {{true, "x", "", false}, ""},
      {{true, "", "", false}, "T"}};
  const auto summary = [](const drv::CVm6Drv& d) {
    return d.Header.EncodedText + "|" + d.Header.Note + "|" + std::to_string(d.Header.DwordFollows) + "|" +
           d.Title;
  };
  for (const auto& [header, title] : cases) {
    drv::CVm6Drv doc(sample_lookup());
    doc.Header = header;
    doc.Title = title;
    doc.Root().Name = "%Root%";
    doc.Root().AddChild(named<drv::CDrvItem>("%A%", "1"));
    const std::string written = doc.WriteToBytes();
    EXPECT_EQ(written.substr(0, 8), "\x07VM6DRV$");
    drv::CVm6Drv copy(sample_lookup());
    ASSERT_TRUE(copy.ReadFromBytes(written)) << copy.LastError();
    EXPECT_EQ(summary(copy), summary(doc));
    EXPECT_EQ(copy.WriteToBytes(), written);
  }
}

TEST(DriverDocument, ReadsOlderSchemas) {
  // A dialog variable of schema 1, 2 and 3, a plain item of schema 1 and a
  // material database of schema 1, in their own streams.
  const std::string dlg = bytes({3}) + "%D%" + bytes({1, 'v', 1, 'd'}) + dword(0) + dword(4) + dword(0) +
                          dword(0) + dword(0xFFFFFFFF) + bytes({3}) + "dlg" + bytes({3}) + "fmt" + dword(0);
  const std::string tail = bytes({3}) + "aux" + dword(1) + bytes({4}) + "cond";

  const std::pair<std::string, const char*> dialogs[] = {
      // format|aux|conditions
      {new_class(1, "CDrvItemDlgVar") + dlg, "fmt||0"},
      {new_class(2, "CDrvItemDlgVar") + dlg + bytes({3}) + "aux", "fmt|aux|0"},
      {new_class(3, "CDrvItemDlgVar") + dlg + tail, "fmt|aux|1"}};
  for (const auto& [object, expected] : dialogs) {
    drv::CVm6Drv doc(sample_lookup());
    const std::string file = bytes({6}) + "VM6DRV" + bytes({0}) + dword(0) + root_record(1) + object;
    ASSERT_TRUE(doc.ReadFromBytes(file)) << doc.LastError();
    const auto* var = dynamic_cast<const drv::CDrvItemDlgVar*>(doc.Root().GetChildren().at(0).get());
    ASSERT_NE(var, nullptr);
    EXPECT_EQ(var->DlgFormat + "|" + var->AuxText + "|" + std::to_string(var->Conditions.size()), expected);
    // Written back, it is a current dialog variable.
    EXPECT_NE(doc.WriteToBytes().find(new_class(3, "CDrvItemDlgVar")), std::string::npos);
  }

  const std::string plain_v1 = new_class(1, "CDrvItem") + bytes({1, '5'}) + dword(0) + dword(0) + dword(0) +
                               bytes({3}) + "%P%" + dword(0xFFFFFFFF) + dword(1) + bytes({2}) + "de";
  const std::string matdb_v1 = new_class(1, "CDrvItemMatDB") + bytes({2, 'm', 'm'}) + dword(0) + dword(0) +
                               dword(0) + bytes({3}) + "%M%" + dword(0) + dword(4) + bytes({0});
  drv::CVm6Drv doc(sample_lookup());
  ASSERT_TRUE(
      doc.ReadFromBytes(bytes({6}) + "VM6DRV" + bytes({0}) + dword(0) + root_record(2) + plain_v1 + matdb_v1))
      << doc.LastError();
  const auto* plain = doc.FindItem("%P%");
  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(plain->Description + "|" + plain->AuxText + "|" + std::to_string(plain->AtEnd),
            "de||1");  // index -1
  EXPECT_EQ(plain->Type, drv::type_code::kInteger);
  const auto* mat = dynamic_cast<const drv::CDrvItemMatDB*>(doc.FindItem("%M%"));
  ASSERT_NE(mat, nullptr);
  // Index 0 is before the last byte of "mm".
  EXPECT_EQ(mat->Value + "|" + std::to_string(mat->ValueIndex) + "|" + std::to_string(mat->AtEnd), "mm|0|0");
}

TEST(DriverDocument, CutInstructionsReadBackOnlyWithATextNumber) {
  drv::CVm6Drv doc(sample_lookup());
  auto numbered = named<drv::CDrvItemCutInstr>("%Mine%", "(OC:100)");
  numbered->DictId = 1006;
  numbered->Linked = 1;
  numbered->Type = 0;
  auto local = named<drv::CDrvItemCutInstr>("%Local%", "(OC:1)");
  local->AuxText = "first";
  local->CutInstrText = "second";
  doc.Root().AddChild(numbered);
  doc.Root().AddChild(local);
  drv::CVm6Drv copy(sample_lookup());
  ASSERT_TRUE(copy.ReadFromBytes(doc.WriteToBytes()));
  EXPECT_EQ(numbered->Type, drv::type_code::kCutInstr) << "the writer forces the type";
  // With a number: the definition's name and text, whatever the link.
  const auto* read = dynamic_cast<const drv::CDrvItemCutInstr*>(copy.Root().GetChildren().at(0).get());
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->Name + "|" + read->Description + "|" + read->Code(), "%CI_AltHPGL%|Alternative HPGL|OC");
  EXPECT_EQ(read->Type, drv::type_code::kCutInstr);
  // Without: the plain record inside is read under schema 1 and so misses
  // the AuxText that the writer put there: the texts shift.
  read = dynamic_cast<const drv::CDrvItemCutInstr*>(copy.Root().GetChildren().at(1).get());
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->CutInstrText + "|" + read->AuxText, "first|second");
}

TEST(DriverDocument, FindItemSearchesRootThenGroupsInOrder) {
  drv::CVm6Drv doc(sample_lookup());
  auto g1 = named<drv::CDrvItemList>("%G1%");
  g1->AddChild(named("%A%", "g1"));
  g1->AddChild(named("%B%", "g1"));
  auto g2 = named<drv::CDrvItemList>("%G2%", "g2");
  g2->AddChild(named("%B%", "g2"));
  doc.Root().AddChild(g1);
  doc.Root().AddChild(g2);
  doc.Root().AddChild(named("%A%", "root"));
  doc.RefreshGroupList();
  for (const auto& [name, value] : {std::pair{"%A%", "root"}, {"%B%", "g1"}, {"%G2%", "g2"}}) {
    ASSERT_NE(doc.FindItem(name), nullptr) << name;
    EXPECT_EQ(doc.FindItem(name)->Value, value);
  }
  EXPECT_EQ(doc.FindItem("%C%"), nullptr);
}

}  // namespace
