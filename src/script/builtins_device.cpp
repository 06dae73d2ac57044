// Msg and the functions that reach out of the template: the device dialogue
// (ReadVar and its kin, WaitCmd, ZundToolOffset), private-profile and
// registry access, TCP sockets, mail, message boxes and job termination.
// What each one takes, gives and waits for is in docs/script-functions.md.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "platform/clock.hpp"
#include "platform/host_hooks.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"
#include "platform/process.hpp"
#include "platform/registry.hpp"
#include "platform/tcp_socket.hpp"
#include "platform/temp_file.hpp"
#include "script/answer_format.hpp"
#include "script/builtins.hpp"
#include "script/evaluator.hpp"

namespace kerfline::script {
namespace {

constexpr std::uint32_t kDefaultTimeoutMs = 2000;
constexpr std::uint32_t kMaxTimeoutMs = 3600U * 1000U;
constexpr std::uint32_t kConnectTimeoutMs = 5000;
constexpr std::uint32_t kSliceMs = 50;  // how soon a socket wait sees an escape
constexpr std::size_t kMaxSocketAnswer = 4096;
constexpr std::size_t kMaxMailAttachment = 1U << 20;
constexpr std::size_t kMaxRunningMails = 16;

// A time-out given in seconds (fractions allowed), within 0 .. one hour.
std::uint32_t seconds_to_ms(const std::string& text, std::uint32_t fallback) {
  if (text.empty() || !is_number_text(text)) return fallback;
  const double s = std::strtod(text.c_str(), nullptr);
  if (!(s > 0)) return 0;
  return static_cast<std::uint32_t>(std::min(s * 1000.0, static_cast<double>(kMaxTimeoutMs)));
}

std::optional<std::string> ask(Evaluator& e, const char* function, const DialogueRequest& request) {
  DeviceDialogue* device = e.device();
  if (device == nullptr) {
    e.trace(std::string(function) + ": no device named for the evaluation");
    return std::nullopt;
  }
  if (e.escaped()) return std::nullopt;
  std::optional<std::string> answer;
  {
    const Evaluator::DeviceRead waiting(e);
    answer = device->query(e, request);
  }
  e.trace(std::string(function) + ": " + device->name() + " <- \"" + request.instruction + "\" -> " +
          (answer ? "\"" + std::string(strip_line_end(*answer)) + "\"" : std::string("no answer")));
  return answer;
}

void store_fields(Evaluator& e, const AnswerMatch& m) {
  for (const auto& [name, value] : m.fields) e.set_script_variable(name, value);
}

// The value the format reads from the answer, or the default; the variable,
// when named, gets the same.
std::string read_into(Evaluator& e, const char* function, const DialogueRequest& request,
                      const std::string& format, const std::string& var, const std::string& fallback) {
  std::string value = fallback;
  if (const auto answer = ask(e, function, request)) {
    const AnswerMatch m = match_answer(format, *answer);
    if (m.matched) {
      store_fields(e, m);
      value = m.value;
    } else {
      e.trace(std::string(function) + ": answer does not match \"" + format + "\"");
    }
  }
  if (!var.empty()) e.set_script_variable(var, value);
  return value;
}

// "op number": ==, !=, <, >, <=, >=, & (all bits of the number set); a bare
// value means ==. Numbers compare as numbers, other texts as texts.
bool condition_holds(const std::string& value, std::string cond) {
  const auto first = cond.find_first_not_of(" \t");
  cond = first == std::string::npos ? "" : cond.substr(first);
  if (cond.empty()) return true;
  static constexpr std::array<std::string_view, 7> kOps{"<=", ">=", "==", "!=", "<", ">", "&"};
  std::string_view op = "==";
  for (std::string_view candidate : kOps) {
    if (cond.compare(0, candidate.size(), candidate) == 0) {
      op = candidate;
      cond.erase(0, candidate.size());
      break;
    }
  }
  const auto b = cond.find_first_not_of(" \t");
  const auto e = cond.find_last_not_of(" \t");
  const std::string rhs = b == std::string::npos ? "" : cond.substr(b, e - b + 1);
  if (op == "&") return (text_to_dword(value) & text_to_dword(rhs)) == text_to_dword(rhs);
  const bool numeric = !value.empty() && !rhs.empty() && is_number_text(value) && is_number_text(rhs);
  const double x = std::strtod(value.c_str(), nullptr);
  const double y = std::strtod(rhs.c_str(), nullptr);
  if (op == "==") return numeric ? x == y : value == rhs;
  if (op == "!=") return numeric ? x != y : value != rhs;
  if (!numeric) return false;
  if (op == "<=") return x <= y;
  if (op == ">=") return x >= y;
  if (op == "<") return x < y;
  return x > y;
}

// --- Sockets -------------------------------------------------------------

platform::ByteStream* socket_for(Evaluator& e, const std::string& number) {
  DeviceSession& s = e.session();
  int n = text_to_int(number);
  if (n == 0) n = s.current_socket;
  if (n < 1 || n > DeviceSession::kMaxSockets) return nullptr;
  platform::ByteStream& stream = s.sockets[static_cast<std::size_t>(n - 1)];
  return stream.is_open() ? &stream : nullptr;
}

bool socket_send(Evaluator& e, platform::ByteStream& s, const std::string& text, std::size_t& written) {
  written = 0;
  if (text.empty()) return true;
  const auto r = s.write(text.data(), text.size(), static_cast<int>(kDefaultTimeoutMs));
  if (!r.ok()) {
    e.trace("socket: write failed: " + r.error().message);
    s.close();
    return false;
  }
  written = r.value();
  return written == text.size();
}

// Reads until a line end, the time-out, an escape or kMaxSocketAnswer bytes.
std::optional<std::string> socket_receive(Evaluator& e, platform::ByteStream& s, std::uint32_t timeout_ms) {
  const std::uint64_t deadline = platform::tick_ms64() + timeout_ms;
  std::string answer;
  char buf[512];
  const Evaluator::DeviceRead waiting(e);
  while (answer.size() < kMaxSocketAnswer && !e.escaped()) {
    const std::uint64_t now = platform::tick_ms64();
    if (now >= deadline) break;
    const auto slice = static_cast<int>(std::min<std::uint64_t>(kSliceMs, deadline - now));
    const auto r = s.read(buf, std::min(sizeof buf, kMaxSocketAnswer - answer.size()), slice);
    if (!r.ok() || r.value().closed) {
      s.close();
      break;
    }
    answer.append(buf, r.value().count);
    if (answer.find_first_of("\r\n") != std::string::npos) return answer;
  }
  if (answer.empty()) return std::nullopt;
  return answer;
}

std::string socket_query(Evaluator& e, const char* function, const std::string& send,
                         const std::string& format, const std::string& var, std::uint32_t timeout_ms) {
  std::string value;
  platform::ByteStream* s = socket_for(e, "");
  std::size_t written = 0;
  if (s == nullptr) {
    e.trace(std::string(function) + ": no open socket");
  } else if (socket_send(e, *s, send, written)) {
    const auto answer = socket_receive(e, *s, timeout_ms);
    e.trace(std::string(function) + ": \"" + send + "\" -> " +
            (answer ? "\"" + std::string(strip_line_end(*answer)) + "\"" : std::string("no answer")));
    if (answer) {
      const AnswerMatch m = match_answer(format, *answer);
      if (m.matched) {
        store_fields(e, m);
        value = m.value;
      }
    }
  }
  if (!var.empty()) e.set_script_variable(var, value);
  return value;
}

// --- Mail ----------------------------------------------------------------

std::string mail_message(const std::array<std::string, 6>& a) {
  std::string m = "To: " + a[1] + "\r\n";
  if (!a[2].empty()) m += "Cc: " + a[2] + "\r\n";
  m += "Subject: " + a[3] + "\r\n\r\n" + a[4] + "\r\n";
  if (!a[5].empty()) {
    std::string attached;
    if (read_whole_file(script_path(a[5]), attached) && attached.size() <= kMaxMailAttachment) {
      m += "\r\n--- " + a[5] + " ---\r\n" + attached + "\r\n";
    } else {
      m += "\r\n(" + a[5] + " could not be attached)\r\n";
    }
  }
  return m;
}

}  // namespace

namespace builtin {

std::string msg(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [text, title] = pop_args<2>(args);
  platform::host::message_box(text, title, KERFLINE_MB_OK);
  return {};
}

std::string read_var_ret(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [instr, expected, flags] = pop_args<3>(args);
  const auto answer = ask(e, "ReadVarRet", {instr, kDefaultTimeoutMs, '\0', false});
  if (!answer) return "0";
  if (expected.empty()) return "1";
  std::string got(*answer);
  std::string want = expected;
  if ((text_to_dword(flags) & 1U) != 0) {
    std::transform(got.begin(), got.end(), got.begin(), [](unsigned char c) { return std::toupper(c); });
    std::transform(want.begin(), want.end(), want.begin(), [](unsigned char c) { return std::toupper(c); });
  }
  return truth_text(got.find(want) != std::string::npos);
}

std::string read_var(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [instr, format, var, fallback] = pop_args<4>(args);
  return read_into(e, "ReadVar", {instr, kDefaultTimeoutMs, '\0', false}, format, var, fallback);
}

std::string read_var_term(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [instr, format, terminator, fallback] = pop_args<4>(args);
  const char t = terminator.empty() ? '\0' : terminator.front();
  return read_into(e, "ReadVarTerm", {instr, kDefaultTimeoutMs, t, false}, format, "", fallback);
}

std::string read_var_t(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [instr, format, var, fallback, timeout] = pop_args<5>(args);
  return read_into(e, "ReadVarT", {instr, seconds_to_ms(timeout, kDefaultTimeoutMs), '\0', false}, format,
                   var, fallback);
}

std::string read_var_tm(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [instr, format, var, fallback, timeout] = pop_args<5>(args);
  return read_into(e, "ReadVarTM", {instr, seconds_to_ms(timeout, kDefaultTimeoutMs), '\0', true}, format,
                   var, fallback);
}

std::string wait_cmd(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [instr, format, cond, max_wait] = pop_args<4>(args);
  const std::uint64_t deadline = platform::tick_ms64() + seconds_to_ms(max_wait, 0);
  for (;;) {
    const std::uint64_t now = platform::tick_ms64();
    const auto left = static_cast<std::uint32_t>(deadline > now ? deadline - now : 0);
    const auto answer =
        ask(e, "WaitCmd", {instr, std::min(kDefaultTimeoutMs, std::max(left, 1U)), '\0', false});
    if (answer) {
      const AnswerMatch m = match_answer(format, *answer);
      if (m.matched && condition_holds(m.value, cond)) return "1";
    }
    const std::uint64_t after = platform::tick_ms64();
    if (after >= deadline || e.escaped()) return "0";
    const Evaluator::DeviceRead waiting(e);
    if (e.wait(static_cast<std::uint32_t>(std::min<std::uint64_t>(1000, deadline - after))) ==
        WaitResult::kEscaped) {
      return "0";
    }
  }
}

std::string wrt_pps(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [file, section, key, value] = pop_args<4>(args);
  if (file.empty() || section.empty() || key.empty()) return "0";
  return truth_text(platform::ini::write_value(section, key, value, file));
}

std::string read_pps(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [file, section, key, fallback] = pop_args<4>(args);
  if (file.empty()) return fallback;
  return platform::ini::read_string(section, key, fallback, file);
}

std::string read_reg(ArgStack& args, const FunctionRecord&, Evaluator&) {
  auto [key, fallback] = pop_args<2>(args);
  // A template writes a backslash as four; a slash is accepted instead.
  std::replace(key.begin(), key.end(), '/', '\\');
  return platform::read_registry_value(key).value_or(fallback);
}

std::string send_mail(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const std::array<std::string, 6> a = pop_args<6>(args);
  if (!is_true(a[0])) return "0";
  DeviceSession& session = e.session();
  session.collect_finished_mails();
  const std::string program = platform::ini::read_string("Mail", "Program", "", "plotman.ini");
  if (program.empty() || a[1].empty()) {
    e.trace("SendMail: no mail program configured ([Mail] Program= in plotman.ini) or no address");
    return "0";
  }
  if (session.mails.size() >= kMaxRunningMails) {
    e.trace("SendMail: too many mail programs still running");
    return "0";
  }
  const auto file = platform::create_unique_file(platform::home_dir(), "mail", ".txt");
  if (!file.ok()) return "0";
  {
    std::ofstream out(file.value(), std::ios::binary);
    out << mail_message(a);
  }
  std::string command = program;
  const std::string quoted = "\"" + file.value() + "\"";
  if (const auto at = command.find("%f"); at != std::string::npos) {
    command.replace(at, 2, quoted);
  } else {
    command += " " + quoted;
  }
  auto child = platform::ChildProcess::spawn(command, 0);
  if (!child.ok()) {
    e.trace("SendMail: cannot start \"" + program + "\": " + child.error().message);
    std::error_code ignored;
    std::filesystem::remove(file.value(), ignored);
    return "0";
  }
  session.mails.push_back({std::move(child.value()), file.value()});
  e.trace("SendMail: handed to \"" + program + "\"");
  return "1";
}

std::string zund_tool_offset(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  args.pop();
  const std::string* instr = e.find_variable("%ZundToolOffset%");
  const auto answer =
      ask(e, "ZundToolOffset", {instr != nullptr ? *instr : "OT;", kDefaultTimeoutMs, '\0', false});
  const AnswerMatch m = answer ? match_answer("%[!ztoX!]%,%[!ztoY!]%", *answer) : AnswerMatch{};
  const bool ok =
      m.matched && m.fields.size() == 2 && !m.fields[0].second.empty() && !m.fields[1].second.empty();
  e.set_script_variable("ztoX", ok ? m.fields[0].second : "0");
  e.set_script_variable("ztoY", ok ? m.fields[1].second : "0");
  return truth_text(ok);
}

std::string read_socket(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [send, format, var] = pop_args<3>(args);
  return socket_query(e, "ReadSocket", send, format, var, kDefaultTimeoutMs);
}

std::string query_socket(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [send, format, var, max_time] = pop_args<4>(args);
  return socket_query(e, "QuerySocket", send, format, var, seconds_to_ms(max_time, kDefaultTimeoutMs));
}

std::string write_socket(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [send, var] = pop_args<2>(args);
  platform::ByteStream* s = socket_for(e, "");
  std::size_t written = 0;
  const bool ok = s != nullptr && socket_send(e, *s, send, written);
  if (!var.empty()) e.set_script_variable(var, s == nullptr ? "-1" : std::to_string(written));
  return truth_text(ok);
}

std::string create_socket(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [address, port_text] = pop_args<2>(args);
  DeviceSession& session = e.session();
  const auto free_slot = std::find_if(session.sockets.begin(), session.sockets.end(),
                                      [](const platform::ByteStream& s) { return !s.is_open(); });
  const std::int32_t port = text_to_int(port_text);
  if (free_slot == session.sockets.end() || port < 1 || port > 65535 || address.empty()) {
    e.trace("CreateSocket: no free socket or bad address " + address + ":" + port_text);
    return "0";
  }
  // Connects in short attempts so that an escape is seen; a refusal ends at once.
  const std::uint64_t deadline = platform::tick_ms64() + kConnectTimeoutMs;
  for (;;) {
    const std::uint64_t start = platform::tick_ms64();
    if (start >= deadline || e.escaped()) break;
    const auto slice = static_cast<int>(std::min<std::uint64_t>(250, deadline - start));
    auto stream = platform::tcp_connect(address, static_cast<std::uint16_t>(port), slice);
    if (stream.ok()) {
      *free_slot = std::move(stream.value());
      session.current_socket = static_cast<int>(free_slot - session.sockets.begin()) + 1;
      std::string line = "CreateSocket: ";
      line.append(address).append(":").append(port_text).append(" is socket ");
      line += std::to_string(session.current_socket);
      e.trace(line);
      return std::to_string(session.current_socket);
    }
    if (platform::tick_ms64() - start + 20 < static_cast<std::uint64_t>(slice)) {
      std::string line = "CreateSocket: ";
      line.append(address).append(":").append(port_text).append(": ").append(stream.error().message);
      e.trace(line);
      break;
    }
  }
  return "0";
}

std::string close_socket(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  const auto [number, flags] = pop_args<2>(args);
  DeviceSession& session = e.session();
  if (flags.find("All") != std::string::npos) {
    const bool any = std::any_of(session.sockets.begin(), session.sockets.end(),
                                 [](const platform::ByteStream& s) { return s.is_open(); });
    for (platform::ByteStream& s : session.sockets) s.close();
    session.current_socket = 0;
    return truth_text(any);
  }
  platform::ByteStream* s = socket_for(e, number);
  if (s == nullptr) return "0";
  s->close();
  return "1";
}

std::string msg_ext(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [text, title, flags] = pop_args<3>(args);
  return std::to_string(platform::host::message_box(text, title, text_to_dword(flags)));
}

std::string term_job(ArgStack& args, const FunctionRecord&, Evaluator& e) {
  args.pop();
  e.trace("TermJob: evaluation ended");
  e.escape();
  return {};
}

}  // namespace builtin
}  // namespace kerfline::script
