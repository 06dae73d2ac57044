#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "fixtures/table_names.hpp"
#include "kerfline/remote_messages.hpp"

namespace {

std::string bytes(std::initializer_list<int> list) {
  std::string out;
  for (const int b : list) out.push_back(static_cast<char>(b));
  return out;
}

std::string serialize(const CSocketDataObject& m) {
  const int32_t needed = m.Serialize(nullptr, 0);
  EXPECT_LE(needed, 0);
  std::string out(static_cast<std::size_t>(-needed), '\0');
  EXPECT_EQ(m.Serialize(reinterpret_cast<unsigned char*>(out.data()), static_cast<uint32_t>(out.size())),
            -needed);
  return out;
}

std::unique_ptr<CSocketDataObject> parse(const std::string& wire, uint32_t* used) {
  return std::unique_ptr<CSocketDataObject>(CSocketDataObject::CreateObject(
      reinterpret_cast<const unsigned char*>(wire.data()), static_cast<uint32_t>(wire.size()), used));
}

struct WireCase {
  std::function<std::unique_ptr<CSocketDataObject>()> make;
  std::string wire;
};

template <typename T, typename F>
std::function<std::unique_ptr<CSocketDataObject>()> msg(F fill) {
  return [fill] {
    auto m = std::make_unique<T>();
    fill(*m);
    return std::unique_ptr<CSocketDataObject>(std::move(m));
  };
}

SOCKBINDATA bin(uint32_t size, const void* data, int32_t a, int32_t b, const char* t1, const char* t2) {
  return SOCKBINDATA{size, a, b, const_cast<void*>(data), const_cast<char*>(t1), const_cast<char*>(t2)};
}

const std::string k300(300, 'm');

std::vector<WireCase> wire_cases() {
  return {
      {msg<CSocketDataObjectState>([](auto& m) { m.SetState(1); }),
       bytes({1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0})},
      {msg<CSocketDataObjectState>([](auto& m) {
         m.SetState(-2);
         m.SetJobNr(0x01020304u);
       }),
       bytes({1, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 4, 3, 2, 1})},
      {msg<CSocketDataObjectMsg>([](auto&) {}), bytes({2, 0, 0, 0, 0})},
      {msg<CSocketDataObjectMsg>([](auto& m) { m.SetMsg("hi"); }), bytes({2, 0, 0, 0, 2, 'h', 'i'})},
      {msg<CSocketDataObjectMsg>([](auto& m) { m.SetMsg(k300.c_str()); }),
       bytes({2, 0, 0, 0, 0xFF, 0x2C, 0x01}) + k300},
      // Size 0: the message ends after the second text.
      {msg<CSocketDataObjectBinary>([](auto& m) {
         const SOCKBINDATA d = bin(0, nullptr, 7, -1, "a", "");
         m.SetData(&d);
       }),
       bytes({3, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 1, 'a', 0})},
      // The size travels between the two integers.
      {msg<CSocketDataObjectBinary>([](auto& m) {
         const unsigned char data[] = {0x00, 0xFF, 0x10};
         const SOCKBINDATA d = bin(3, data, 1, 2, "", "bc");
         m.SetData(&d);
       }),
       bytes({3, 0, 0, 0, 1, 0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0, 0, 2, 'b', 'c', 0x00, 0xFF, 0x10})},
      {msg<CSocketDataObjectStringList>([](auto&) {}), bytes({4, 0, 0, 0, 0, 0})},
      {msg<CSocketDataObjectStringList>([](auto& m) {
         m.AddTail("x");
         m.AddTail("yz");
       }),
       bytes({4, 0, 0, 0, 2, 0, 1, 'x', 2, 'y', 'z'})},
      // 0xFFFF entries need the long count form.
      {msg<CSocketDataObjectStringList>([](auto& m) {
         const std::vector<const char*> empty(0xFFFF, "");
         m.SetData(empty.data(), 0xFFFF);
       }),
       bytes({4, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0}) + std::string(0xFFFF, '\0')},
      // Query 4 carries neither parameter nor job: 8 bytes.
      {msg<CSocketDataObjectQuery>([](auto& m) {
         m.SetQueryNr(4);
         m.SetJobNr(9);
         m.SetQueryParm("unsent");
       }),
       bytes({5, 0, 0, 0, 4, 0, 0, 0})},
      {msg<CSocketDataObjectQuery>([](auto& m) {
         m.SetQueryNr(2);
         m.SetJobNr(9);
         m.SetQueryParm("p");
       }),
       bytes({5, 0, 0, 0, 2, 0, 0, 0, 1, 'p'})},
      {msg<CSocketDataObjectQuery>([](auto& m) {
         m.SetQueryNr(5);
         m.SetQueryParm("");
       }),
       bytes({5, 0, 0, 0, 5, 0, 0, 0, 0})},
      {msg<CSocketDataObjectQuery>([](auto& m) {
         m.SetQueryNr(3);
         m.SetJobNr(0x0A0B0C0Du);
         m.SetQueryParm("unsent");
       }),
       bytes({5, 0, 0, 0, 3, 0, 0, 0, 0x0D, 0x0C, 0x0B, 0x0A})},
      {msg<CSocketDataObjectInt>([](auto& m) { m.SetData(-1); }),
       bytes({6, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF})},
      {[] { return std::make_unique<CSocketDataObject>(); }, bytes({0, 0, 0, 0})},
  };
}

class MessageWire : public ::testing::TestWithParam<WireCase> {};

TEST_P(MessageWire, WritesExactBytes) {
  const auto m = GetParam().make();
  EXPECT_EQ(serialize(*m), GetParam().wire);
}

TEST_P(MessageWire, ReadsBackToTheSameBytes) {
  const std::string& wire = GetParam().wire;
  uint32_t used = 0;
  const auto m = parse(wire, &used);
  if (wire.substr(0, 4) == bytes({0, 0, 0, 0})) {
    EXPECT_EQ(m, nullptr);
    return;
  }
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(used, wire.size());
  EXPECT_EQ(m->GetType(), GetParam().make()->GetType());
  EXPECT_EQ(serialize(*m), wire);
}

TEST_P(MessageWire, EveryShortPrefixIsIncomplete) {
  const std::string& wire = GetParam().wire;
  // Checking every cut of the 64 KiB list would be quadratic; its ends do.
  for (std::size_t cut = 0; cut < wire.size(); cut += (cut < 64 || cut + 64 > wire.size()) ? 1 : 997) {
    uint32_t used = 99;
    const auto m = parse(wire.substr(0, cut), &used);
    EXPECT_EQ(m, nullptr) << "cut at " << cut;
    EXPECT_EQ(used, cut >= 4 && wire[0] == 0 ? 4u : 0u) << "cut at " << cut;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, MessageWire, ::testing::ValuesIn(wire_cases()), kerfline::test::RowIndex());

TEST(MessageWire, HostileLengthsFailWithoutAllocating) {
  const std::string cases[] = {
      bytes({2, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'a'}),         // 4 GB text
      bytes({4, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0}),              // 4 G texts
      bytes({4, 0, 0, 0, 0xFF, 0xFF, 0x01, 0x00, 0x01, 0x00}),                    // 65537 texts, too many
      bytes({3, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0}),  // 4 GB of data
      bytes({2, 0, 0, 0, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}),  // 4 G UTF-16 units
  };
  for (const std::string& wire : cases) {
    uint32_t used = 99;
    EXPECT_EQ(parse(wire, &used), nullptr);
    EXPECT_EQ(used, 0u);
  }
}

TEST(MessageWire, UnknownTypeLeavesItsPayloadUnread) {
  for (const int type : {0, 7, 0x40}) {
    uint32_t used = 0;
    EXPECT_EQ(parse(bytes({type, 0, 0, 0, 1, 2, 3}), &used), nullptr);
    EXPECT_EQ(used, 4u);
  }
}

TEST(MessageWire, ReadTakesThePayloadOnlyAndKeepsTheObjectOnFailure) {
  CSocketDataObjectQuery q;
  q.SetQueryNr(8);
  const std::string payload = bytes({2, 0, 0, 0, 3, 'a', 'b', 'c', 0x77});
  EXPECT_EQ(
      q.Read(reinterpret_cast<const unsigned char*>(payload.data()), static_cast<uint32_t>(payload.size())),
      8);
  EXPECT_EQ(q.GetQueryNr(), 2);
  EXPECT_STREQ(q.GetQueryParm(), "abc");
  EXPECT_EQ(q.Read(reinterpret_cast<const unsigned char*>(payload.data()), 6), -1);
  EXPECT_STREQ(q.GetQueryParm(), "abc");
}

TEST(MessageWire, SerializeIntoAShortBufferWritesNothing) {
  CSocketDataObjectInt m;
  m.SetData(5);
  unsigned char buf[7];
  std::fill(std::begin(buf), std::end(buf), 0xAA);
  EXPECT_EQ(m.Serialize(buf, sizeof buf), -8);
  for (const unsigned char b : buf) EXPECT_EQ(b, 0xAA);
}

}  // namespace
