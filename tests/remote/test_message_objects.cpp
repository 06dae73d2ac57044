#include <gtest/gtest.h>

#include <cstring>

#include "kerfline/remote_messages.hpp"

namespace {

TEST(BinaryMessage, GetDataHandsOutIndependentCopiesOfTheLatestData) {
  const unsigned char data[] = {1, 2, 0, 4};
  SOCKBINDATA in{4, -7, 8, const_cast<unsigned char*>(data), const_cast<char*>("first"), nullptr};
  CSocketDataObjectBinary m;
  m.SetData(&in);

  SOCKBINDATA out{};
  ASSERT_EQ(m.GetData(&out), 1);
  EXPECT_EQ(out.nSize, 4u);
  EXPECT_EQ(out.nData1, -7);
  EXPECT_EQ(out.nData2, 8);
  ASSERT_NE(out.pData, nullptr);
  EXPECT_NE(out.pData, static_cast<void*>(const_cast<unsigned char*>(data)));
  EXPECT_EQ(std::memcmp(out.pData, data, 4), 0);
  EXPECT_STREQ(out.szText1, "first");
  EXPECT_STREQ(out.szText2, "");
  static_cast<unsigned char*>(out.pData)[0] = 99;

  SOCKBINDATA again{};
  ASSERT_EQ(m.GetData(&again), 1);
  EXPECT_EQ(static_cast<unsigned char*>(again.pData)[0], 1);
  CSocketDataObjectBinary::FreeData(&out);
  CSocketDataObjectBinary::FreeData(&again);
  EXPECT_EQ(out.pData, nullptr);
  EXPECT_EQ(out.szText1, nullptr);
  EXPECT_EQ(m.GetData(nullptr), 0);
  // Setting empty data replaces the earlier bytes.
  in = SOCKBINDATA{0, 0, 0, nullptr, nullptr, nullptr};
  m.SetData(&in);
  ASSERT_EQ(m.GetData(&out), 1);
  EXPECT_EQ(out.nSize, 0u);
  EXPECT_EQ(out.pData, nullptr);
  CSocketDataObjectBinary::FreeData(&out);
}

TEST(MessageObjects, CopiesAreIndependent) {
  CSocketDataObjectStringList list;
  list.AddTail("a");
  CSocketDataObjectStringList copy(list);
  copy.AddTail("b");
  EXPECT_EQ(list.GetCount(), 1);
  EXPECT_EQ(copy.GetCount(), 2);
  list = copy;
  copy.AddTail("c");
  ASSERT_EQ(list.GetCount(), 2);
  EXPECT_STREQ(list.GetAt(1), "b");
  EXPECT_EQ(list.GetAt(2), nullptr);
  EXPECT_EQ(list.GetAt(-1), nullptr);

  CSocketDataObjectMsg msg;
  msg.SetMsg("keep");
  CSocketDataObjectMsg other;
  other = msg;
  msg.SetMsg(nullptr);
  EXPECT_STREQ(other.GetMsg(), "keep");
  EXPECT_STREQ(msg.GetMsg(), "");
}

TEST(MessageObjects, AssignmentAcrossClassesChangesNothing) {
  CSocketDataObjectState state;
  state.SetState(3);
  CSocketDataObjectInt number;
  number.SetData(4);
  static_cast<CSocketDataObject&>(state) = number;
  EXPECT_EQ(state.GetType(), CSocketDataObject::eSocketDataState);
  EXPECT_EQ(state.GetState(), 3);

  CSocketDataObject bare;
  EXPECT_EQ(bare.GetType(), CSocketDataObject::eSocketDataNone);
  bare = number;
  EXPECT_EQ(bare.GetType(), CSocketDataObject::eSocketDataInt);
  CSocketDataObject bare_copy(bare);
  EXPECT_EQ(bare_copy.GetType(), CSocketDataObject::eSocketDataInt);
}

}  // namespace
