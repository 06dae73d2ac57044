// The client against the reference remote plot manager (kerfline-sim
// --remote) in its own process.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "fixtures/table_names.hpp"
#include "kerfline/device_settings.hpp"
#include "loopback_server.hpp"
#include "remote_sim_process.hpp"

namespace {

using kerfline::test::RemoteSim;
using kerfline::test::wire;

class Client : public CTcpIpClientDeviceSettings {
 public:
  using CTcpIpClientDeviceSettings::FreeSocketMem;
};

// big: include a message larger than one socket read.
std::vector<std::unique_ptr<CSocketDataObject>> sample_messages(bool big) {
  std::vector<std::unique_ptr<CSocketDataObject>> out;
  auto state = std::make_unique<CSocketDataObjectState>();
  state->SetState(7);
  state->SetJobNr(4000000000u);
  out.push_back(std::move(state));
  auto msg = std::make_unique<CSocketDataObjectMsg>();
  msg->SetMsg(std::string(big ? 70000 : 300, 'w').c_str());
  out.push_back(std::move(msg));
  auto binary = std::make_unique<CSocketDataObjectBinary>();
  const std::string data("\x00\x01\xFF payload", 11);
  SOCKBINDATA d{static_cast<uint32_t>(data.size()),
                -1,
                99,
                const_cast<char*>(data.data()),
                const_cast<char*>("job.plt"),
                const_cast<char*>("\xE4")};
  binary->SetData(&d);
  out.push_back(std::move(binary));
  auto list = std::make_unique<CSocketDataObjectStringList>();
  for (int i = 0; i < 300; ++i) list->AddTail(std::to_string(i).c_str());
  out.push_back(std::move(list));
  for (const int number : {2, 3, 4, 5}) {
    auto query = std::make_unique<CSocketDataObjectQuery>();
    query->SetQueryNr(number);
    query->SetJobNr(31);
    query->SetQueryParm("Cutter A");
    out.push_back(std::move(query));
  }
  auto number = std::make_unique<CSocketDataObjectInt>();
  number->SetData(-2147483647 - 1);
  out.push_back(std::move(number));
  return out;
}

struct SimRow {
  std::vector<std::string> options;
  int32_t disconnect;
  // Unasked news is only dropped when it has arrived before the next
  // request; with messages longer than a socket read that is a race.
  bool big;
};

class ReferenceServer : public ::testing::TestWithParam<SimRow> {};

TEST_P(ReferenceServer, EchoesEveryMessageTypeAndAnswersTheDisconnect) {
  RemoteSim sim(GetParam().options);
  ASSERT_GT(sim.port(), 0);
  Client c;
  c.SetReceiveTimeout(10000);
  ASSERT_EQ(c.Connect("localhost", sim.port() - 7867), 1);
  for (const auto& m : sample_messages(GetParam().big)) {
    ASSERT_EQ(c.SendMsg(m.get()), 1);
    const std::unique_ptr<CSocketDataObject> back(c.ReceiveMsg());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(wire(*back), wire(*m)) << "type " << m->GetType();
  }
  EXPECT_EQ(c.DisConnect(), GetParam().disconnect);
}

INSTANTIATE_TEST_SUITE_P(Table, ReferenceServer,
                         ::testing::Values(SimRow{{}, 1, true}, SimRow{{"--unasked", "3"}, 1, false},
                                           SimRow{{"--no-ack"}, 0, true}),
                         kerfline::test::RowIndex());

}  // namespace
