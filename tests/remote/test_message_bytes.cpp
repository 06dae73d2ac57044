#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fixtures/table_names.hpp"
#include "kerfline/remote_messages.hpp"
#include "loopback_server.hpp"

namespace {

using kerfline::test::bytes;

std::unique_ptr<CSocketDataObject> parse(const std::string& wire, uint32_t* used) {
  return std::unique_ptr<CSocketDataObject>(CSocketDataObject::CreateObject(
      reinterpret_cast<const unsigned char*>(wire.data()), static_cast<uint32_t>(wire.size()), used));
}

using Made = std::shared_ptr<CSocketDataObject>;

struct WireCase {
  Made message;
  std::string wire;
};

Made state(int32_t state, uint32_t job) {
  auto m = std::make_shared<CSocketDataObjectState>();
  m->SetState(state);
  m->SetJobNr(job);
  return m;
}

Made text(const char* text) {  // null: never set
  auto m = std::make_shared<CSocketDataObjectMsg>();
  if (text != nullptr) m->SetMsg(text);
  return m;
}

Made binary(uint32_t size, const void* data, int32_t a, int32_t b, const char* t1, const char* t2) {
  auto m = std::make_shared<CSocketDataObjectBinary>();
  const SOCKBINDATA d{size, a, b, const_cast<void*>(data), const_cast<char*>(t1), const_cast<char*>(t2)};
  m->SetData(&d);
  return m;
}

Made list(const std::vector<const char*>& entries, bool one_by_one = true) {
  auto m = std::make_shared<CSocketDataObjectStringList>();
  if (!one_by_one) m->SetData(entries.data(), static_cast<int32_t>(entries.size()));
  for (const char* e : one_by_one ? entries : std::vector<const char*>{}) m->AddTail(e);
  return m;
}

Made query(int32_t nr, uint32_t job, const char* parameter) {
  auto m = std::make_shared<CSocketDataObjectQuery>();
  m->SetQueryNr(nr);
  m->SetJobNr(job);
  m->SetQueryParm(parameter);
  return m;
}

Made number(int32_t value) {
  auto m = std::make_shared<CSocketDataObjectInt>();
  m->SetData(value);
  return m;
}

const std::string k300(300, 'm');
const unsigned char kData[] = {0x00, 0xFF, 0x10};

std::vector<WireCase> wire_cases() {
  return {
      {state(1, 0), bytes({1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0})},
      {state(-2, 0x01020304u), bytes({1, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 4, 3, 2, 1})},
      {text(nullptr), bytes({2, 0, 0, 0, 0})},
      {text("hi"), bytes({2, 0, 0, 0, 2, 'h', 'i'})},
      {text(k300.c_str()), bytes({2, 0, 0, 0, 0xFF, 0x2C, 0x01}) + k300},
      // Size 0: the message ends after the second text.
      {binary(0, nullptr, 7, -1, "a", ""),
       bytes({3, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 1, 'a', 0})},
      // The size travels between the two integers.
      {binary(3, kData, 1, 2, "", "bc"),
       bytes({3, 0, 0, 0, 1, 0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0, 0, 2, 'b', 'c', 0x00, 0xFF, 0x10})},
      {list({}), bytes({4, 0, 0, 0, 0, 0})},
      {list({"x", "yz"}), bytes({4, 0, 0, 0, 2, 0, 1, 'x', 2, 'y', 'z'})},
      // 0xFFFF entries need the long count form.
      {list(std::vector<const char*>(0xFFFF, ""), false),
       bytes({4, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0}) + std::string(0xFFFF, '\0')},
      // Query 4 carries neither parameter nor job: 8 bytes.
      {query(4, 9, "unsent"), bytes({5, 0, 0, 0, 4, 0, 0, 0})},
      {query(2, 9, "p"), bytes({5, 0, 0, 0, 2, 0, 0, 0, 1, 'p'})},
      {query(5, 0, ""), bytes({5, 0, 0, 0, 5, 0, 0, 0, 0})},
      {query(3, 0x0A0B0C0Du, "unsent"), bytes({5, 0, 0, 0, 3, 0, 0, 0, 0x0D, 0x0C, 0x0B, 0x0A})},
      {number(-1), bytes({6, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF})},
      {std::make_shared<CSocketDataObject>(), bytes({0, 0, 0, 0})},
  };
}

class MessageWire : public ::testing::TestWithParam<WireCase> {};

TEST_P(MessageWire, WritesExactBytes) {
  EXPECT_EQ(kerfline::test::wire(*GetParam().message), GetParam().wire);
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
  EXPECT_EQ(m->GetType(), GetParam().message->GetType());
  EXPECT_EQ(kerfline::test::wire(*m), wire);
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

// Hostile lengths fail without allocating and take nothing; an unknown
// type takes its 4 bytes and leaves the payload.
TEST(MessageWire, HostileLengthsAndUnknownTypesMakeNoMessage) {
  const std::pair<std::string, uint32_t> cases[] = {
      {bytes({2, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'a'}), 0},  // 4 GB text
      {bytes({4, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0}), 0},       // 4 G texts
      {bytes({4, 0, 0, 0, 0xFF, 0xFF, 0x01, 0x00, 0x01, 0x00}), 0},             // 65537 texts, too many
      {bytes({3, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0}), 0},  // 4 GB of data
      {bytes({2, 0, 0, 0, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}), 0},  // 4 G UTF-16 units
      {bytes({0, 0, 0, 0, 1, 2, 3}), 4},
      {bytes({7, 0, 0, 0, 1, 2, 3}), 4},
      {bytes({0x40, 0, 0, 0, 1, 2, 3}), 4},
  };
  for (const auto& [wire, taken] : cases) {
    uint32_t used = 99;
    EXPECT_EQ(parse(wire, &used), nullptr);
    EXPECT_EQ(used, taken);
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
