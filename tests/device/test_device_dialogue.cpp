// The script's device functions and the device readers against a device
// on a line (a scripted peer, or kerfline-sim) and kerfline-sim
// on a loopback port; profile, registry, mail and the host's hooks.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

#include "../sim/sim_process.hpp"
#include "port_fixture.hpp"
#include "script/answer_format.hpp"

using kerfline::test::DeviceEnv;
using kerfline::test::DriverVars;
using kerfline::test::Line;
using kerfline::test::SimProcess;
using namespace std::chrono_literals;

namespace {

// DoEval's text ("" for null); the evaluator talks to `device`.
std::string eval(const std::string& text, VMV6DRV* drv = nullptr, const char* device = "Dev") {
  InitEval(0, 0, nullptr);
  SetEvalDevice(drv, device);
  const std::unique_ptr<char, decltype(&FreeEval)> out(DoEval(text.c_str()), FreeEval);
  std::string result = out ? out.get() : "";
  SetEvalDevice(nullptr, nullptr);
  return result;
}

std::string var(const char* name) {
  const std::unique_ptr<char, decltype(&FreeEvalVar)> v(GetEvalVar(name), FreeEvalVar);
  return v ? v.get() : "";
}

// The evaluator's device "Dev" on a line whose far end the test serves.
template <typename Row>
class OnLine : public ::testing::TestWithParam<Row> {
 protected:
  OnLine() { env.devices["Dev"] = {2, line.path(), "", "", "", 0}; }
  DeviceEnv env;
  Line line;
};

struct DialogueRow {
  std::string call;
  std::string answer;  // what the device says after the instruction
  std::string sent;    // the instruction it must have received
  std::string result;
  const char* variable;
  std::string value;
};
class Dialogue : public OnLine<DialogueRow> {};

const DialogueRow kDialogue[] = {
    {R"(&ReadVar("OH;", "%[0-9]%", "PosX", "d"))", "123,456\r", "OH;", "123", "PosX", "123"},
    {R"(&ReadVar("OH;", "%[0-9]%", "PosX", "d"))", "?abc\r", "OH;", "d", "PosX", "d"},
    {R"(&ReadVarTerm("OA;", "%[0-9]%", ";", "0"))", "77;", "OA;", "77", nullptr, ""},
    {R"(&ReadVarT("OA;", "%[!X!]%,%[!Y!]%,%[!%s!]%", "", "0", 1))", "10,-20,1\r", "OA;", "10", "Y", "-20"},
    {R"(&ReadVarTM("OP;", "%[-0-9]%,", "P", "0", 1))", "-5,3\r", "OP;", "-5", "P", "-5"},
    {R"(&ReadVarRet("OI;", "sim", 1))", "KERFLINE-SIM\r", "OI;", "1", nullptr, ""},
    {R"(&ReadVarRet("OI;", "sim", 0))", "KERFLINE-SIM\r", "OI;", "0", nullptr, ""},
    {R"(&WaitCmd("OS;", "%[0-9]%", "& 16", 1))", "24\r", "OS;", "1", nullptr, ""},
    {R"(&WaitCmd("OS;", "%[0-9]%", ">= 32", 1))", "24\r", "OS;", "0", nullptr, ""},
    {R"(&ZundToolOffset(0))", "1.5,-2\r", "OT;", "1", "ztoY", "-2"},
    {R"(&ZundToolOffset(0))", "none\r", "OT;", "0", "ztoX", "0"},
};

TEST_P(Dialogue, AsksTheDeviceAndReadsTheAnswer) {
  const DialogueRow& row = GetParam();
  line.serve(';', 0ms, row.answer);
  EXPECT_EQ(eval(row.call), row.result);
  if (row.variable != nullptr) {
    EXPECT_EQ(var(row.variable), row.value);
  }
  EXPECT_EQ(line.stop().substr(0, row.sent.size()), row.sent);
}
INSTANTIATE_TEST_SUITE_P(Rows, Dialogue, ::testing::ValuesIn(kDialogue));

struct FormatRow {
  const char* format;
  const char* answer;
  bool matched;
  const char* value;
  const char* last_field;  // value of the last named field, "" none
};
class Format : public ::testing::TestWithParam<FormatRow> {};

const FormatRow kFormats[] = {
    {"%[0-9]%", " 42,7\r", true, "42", ""},
    {"%[0-9]%", "x42\r", false, "", ""},
    {"X=%[-0-9.]%;", "X=-1.5;", true, "-1.5", ""},
    {"X=%[0-9]%", "Y=1", false, "", ""},
    {"%[^;]%;%[!B!]%", "ab c;de\r", true, "ab c", "de"},
    {"%[!%s!]%,%[!W!]%", "1,,2", true, "", ""},
    {"%[!A!]%/%[!B!]%", "3/4", true, "3", "4"},
    {"", "Ready\r\n", true, "Ready", ""},
};

TEST_P(Format, ReadsTheAnswer) {
  const FormatRow& row = GetParam();
  const auto m = kerfline::script::match_answer(row.format, row.answer);
  EXPECT_EQ(m.matched, row.matched);
  EXPECT_EQ(m.value, row.value);
  EXPECT_EQ(m.fields.empty() ? "" : m.fields.back().second, row.last_field);
}
INSTANTIATE_TEST_SUITE_P(Rows, Format, ::testing::ValuesIn(kFormats));

// A silent device or a refused connection ends within the stated time.
struct FaultRow {
  std::string call;
  std::string result;
  std::chrono::milliseconds at_least, at_most;
};
class Faults : public OnLine<FaultRow> {};

const FaultRow kFaults[] = {
    {R"(&ReadVarT("OH;", "%[0-9]%", "W", "none", 1))", "none", 900ms, 1600ms},
    {R"(&ReadVar("OH;", "%[0-9]%", "W", "none"))", "none", 1900ms, 2600ms},
    {R"(&WaitCmd("OS;", "%[0-9]%", "", 1.5))", "0", 1400ms, 2200ms},
    {R"(&TermJob(0)&ReadVarT("OH;", "%[0-9]%", "W", "none", 30))", "", 0ms, 300ms},
    {R"(&CreateSocket("127.0.0.1", 1)/&QuerySocket("OH;", "", "R", 5))", "0/", 0ms, 1000ms},
};

TEST_P(Faults, EndInBoundedTime) {
  line.serve();  // never answers
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(eval(GetParam().call), GetParam().result);
  const auto took = std::chrono::steady_clock::now() - start;
  EXPECT_GE(took, GetParam().at_least);
  EXPECT_LE(took, GetParam().at_most);
}
INSTANTIATE_TEST_SUITE_P(Rows, Faults, ::testing::ValuesIn(kFaults));

// EscapeEval from another thread ends each kind of wait at once, and the
// busy query reports the device read while it waits.
class Escape : public OnLine<std::string> {};

TEST_P(Escape, EndsTheWaitAtOnce) {
  line.serve();
  SimProcess sim({"--tcp", "0", "--silent"});
  std::string call = GetParam();
  if (const auto at = call.find("PORT"); at != std::string::npos) call.replace(at, 4, sim.ready_line());
  std::atomic<bool> saw_busy{false};
  std::thread canceller([&] {
    for (int i = 0; i < 400 && !saw_busy; ++i) {
      saw_busy = DoEval(nullptr) != nullptr;
      std::this_thread::sleep_for(5ms);
    }
    std::this_thread::sleep_for(200ms);  // well inside the wait
    EscapeEval();
  });
  const auto start = std::chrono::steady_clock::now();
  eval(call);
  const auto took = std::chrono::steady_clock::now() - start;
  canceller.join();
  EXPECT_TRUE(saw_busy);
  EXPECT_LT(took, 3000ms);  // each call would wait 30 s
}
INSTANTIATE_TEST_SUITE_P(
    Waits, Escape,
    ::testing::Values(R"(&ReadVarT("OH;", "%[0-9]%", "W", "0", 30))",
                      R"(&WaitCmd("OS;", "%[0-9]%", "99", 30))",
                      R"(&CreateSocket("127.0.0.1", PORT)&QuerySocket("OH;", "", "R", 30))"));

TEST(Sockets, TalkToTheSimulatorOverLoopback) {
  SimProcess sim({"--tcp", "0"});
  const std::string port = sim.ready_line();
  const std::string text = "&CreateSocket(\"127.0.0.1\", " + port +
                           R"()/&QuerySocket("OH;", "%[!%s!]%,%[!%s!]%,%[!W!]%", "V", 2)/)"
                           R"(&WriteSocket("IN;", "N")/&ReadSocket("OI;", "", "I")/&CloseSocket(0, "")/)"
                           R"(&CloseSocket(0, "")/&ReadSocket("OI;", "", "I"))";
  EXPECT_EQ(eval(text), "1/24000/1/KERFLINE-SIM/1/0/");
  EXPECT_EQ(var("W"), "24000");
  EXPECT_EQ(var("N"), "3");
  // A new session (InitEval) closes the sockets of the last one.
  EXPECT_EQ(eval("&CreateSocket(\"127.0.0.1\", " + port + ")"), "1");
  EXPECT_EQ(eval(R"(&WriteSocket("OI;", ""))"), "0");
}

// The readers against the simulator: through the port and over TCP/IP. The
// instruction comes from the script engine: VBScript on Windows, Lua here.
#ifdef _WIN32
const char* const kReadScript = R"(<VBStart>"O" & "H;"<VBEnd>)";
#else
const char* const kReadScript = R"(<VBStart>"O" .. "H;"<VBEnd>)";
#endif

TEST(Readers, GiveTheSimulatedMediaWidth) {
  for (const bool tcp : {false, true}) {
    DeviceEnv env;
    SimProcess sim(tcp ? std::vector<std::string>{"--tcp", "0", "--clip", "30000,20000"}
                       : std::vector<std::string>{"--pty", "--clip", "30000,20000"});
    const std::string where = sim.ready_line();
    env.devices["Dev"] = tcp ? kerfline::device::PortSettings{5, "", "", "", "127.0.0.1", std::stoi(where)}
                             : kerfline::device::PortSettings{2, where, "", "", "", 0};
    DriverVars vars({{"%TCPIPApi%", tcp ? "1" : "0"},
                     {"%Read%", kReadScript},
                     {"%ReadFormat%", "%[!%s!]%,%[!%s!]%,%[!%IMatWidth%!]%"}});
    KERFLINE_DEVICE_ANSWER a{};
    EXPECT_EQ(GetWidthFromDevice(vars.drv(), "Dev", &a), 1) << tcp;
    EXPECT_EQ(a.dValues[0], 30000.0);
    EXPECT_EQ(ReadDeviceVals(vars.drv(), "Dev", "OH;", &a), 1);
    EXPECT_EQ(a.nCount, 4);
    EXPECT_EQ(a.dValues[3], 20000.0);
    EXPECT_STREQ(a.szAnswer, "0,0,30000,20000");
    EXPECT_EQ(ReadDeviceString(vars.drv(), "Nowhere", "OH;", &a), 0);
  }
}

TEST(Readers, TakeTheUsersAnswerWithCtrlAndShiftHeld) {
  DeviceEnv env;
  env.host.ctrl_down = env.host.shift_down = true;
  env.host.prompt_answer = "0,0,1234,99";
  DriverVars vars({{"%ReadFormat%", "%[!%s!]%,%[!%s!]%,%[!%IMatWidth%!]%"}, {"%Read%", "OH;"}});
  KERFLINE_DEVICE_ANSWER a{};
  EXPECT_EQ(GetWidthFromDevice(vars.drv(), "Dev", &a), 1);
  EXPECT_EQ(a.dValues[0], 1234.0);
}

#ifndef _WIN32  // registry.ini stands in for the registry, cp for a mail program
// Functions that need no device, the trace, and mail through a configured
// program (cp stands in for a mail submission program).
TEST(HostFunctions, ProfileRegistryMailAndBoxes) {
  DeviceEnv env;
  env.host.default_answer = KERFLINE_IDYES;
  env.dir.write("registry.ini", "[HKEY_CURRENT_USER\\Software\\Kerf]\nUnits=mm\n");
  EXPECT_EQ(eval(R"(&WrtPPS("t.ini", "S", "K", "v")&ReadPPS("t.ini", "S", "K", "d"))"), "1v");
  EXPECT_EQ(eval(R"(&ReadPPS("t.ini", "S", "X", "d"))"), "d");
  EXPECT_EQ(eval(R"(&ReadReg("HKEY_CURRENT_USER/Software/Kerf/Units", "in"))"), "mm");
  EXPECT_EQ(eval(R"(&ReadReg("HKCU\\\\No\\\\Units", "in"))"), "in");
  EXPECT_EQ(eval(R"(&MsgExt("Go?", "Cutter", 4))"), "6");
  ASSERT_EQ(env.host.boxes.size(), 1U);
  EXPECT_EQ(env.host.boxes[0].type, 4U);
  EXPECT_EQ(eval(R"(&SendMail(1, "a@b.c", "", "S", "T", ""))"), "0");  // not configured

  const std::string sent = (env.dir.path() / "sent.txt").string();
  env.dir.write("plotman.ini", "[Mail]\nProgram=cp %f \"" + sent + "\"\n");
  EXPECT_EQ(eval(R"(&SendMail(0, "a@b.c", "", "S", "T", ""))"), "0");
  EXPECT_EQ(eval(R"(&SendMail(1, "a@b.c", "x@y.z", "Job", "Done", ""))"), "1");
  std::string mail;
  for (int i = 0; i < 200 && mail.find("Done") == std::string::npos; ++i) {
    std::this_thread::sleep_for(10ms);
    mail = env.dir.read("sent.txt");
  }
  EXPECT_EQ(mail, "To: a@b.c\r\nCc: x@y.z\r\nSubject: Job\r\n\r\nDone\r\n");

  // Kept open: the evaluator keeps its log target for the process.
  static std::FILE* log = std::tmpfile();
  InitEval(0, static_cast<uint32_t>(fileno(log)), nullptr);
  eval(R"(&ReadVar("OH;", "", "", ""))", nullptr, nullptr);
  std::rewind(log);
  char line[128] = {};
  EXPECT_NE(std::fgets(line, sizeof line, log), nullptr);
  EXPECT_STREQ(line, "ReadVar: no device named for the evaluation\r\n");
}

#endif

}  // namespace
