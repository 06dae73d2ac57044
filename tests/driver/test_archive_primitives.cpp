#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/item_classes.hpp"
#include "driver_samples.hpp"

namespace drv = kerfline::driver;
using kerfline::test::bytes;
using kerfline::test::new_class;
using kerfline::test::write_group_head;

namespace {

// A group of the list class (its first object: index 2) with `count` children to follow.
std::string group(std::uint32_t count) {
  drv::ArchiveWriter w;
  write_group_head(w, count);
  return new_class(1, "CDrvItemList") + w.bytes();
}

TEST(StringPrefix, UsesTheShortestFormAndReadsBack) {
  const std::pair<std::size_t, std::string> cases[] = {
      {0, bytes({0x00})},
      {254, bytes({0xFE})},
      {255, bytes({0xFF, 0xFF, 0x00})},
      {65533, bytes({0xFF, 0xFD, 0xFF})},
      {65534, bytes({0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00})},
      {70000, bytes({0xFF, 0xFF, 0xFF, 0x70, 0x11, 0x01, 0x00})}};
  for (const auto& [length, prefix] : cases) {
    const std::string text(length, 'q');
    drv::ArchiveWriter w;
    w.write_string(text);
    EXPECT_EQ(w.bytes(), prefix + text) << length;
    drv::ArchiveReader r(w.bytes());
    EXPECT_EQ(r.read_string(), text);
    EXPECT_TRUE(r.at_end());
  }
}

TEST(ArchiveReader, ReadsUtf16StringsAs1252) {
  const std::pair<std::string, std::string> cases[] = {
      {bytes({0xFF, 0xFE, 0xFF, 0x02, 'a', 0, 0xE4, 0}), "a\xE4"},
      {bytes({0xFF, 0xFE, 0xFF, 0x00}), ""},
      {bytes({0xFF, 0xFE, 0xFF, 0xFF, 0x02, 0x00, 'h', 0, 'i', 0}), "hi"},
      {bytes({0xFF, 0xFE, 0xFF, 0x02, 0xAC, 0x20, 0x2D, 0x4E}), "\x80?"}};
  for (const auto& [input, expected] : cases) {
    drv::ArchiveReader r(input);
    EXPECT_EQ(r.read_string(), expected);
    EXPECT_TRUE(r.at_end());
  }
}

TEST(ArchiveCount, WordBelowFFFFElseMarkerAndDword) {
  const std::pair<std::uint32_t, std::string> cases[] = {{0, bytes({0, 0})},
                                                         {0xFFFE, bytes({0xFE, 0xFF})},
                                                         {0xFFFF, bytes({0xFF, 0xFF, 0xFF, 0xFF, 0, 0})},
                                                         {0x10000, bytes({0xFF, 0xFF, 0, 0, 1, 0})}};
  for (const auto& [count, encoded] : cases) {
    drv::ArchiveWriter w;
    w.write_count(count);
    EXPECT_EQ(w.bytes(), encoded);
    drv::ArchiveReader r(w.bytes());
    EXPECT_EQ(r.read_count(0), count);
  }
}

TEST(ArchiveWriter, DescribesAClassOnceThenTagsItWithItsIndex) {
  int a = 0, b = 0, c = 0;
  drv::ArchiveWriter w;
  ASSERT_TRUE(w.begin_object(&a, drv::CDrvItem::kClass));      // class 1, object 2
  ASSERT_TRUE(w.begin_object(&b, drv::CDrvItem::kClass));      // object 3
  ASSERT_TRUE(w.begin_object(&c, drv::CDrvItemList::kClass));  // class 4, object 5
  EXPECT_FALSE(w.begin_object(&b, drv::CDrvItem::kClass));     // back-reference
  EXPECT_EQ(w.bytes(), bytes({0xFF, 0xFF, 0x02, 0x00, 0x08, 0x00}) + "CDrvItem" + bytes({0x01, 0x80}) +
                           bytes({0xFF, 0xFF, 0x01, 0x00, 0x0C, 0x00}) + "CDrvItemList" +
                           bytes({0x03, 0x00}));
}

TEST(ArchiveMap, IndexesBeyond15BitsUseTheBigTag) {
  constexpr std::size_t kObjects = 40000;
  std::vector<char> objects(kObjects + 2);
  drv::ArchiveWriter w;
  for (std::size_t i = 0; i < kObjects; ++i) w.begin_object(&objects[i], drv::CDrvItem::kClass);
  // "CDrvItem" took index 1, the objects 2 .. 40001; the list class 40002.
  w.begin_object(&objects[kObjects], drv::CDrvItemList::kClass);
  const std::size_t tail = w.bytes().size();
  w.begin_object(&objects[kObjects + 1], drv::CDrvItemList::kClass);
  w.begin_object(&objects[kObjects - 1], drv::CDrvItem::kClass);
  EXPECT_EQ(w.bytes().substr(tail),
            bytes({0xFF, 0x7F, 0x42, 0x9C, 0x00, 0x80, 0xFF, 0x7F, 0x41, 0x9C, 0x00, 0x00}));

  drv::ArchiveReader r(w.bytes());
  std::vector<std::shared_ptr<void>> read;
  for (std::size_t i = 0; i < kObjects + 2; ++i) {
    const auto t = r.read_object_tag(drv::item_classes());
    ASSERT_EQ(t.kind, drv::ArchiveReader::ObjectTag::Kind::New);
    EXPECT_EQ(t.cls->name, i < kObjects ? "CDrvItem" : "CDrvItemList");
    read.push_back(std::make_shared<int>(0));
    r.begin_object(read.back(), t.schema);
    r.end_object();
  }
  const auto back = r.read_object_tag(drv::item_classes());
  ASSERT_EQ(back.kind, drv::ArchiveReader::ObjectTag::Kind::Reference);
  EXPECT_EQ(back.object, read[kObjects - 1]);
  EXPECT_TRUE(r.at_end());
}

TEST(MalformedObject, IsAFormatError) {
  const std::pair<const char*, std::string> streams[] = {
      {"64-byte class name", new_class(2, std::string(64, 'C'))},
      {"unknown class", new_class(1, "CDrvItemFoo")},
      {"list with schema 2", new_class(2, "CDrvItemList")},
      {"cut instruction with schema 0", new_class(0, "CDrvItemCutInstr")},
      {"item schema above current", new_class(3, "CDrvItem")},
      {"dialog variable schema above current", new_class(4, "CDrvItemDlgVar")},
      {"dangling object index", bytes({0x05, 0x00})},
      {"dangling class index", bytes({0x03, 0x80})},
      {"dangling big object index", bytes({0xFF, 0x7F, 0x09, 0, 0, 0})},
      {"dangling big class index", bytes({0xFF, 0x7F, 0x09, 0, 0, 0x80})},
      {"null object", bytes({0x00, 0x00})},
      {"one byte of a tag", bytes({0xFF})},
      {"class name past the end", bytes({0xFF, 0xFF, 2, 0, 8, 0}) + "CDrv"},
      {"value past the end", new_class(2, "CDrvItem") + bytes({0x05, 'a'})},
      {"word prefix past the end", new_class(2, "CDrvItem") + bytes({0xFF, 0x00, 0x01})},
      {"UTF-16 past the end", new_class(2, "CDrvItem") + bytes({0xFF, 0xFE, 0xFF, 0x10, 'a', 0})},
      {"object refers to itself while being read", group(1) + bytes({0x02, 0x00})},
      {"count the file cannot hold", group(0x10000) + bytes({0, 0})}};
  for (const auto& [what, stream] : streams) {
    drv::ArchiveReader r(stream);
    EXPECT_THROW(drv::ReadItem(r), drv::ArchiveError) << what;
  }
}

TEST(ArchiveMap, ABackReferenceYieldsTheEarlierObject) {
  drv::CDrvItemList group;
  auto item = std::make_shared<drv::CDrvItem>();
  item->Name = "shared";
  group.AddChild(item);
  group.AddChild(item);
  drv::ArchiveWriter w;
  group.Serialize(w);
  // The second reference is object index 2 (class "CDrvItem" took 1).
  EXPECT_EQ(w.bytes().substr(w.bytes().size() - 2), bytes({0x02, 0x00}));

  drv::ArchiveReader r(w.bytes());
  drv::CDrvItemList copy;
  copy.Serialize(r);
  ASSERT_EQ(copy.GetChildren().size(), 2u);
  EXPECT_EQ(copy.GetChildren()[0], copy.GetChildren()[1]);
  drv::ArchiveWriter again;
  copy.Serialize(again);
  EXPECT_EQ(again.bytes(), w.bytes());
}

// 40 levels of groups that each hold the level below twice: 2.3 KB that
// would make every walk over the tree follow 2^40 paths.
TEST(ArchiveMap, AGroupInTwoPlacesIsRefused) {
  for (const int levels : {1, 40}) {
    auto inner = std::make_shared<drv::CDrvItemList>();
    inner->AddChild(std::make_shared<drv::CDrvItem>());
    for (int i = 0; i < levels; ++i) {
      auto outer = std::make_shared<drv::CDrvItemList>();
      outer->AddChild(inner);
      outer->AddChild(inner);
      inner = outer;
    }
    drv::ArchiveWriter w;
    inner->Serialize(w);
    EXPECT_LT(w.bytes().size(), std::size_t{4096});
    drv::ArchiveReader r(w.bytes());
    drv::CDrvItemList copy;
    try {
      copy.Serialize(r);
      ADD_FAILURE() << levels << " levels were read";
    } catch (const drv::ArchiveError& e) {
      EXPECT_STREQ(e.what(), "a group is stored in two places");
    }
  }
}

TEST(ArchiveReader, RefusesNestingBeyondItsDepthLimit) {
  for (const std::size_t depth : {drv::ArchiveReader::kMaxDepth, drv::ArchiveReader::kMaxDepth + 1}) {
    drv::ArchiveWriter w;
    write_group_head(w, 1);
    std::vector<char> objects(depth);
    for (std::size_t i = 0; i < depth; ++i) {
      w.begin_object(&objects[i], drv::CDrvItemList::kClass);
      write_group_head(w, i + 1 < depth ? 1 : 0);
    }
    drv::ArchiveReader r(w.bytes());
    drv::CDrvItemList root;
    if (depth <= drv::ArchiveReader::kMaxDepth) {
      EXPECT_NO_THROW(root.Serialize(r));
    } else {
      EXPECT_THROW(root.Serialize(r), drv::ArchiveError);
    }
  }
}

}  // namespace
