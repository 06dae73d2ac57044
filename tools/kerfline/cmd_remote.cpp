// `kerfline remote send`: one message to a remote plot manager, as a TCP/IP
// client device (or an explicit host and port) reaches it, with the reply
// printed as JSON.
#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands.hpp"
#include "kerfline/device_settings.hpp"
#include "kerfline/remote_messages.hpp"
#include "platform/paths.hpp"
#include "remote/message_json.hpp"

namespace kerfline::cli {
namespace {

constexpr int kPortBase = 7867;

struct RemoteOptions {
  std::string device;
  std::string host;
  int port = 0;
  std::string ini;
  int timeout_ms = 30000;
  std::vector<std::string> state;
  std::optional<std::string> msg;
  std::vector<std::string> query;
  std::optional<std::int32_t> number;
  std::vector<std::string> strings;
};

template <typename T>
bool parse_number(const std::string& text, T& out) {
  const char* end = text.data() + text.size();
  const auto [ptr, ec] = std::from_chars(text.data(), end, out);
  return ec == std::errc() && ptr == end;
}

// The message the options ask for, or null (with a message) when they do
// not name exactly one.
std::unique_ptr<CSocketDataObject> build_message(const RemoteOptions& o) {
  const int chosen = (o.state.empty() ? 0 : 1) + (o.msg ? 1 : 0) + (o.query.empty() ? 0 : 1) +
                     (o.number ? 1 : 0) + (o.strings.empty() ? 0 : 1);
  if (chosen != 1) {
    std::fprintf(stderr, "kerfline: give exactly one of --state, --msg, --query, --int, --strings\n");
    return nullptr;
  }
  if (!o.state.empty()) {
    auto m = std::make_unique<CSocketDataObjectState>();
    std::int32_t state = 0;
    std::uint32_t job = 0;
    if (!parse_number(o.state[0], state) || !parse_number(o.state[1], job)) {
      std::fprintf(stderr, "kerfline: --state expects two numbers (state and job)\n");
      return nullptr;
    }
    m->SetState(state);
    m->SetJobNr(job);
    return m;
  }
  if (o.msg) {
    auto m = std::make_unique<CSocketDataObjectMsg>();
    m->SetMsg(o.msg->c_str());
    return m;
  }
  if (!o.query.empty()) {
    auto m = std::make_unique<CSocketDataObjectQuery>();
    std::int32_t number = 0;
    if (!parse_number(o.query[0], number)) {
      std::fprintf(stderr, "kerfline: --query expects a query number first\n");
      return nullptr;
    }
    m->SetQueryNr(number);
    if (o.query.size() > 1) {
      std::uint32_t job = 0;
      if (number == 3 && !parse_number(o.query[1], job)) {
        std::fprintf(stderr, "kerfline: query 3 takes a job number\n");
        return nullptr;
      }
      m->SetJobNr(job);
      m->SetQueryParm(o.query[1].c_str());
    }
    return m;
  }
  if (o.number) {
    auto m = std::make_unique<CSocketDataObjectInt>();
    m->SetData(*o.number);
    return m;
  }
  auto m = std::make_unique<CSocketDataObjectStringList>();
  for (const std::string& s : o.strings) m->AddTail(s.c_str());
  return m;
}

int run_send(const RemoteOptions& o) {
  const std::unique_ptr<CSocketDataObject> message = build_message(o);
  if (!message) return kExitUsage;
  CTcpIpClientDeviceSettings client;
  std::string host = o.host;
  int offset = o.port - kPortBase;
  if (!o.device.empty()) {
    const std::string ini = o.ini.empty() ? platform::join_path(platform::home_dir(), "plotman.ini") : o.ini;
    client.SetDeviceName(o.device.c_str());
    client.ReadFromIni(ini.c_str());
    if (host.empty()) host = client.GetTCPIPHostName();
    if (host.empty()) host = client.GetTCPIPAddress();
    if (o.port == 0) offset = client.GetTCPIPPort();
  }
  if (host.empty()) {
    std::fprintf(stderr,
                 "kerfline: no host: name a device with \"TcpIpHostname\" or \"IP_ADDR\", or give --host\n");
    return kExitUsage;
  }
  client.SetReceiveTimeout(o.timeout_ms);
  if (client.Connect(host.c_str(), offset) != 1) {
    std::fprintf(stderr, "kerfline: cannot connect to %s port %d\n", host.c_str(), offset + kPortBase);
    return kExitFailure;
  }
  if (client.SendMsg(message.get()) != 1) {
    std::fprintf(stderr, "kerfline: the server did not take the message\n");
    return kExitFailure;
  }
  const std::unique_ptr<CSocketDataObject> reply(client.ReceiveMsg());
  if (!reply) {
    std::fprintf(stderr, "kerfline: no reply within %d ms\n", o.timeout_ms);
    client.DisConnect();
    return kExitFailure;
  }
  std::printf("%s\n", remote::message_json(*reply).c_str());
  if (client.DisConnect() != 1)
    std::fprintf(stderr, "kerfline: the server did not acknowledge the disconnect\n");
  return kExitOk;
}

}  // namespace

void register_remote(CLI::App& app, CommandList& commands) {
  CLI::App* remote = app.add_subcommand("remote", "Talk to a remote plot manager (TCP/IP client devices)");
  remote->require_subcommand(1);
  auto o = std::make_shared<RemoteOptions>();
  CLI::App* send = remote->add_subcommand("send", "Send one message, print the reply as JSON, disconnect");
  send->add_option("device", o->device, "Device whose settings in plotman.ini give host and \"IP_PORT\"");
  send->add_option("--host", o->host, "Host name or address instead of the device's");
  send->add_option("--port", o->port, "TCP port itself (not the \"IP_PORT\" offset) instead of the device's")
      ->check(CLI::Range(1, 65535));
  send->add_option("--ini", o->ini, "INI file of the device (default: plotman.ini in the suite directory)");
  send->add_option("--timeout", o->timeout_ms, "Milliseconds to wait for the reply (default 30000)")
      ->check(CLI::Range(1, 3600000));
  send->add_option("--state", o->state, "State message: STATE JOB")->expected(2);
  send->add_option("--msg", o->msg, "Msg message with this text");
  send->add_option("--query", o->query, "Query message: NUMBER [PARAM (2, 5) | JOB (3)]")->expected(1, 2);
  send->add_option("--int", o->number, "Int message with this value");
  send->add_option("--strings", o->strings, "StringList message with these texts")->expected(1, -1);
  commands.add(send, [o] { return run_send(*o); });
}

}  // namespace kerfline::cli
