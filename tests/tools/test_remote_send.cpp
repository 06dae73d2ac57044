// `kerfline remote send` against the reference server in its own process.
#include <gtest/gtest.h>

#include <string>

#include "cli_runner.hpp"
#include "fixtures/temp_dir.hpp"
#include "platform/ini.hpp"
#ifndef _WIN32
#  include "remote/remote_sim_process.hpp"
#endif

namespace kerfline::test {
namespace {

TEST(RemoteSend, PrintsTheReplyAsJson) {
#ifdef _WIN32
  GTEST_SKIP() << "the reference server is kerfline-sim, started the POSIX way";
#else
  const struct {
    std::string args;  // {DEV}: by device; {ADDR}: --host and --port
    int exit_code;
    std::string out;
  } rows[] = {
      {"{DEV} --state 3 9", 0, "{\"type\":\"State\",\"state\":3,\"job\":9}\n"},
      {R"({DEV} --msg "say \"hi\"")", 0, "{\"type\":\"Msg\",\"text\":\"say \\\"hi\\\"\"}\n"},
      {"{ADDR} --query 5 Cutter", 0, "{\"type\":\"Query\",\"query\":5,\"param\":\"Cutter\"}\n"},
      {"{ADDR} --query 3 44", 0, "{\"type\":\"Query\",\"query\":3,\"job\":44}\n"},
      {"{ADDR} --query 1 ignored", 0, "{\"type\":\"Query\",\"query\":1}\n"},
      {"{DEV} --int -7", 0, "{\"type\":\"Int\",\"value\":-7}\n"},
      {R"({DEV} --strings a "" c)", 0, "{\"type\":\"StringList\",\"strings\":[\"a\",\"\",\"c\"]}\n"},
      {"{DEV} --int 1 --msg x", 2,
       "kerfline: give exactly one of --state, --msg, --query, --int, --strings\n"},
      {"{DEV} --query 3 job", 2, "kerfline: query 3 takes a job number\n"},
  };
  RemoteSim sim({});
  ASSERT_GT(sim.port(), 0);
  const TempDir home;
  platform::ini::write_string("Remote 1", "IP_PORT", std::to_string(sim.port() - 7867).c_str(),
                              home.str("plotman.ini"));
  platform::ini::write_string("Remote 1", "TcpIpHostname", "localhost", home.str("plotman.ini"));
  for (const auto& row : rows) {
    const CliResult r =
        run_cli("--home " + home.str() + " remote send " +
                expand(row.args, {{"{DEV}", "\"Remote 1\""},
                                  {"{ADDR}", "--host 127.0.0.1 --port " + std::to_string(sim.port())}}));
    EXPECT_EQ(r.exit_code, row.exit_code) << row.args << "\n" << r.out;
    EXPECT_EQ(r.out, row.out) << row.args;
  }
#endif
}

}  // namespace
}  // namespace kerfline::test
