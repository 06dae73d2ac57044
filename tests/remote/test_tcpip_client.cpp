#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "driver/text_dictionary.hpp"
#include "fixtures/host_recorder.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "kerfline/device_settings.hpp"
#include "loopback_server.hpp"
#include "platform/ini.hpp"

namespace kerfline::remote {
namespace {

using test::LoopbackServer;
using test::read_exactly;
using test::write_all;

// The settings with their protected members reachable, as a host's subclass
// would reach them.
class Client : public CTcpIpClientDeviceSettings {
 public:
  using CTcpIpClientDeviceSettings::FreeSocketMem;
  using CTcpIpClientDeviceSettings::ProcessPendingRead;
};

// "IP_PORT" for a server listening on `port`.
int32_t offset_of(std::uint16_t port) { return static_cast<int32_t>(port) - 7867; }

// String-table texts for the retry question, as the frame would install them.
class RetryTexts : public ::testing::Test {
 protected:
  RetryTexts() {
    driver::TextServices services;
    services.resource_text = [](int table, std::uint32_t id) -> std::optional<std::string> {
      if (table == 1 && id == 1604) return std::string("Cannot reach the plot manager. Again?");
      if (table == 1 && id == 1200) return std::string("Plot manager");
      return std::nullopt;
    };
    driver::install_text_services(services);
  }
  ~RetryTexts() override { driver::install_text_services({}); }
};

// A port on which nothing listens (a listener's, closed again).
std::uint16_t dead_port() {
  auto listener = platform::TcpListener::listen("127.0.0.1", 0);
  EXPECT_TRUE(listener);
  return listener ? listener->port() : 1;
}

// No gives up after one question; Yes tries again, and the server comes up
// while the second question is shown.
TEST_F(RetryTexts, NoGivesUpAndYesTriesAgainUntilTheServerAnswers) {
  const std::uint16_t port = dead_port();
  std::optional<platform::TcpListener> listener;
  test::HostRecorder host;
  host.queue_answer(KERFLINE_IDNO);
  host.default_answer = KERFLINE_IDYES;
  host.after_box = [&] {
    if (host.boxes.size() != 2) return;
    auto l = platform::TcpListener::listen("127.0.0.1", port);
    if (l) listener.emplace(std::move(*l));
  };
  Client c;
  EXPECT_EQ(c.Connect("127.0.0.1", offset_of(port)), 0);  // No
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0].text, "Cannot reach the plot manager. Again?");
  EXPECT_EQ(host.boxes[0].caption, "Plot manager:");
  EXPECT_EQ(host.boxes[0].type, KERFLINE_MB_YESNO | KERFLINE_MB_ICONQUESTION);
  EXPECT_EQ(c.SendMsg(std::make_unique<CSocketDataObjectInt>().get()), 0);
  EXPECT_EQ(c.ReceiveMsg(), nullptr);
  EXPECT_EQ(c.Connect("127.0.0.1", offset_of(port)), 1);  // Yes, then connected
  EXPECT_EQ(host.boxes.size(), 2u);
  EXPECT_EQ(c.Connect("127.0.0.1", offset_of(port)), 1);  // already connected: no question
  EXPECT_EQ(host.boxes.size(), 2u);
  c.FreeSocketMem();
}

TEST(TcpIpClient, IpPortIsAnOffsetFromTheBasePort) {
  // "IP_PORT" 3 contacts 7870, read from a real INI file.
  auto listener = platform::TcpListener::listen("127.0.0.1", 7870);
  if (!listener) GTEST_SKIP() << "port 7870 is taken here: " << listener.error().message;
  test::TempDir dir;
  const std::string ini = dir.str() + "plotman.ini";
  platform::ini::write_string("Remote", "IP_PORT", "3", ini);
  platform::ini::write_string("Remote", "TcpIpHostname", "127.0.0.1", ini);
  Client c;
  c.SetDeviceName("Remote");
  c.ReadFromIni(ini.c_str());
  ASSERT_EQ(c.GetTCPIPPort(), 3);
  ASSERT_EQ(c.Connect(c.GetTCPIPHostName(), c.GetTCPIPPort()), 1);
  auto accepted = listener->accept(2000);
  ASSERT_TRUE(accepted);
  EXPECT_TRUE(accepted->has_value());
  c.FreeSocketMem();
}

struct DisconnectRow {
  std::string answer;  // what the server sends to the disconnect request
  bool close_instead;
  int32_t result;
};

class Disconnect : public ::testing::TestWithParam<DisconnectRow> {};

TEST_P(Disconnect, SendsStateOneAndReleasesEitherWay) {
  LoopbackServer server([](platform::ByteStream& s) {
    const std::string request = read_exactly(s, 12);
    EXPECT_EQ(request, std::string("\x01\0\0\0\x01\0\0\0\0\0\0\0", 12));
    if (!GetParam().close_instead) write_all(s, GetParam().answer);
  });
  Client c;
  c.SetReceiveTimeout(2000);
  ASSERT_EQ(c.Connect("127.0.0.1", offset_of(server.port())), 1);
  EXPECT_EQ(c.DisConnect(), GetParam().result);
  EXPECT_EQ(c.SendMsg(std::make_unique<CSocketDataObjectInt>().get()), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Disconnect,
    ::testing::Values(DisconnectRow{std::string("\x01\0\0\0\x01\0\0\0\0\0\0\0", 12), false, 1},
                      DisconnectRow{std::string("\x01\0\0\0\x07\0\0\0\x05\0\0\0", 12), false, 1},
                      DisconnectRow{std::string("\x06\0\0\0\x00\0\0\0", 8), false, 0},
                      DisconnectRow{"", true, 0}),
    test::RowIndex());

TEST(TcpIpClient, PortsOutsideTheTcpRangeAreRefused) {
  test::HostRecorder host;
  Client c;
  EXPECT_EQ(c.Connect("127.0.0.1", 65535 - 7867 + 1), 0);
  EXPECT_EQ(c.Connect("127.0.0.1", -7867), 0);
  EXPECT_TRUE(host.boxes.empty());
}

}  // namespace
}  // namespace kerfline::remote
