#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>

#include "fixtures/table_names.hpp"
#include "loopback_server.hpp"
#include "remote/link.hpp"

namespace kerfline::remote {
namespace {

using test::bytes;
using test::LoopbackServer;
using test::read_exactly;
using test::wire;
using test::write_all;

struct HostileRow {
  std::string sent;
  bool close_after;
  ReceiveStatus status;
  bool still_connected;
};

class HostileServer : public ::testing::TestWithParam<HostileRow> {};

TEST_P(HostileServer, ReceiveEndsInBoundedTimeAndMemory) {
  std::promise<void> done;
  LoopbackServer server([&, gave_up = done.get_future().share()](platform::ByteStream& s) {
    write_all(s, GetParam().sent);
    if (GetParam().close_after) return;
    gave_up.wait();  // silence until the client has given up
  });
  Link link;
  link.set_receive_timeout(150);
  ASSERT_TRUE(link.connect("127.0.0.1", server.port(), nullptr));
  ReceiveStatus status{};
  EXPECT_EQ(link.receive(&status), nullptr);
  EXPECT_EQ(status, GetParam().status);
  EXPECT_EQ(link.connected(), GetParam().still_connected);
  EXPECT_LE(link.buffered(), GetParam().sent.size());
  if (!GetParam().still_connected) {
    EXPECT_EQ(link.receive(&status), nullptr);
    EXPECT_EQ(status, ReceiveStatus::NotConnected);
  }
  done.set_value();
}

INSTANTIATE_TEST_SUITE_P(Table, HostileServer,
                         ::testing::Values(
                             // A text of 4 GB.
                             HostileRow{bytes({2, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}), false,
                                        ReceiveStatus::Malformed, false},
                             // A text of 1 MB of which 3 bytes come, then silence.
                             HostileRow{bytes({2, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0, 0, 0x10, 0, 'a', 'b', 'c'}),
                                        false, ReceiveStatus::TimedOut, true},
                             // Nothing at all.
                             HostileRow{"", false, ReceiveStatus::TimedOut, true},
                             // Half a message, then the server closes.
                             HostileRow{bytes({5, 0, 0, 0, 2, 0, 0, 0, 9, 'a'}), true, ReceiveStatus::Closed,
                                        false},
                             HostileRow{"", true, ReceiveStatus::Closed, false}),
                         test::RowIndex());

TEST(RemoteLink, APartialMessageIsCompletedByTheNextReceive) {
  const std::string whole = bytes({1, 0, 0, 0, 2, 0, 0, 0, 7, 0, 0, 0});
  std::promise<void> step;
  LoopbackServer server([&, next = step.get_future().share()](platform::ByteStream& s) {
    write_all(s, whole.substr(0, 5));
    next.wait();
    write_all(s, whole.substr(5));
    (void)read_exactly(s, 1);
  });
  Link link;
  link.set_receive_timeout(100);
  ASSERT_TRUE(link.connect("127.0.0.1", server.port(), nullptr));
  ReceiveStatus status{};
  EXPECT_EQ(link.receive(&status), nullptr);
  EXPECT_EQ(status, ReceiveStatus::TimedOut);
  step.set_value();
  link.set_receive_timeout(5000);
  const auto m = link.receive(&status);
  ASSERT_EQ(status, ReceiveStatus::Message);
  const auto* state = dynamic_cast<const CSocketDataObjectState*>(m.get());
  ASSERT_NE(state, nullptr);
  EXPECT_EQ(state->GetState(), 2);
  EXPECT_EQ(state->GetJobNr(), 7u);
  link.release();
}

TEST(RemoteLink, UnknownTypeLeavesItsPayloadToBeReadNext) {
  CSocketDataObjectInt number;
  number.SetData(12);
  LoopbackServer server([&](platform::ByteStream& s) {
    write_all(s, bytes({0x63, 0, 0, 0}) + wire(number));
    (void)read_exactly(s, 1);
  });
  Link link;
  ASSERT_TRUE(link.connect("127.0.0.1", server.port(), nullptr));
  ReceiveStatus status{};
  EXPECT_EQ(link.receive(&status), nullptr);
  EXPECT_EQ(status, ReceiveStatus::UnknownType);
  const auto m = link.receive(&status);
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(wire(*m), wire(number));
  link.release();
}

TEST(RemoteLink, DiscardPendingDropsWholeUnaskedMessagesOnly) {
  CSocketDataObjectMsg unasked;
  unasked.SetMsg("news");
  CSocketDataObjectInt reply;
  reply.SetData(1);
  std::promise<void> sent;
  std::future<void> sent_future = sent.get_future();
  LoopbackServer server([&](platform::ByteStream& s) {
    write_all(s, wire(unasked) + wire(unasked) + wire(reply).substr(0, 6));
    sent.set_value();
    (void)read_exactly(s, 1);
    write_all(s, wire(reply).substr(6));
    (void)read_exactly(s, 1);
  });
  Link link;
  ASSERT_TRUE(link.connect("127.0.0.1", server.port(), nullptr));
  // Loopback bytes are in the client's buffer once the server's write
  // returned.
  sent_future.wait();
  EXPECT_EQ(link.discard_pending(), 2);
  EXPECT_TRUE(link.connected());
  EXPECT_EQ(link.buffered(), 6u);
  ASSERT_TRUE(link.send(reply));
  ReceiveStatus status{};
  const auto m = link.receive(&status);
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(wire(*m), wire(reply));
  link.release();
}

}  // namespace
}  // namespace kerfline::remote
