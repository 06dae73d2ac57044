#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "fixtures/read_exactly.hpp"
#include "fixtures/table_names.hpp"
#include "platform/tcp_socket.hpp"

namespace kerfline::platform {
namespace {

// A listener on the IPv4 loopback and a client connected to it; a failure
// throws and fails the test.
struct Link {
  TcpListener listener = std::move(TcpListener::listen("127.0.0.1", 0).value());
  ByteStream client = std::move(tcp_connect("127.0.0.1", listener.port(), 2000).value());
};

struct LoopbackRow {
  const char* listen_on;
  const char* connect_to;
};

class TcpLoopback : public ::testing::TestWithParam<LoopbackRow> {};

TEST_P(TcpLoopback, ClientAndServerExchangeBytesBothWays) {
  auto listener = TcpListener::listen(GetParam().listen_on, 0);
  if (!listener && std::string(GetParam().listen_on) == "::1") GTEST_SKIP() << "no IPv6 loopback here";
  ASSERT_TRUE(listener) << listener.error().message;
  ASSERT_NE(listener->port(), 0);

  auto client = tcp_connect(GetParam().connect_to, listener->port(), 2000);
  ASSERT_TRUE(client) << client.error().message;
  auto accepted = listener->accept(2000);
  ASSERT_TRUE(accepted) << accepted.error().message;
  ASSERT_TRUE(accepted->has_value());
  ByteStream& server = **accepted;

  auto w = client->write("OI;", 3, 1000);
  ASSERT_TRUE(w);
  EXPECT_EQ(*w, 3u);
  EXPECT_EQ(test::read_exactly(server, 3), "OI;");
  ASSERT_TRUE(server.write("7475A\r", 6, 1000));
  EXPECT_EQ(test::read_exactly(*client, 6), "7475A\r");

  server.close();
  char c = 0;
  auto end = client->read(&c, 1, 2000);
  ASSERT_TRUE(end);
  EXPECT_TRUE(end->closed);
}

INSTANTIATE_TEST_SUITE_P(Addresses, TcpLoopback,
                         ::testing::Values(LoopbackRow{"127.0.0.1", "127.0.0.1"}, LoopbackRow{"::1", "::1"},
                                           LoopbackRow{"127.0.0.1", "localhost"}),
                         test::RowIndex{});

TEST(TcpSocket, ReadWithoutDataTimesOutWithoutClosing) {
  Link link;
  char buf[8];
  auto r = link.client.read(buf, sizeof(buf), 50);
  ASSERT_TRUE(r);
  EXPECT_TRUE(r->timed_out());
  auto pending = link.listener.accept(0);
  ASSERT_TRUE(pending);
  EXPECT_TRUE(pending->has_value());
  auto idle = link.listener.accept(30);
  ASSERT_TRUE(idle);
  EXPECT_FALSE(idle->has_value());
}

TEST(TcpSocket, ConnectFailuresAreErrorsWithText) {
  std::uint16_t closed_port = 0;
  {
    auto l = TcpListener::listen("127.0.0.1", 0);
    ASSERT_TRUE(l);
    closed_port = l->port();
  }
  auto refused = tcp_connect("127.0.0.1", closed_port, 2000);
  ASSERT_FALSE(refused);
  EXPECT_NE(refused.error().code, 0);
  EXPECT_NE(refused.error().message.find("connect 127.0.0.1"), std::string::npos);

  auto unknown = tcp_connect("no-such-host.invalid", 80, 2000);
  ASSERT_FALSE(unknown);
  EXPECT_NE(unknown.error().message.find("resolve no-such-host.invalid"), std::string::npos);
}

TEST(TcpSocket, WritingToAVanishedPeerIsAnErrorNotASignal) {
  Link link;
  {
    auto accepted = link.listener.accept(2000);
    ASSERT_TRUE(accepted && accepted->has_value());
  }  // the server side closes here
  const std::string block(std::size_t{64} * 1024, 'x');
  bool failed = false;
  for (int i = 0; i < 50 && !failed; ++i) failed = !link.client.write(block.data(), block.size(), 200);
  EXPECT_TRUE(failed);
}

TEST(TcpSocket, AWriteThePeerDoesNotTakeStopsAtTheTimeOut) {
  Link link;
  auto accepted = link.listener.accept(2000);
  ASSERT_TRUE(accepted && accepted->has_value());
  const std::string big(std::size_t{64} * 1024 * 1024, 'y');  // far beyond both socket buffers
  auto w = link.client.write(big.data(), big.size(), 100);
  ASSERT_TRUE(w);
  EXPECT_GT(*w, 0u);
  EXPECT_LT(*w, big.size());
}

}  // namespace
}  // namespace kerfline::platform
