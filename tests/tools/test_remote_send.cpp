// `kerfline remote send` against the reference server in its own process.
#include <gtest/gtest.h>

#include <string>

#include "cli_runner.hpp"
#include "fixtures/table_names.hpp"
#include "fixtures/temp_dir.hpp"
#include "platform/ini.hpp"
#ifndef _WIN32
#  include "remote/remote_sim_process.hpp"
#endif

namespace kerfline::test {
namespace {

#ifdef _WIN32
TEST(RemoteSend, PrintsTheReplyAsJson) {
  GTEST_SKIP() << "the reference server is kerfline-sim, started the POSIX way";
}
#else

struct SendRow {
  std::string args;  // {DEV}: by device; {ADDR}: --host and --port
  int exit_code;
  std::string out;
};

class RemoteSend : public ::testing::TestWithParam<SendRow> {};

TEST_P(RemoteSend, PrintsTheReplyAsJson) {
  RemoteSim sim({});
  ASSERT_GT(sim.port(), 0);
  TempDir home;
  const std::string ini = home.str() + "plotman.ini";
  platform::ini::write_string("Remote 1", "IP_PORT", std::to_string(sim.port() - 7867).c_str(), ini);
  platform::ini::write_string("Remote 1", "TcpIpHostname", "localhost", ini);
  std::string args = GetParam().args;
  if (const auto at = args.find("{DEV}"); at != std::string::npos) args.replace(at, 5, "\"Remote 1\"");
  if (const auto at = args.find("{ADDR}"); at != std::string::npos) {
    args.replace(at, 6, "--host 127.0.0.1 --port " + std::to_string(sim.port()));
  }
  const CliResult r = run_cli("--home " + home.str() + " remote send " + args);
  EXPECT_EQ(r.exit_code, GetParam().exit_code) << r.out;
  EXPECT_EQ(r.out, GetParam().out);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RemoteSend,
    ::testing::Values(
        SendRow{"{DEV} --state 3 9", 0, "{\"type\":\"State\",\"state\":3,\"job\":9}\n"},
        SendRow{R"({DEV} --msg "say \"hi\"")", 0, "{\"type\":\"Msg\",\"text\":\"say \\\"hi\\\"\"}\n"},
        SendRow{"{ADDR} --query 5 Cutter", 0, "{\"type\":\"Query\",\"query\":5,\"param\":\"Cutter\"}\n"},
        SendRow{"{ADDR} --query 3 44", 0, "{\"type\":\"Query\",\"query\":3,\"job\":44}\n"},
        SendRow{"{ADDR} --query 1 ignored", 0, "{\"type\":\"Query\",\"query\":1}\n"},
        SendRow{"{DEV} --int -7", 0, "{\"type\":\"Int\",\"value\":-7}\n"},
        SendRow{R"({DEV} --strings a "" c)", 0, "{\"type\":\"StringList\",\"strings\":[\"a\",\"\",\"c\"]}\n"},
        SendRow{"{DEV} --int 1 --msg x", 2,
                "kerfline: give exactly one of --state, --msg, --query, --int, --strings\n"},
        SendRow{"{DEV} --query 3 job", 2, "kerfline: query 3 takes a job number\n"}),
    RowIndex());
#endif

}  // namespace
}  // namespace kerfline::test
