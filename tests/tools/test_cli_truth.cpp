// The tool's exit codes, messages and encodings as a user and a technician
// meet them, command after command on one suite directory, and the guides'
// examples as written.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

#include "cli_runner.hpp"
#include "fixtures/temp_dir.hpp"
#ifndef _WIN32
#  include "remote/remote_sim_process.hpp"
#endif

namespace {

namespace fs = std::filesystem;

// The tool's arguments (with a leading "$ " a POSIX shell line), its exit code, and the whole output (with a
// leading '~' a part of it).
using Case = std::tuple<std::string, int, std::string>;

std::string read_source(const std::string& name) {
  std::ifstream in(std::string(KERFLINE_SOURCE_DIR) + "/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// The system's words for why a file cannot be read; Windows versions word them differently.
#ifdef _WIN32
const char* const kIsADirectory = "";
const char* const kNoSuchFile = "";
#else
const char* const kIsADirectory = "Is a directory";
const char* const kNoSuchFile = "No such file or directory";
#endif

// {D}: the test's directory ({J} as JSON writes it), {X}: the built example drivers, {R} and {N}: the reasons
// a directory and a missing file cannot be read, {/}: the directory separator. Each row sees what the earlier
// ones did.
const Case kSession[] = {
    {"frobnicate", 2, "~kerfline: \"frobnicate\" is not a command of kerfline\ncommands of kerfline:\n"},
    {"driver frob", 2, "~\"frob\" is not a command of kerfline driver\n"},
    {"driver", 2, "~kerfline: kerfline driver needs a command\n"},
    {"driver build", 2, "~json is required"},
    {"driver info {D}bad.vmd", 1, "~bad.vmd: invalid driver file: unexpected end of file"},
    {"driver dump {D}bad.vmd", 1, "~bad.vmd is not a driver file we can read"},
    {"driver dump {D}missing.vmd", 1, "~missing.vmd: {N}"},
    {"driver build {D}broken.json -o {D}x.vmd", 1, "~is not valid JSON"},
    {"eval {D}", 1, "~cannot read template {D}: {R}"},
    {"eval {D}none.txt", 1, "~none.txt: {N}"},
    {"eval --var %x%=5 {D}t.txt", 0, "a5"},
    {"eval -e &T(%x%) --var %x%=1 --var %y%=2", 0, "1"},
    {"eval -e IN; --newline -o -", 0, "IN;\n"},
    {"eval -e IN; -o {D}out.txt", 0, ""},
    {"eval --var x=3 -e \"%[2*3.4]% &T(x)\"", 0, "7 3"},
    {R"(eval --driver {X}dialog-cutter.vmd -e "IN;{[&T(%Optimize%) == 1][OS1;][OS0;]}FS%[&T(%Pressure%)/10]%;")",
     0, "IN;OS1;FS8;"},
    {R"(eval -e &Mid(\"abc\"))", 1, "[incorrect number of parameters: Operator Mid expects 3 parameters]"},
    {R"(eval -e &T(\"x\")", 1, "[invalid expression (no end found): &(]"},
    {"eval --var novalue -e x", 2, "kerfline: --var expects NAME=VALUE, got \"novalue\"\n"},
    {"functions", 0, "~&OR(A, B)  [shadowed]\n"},
    {"functions", 0, "~\n%[ ... ]% arithmetic: + - * / ^ and SIN(x) COS(x)"},
    {"functions mid", 0, "~&Mid(Text, i, n)\n  parameters: 3\n  "},
    {"driver vocabulary", 0, "{V}"},  // the page is what the tool prints
    {"functions NoSuch", 1, "kerfline: no function named NoSuch\n"},
    {"driver info {X}hpgl-cutter.vmd", 0,
     "file:      {X}hpgl-cutter.vmd\nname:      Demo HPGL Cutter\ntitle:     Demo HPGL Cutter\nclass:     "
     "Cutter\n"
     "flags:     0x0001\ntools:     2\nmaterials: 2\n"},
    {"driver tools {X}hpgl-cutter.vmd", 0,
     "Messer               Contour    flags 0x0005  3 variables\n"
     "Stift                Transfer   flags 0x0008  2 variables\n"},
    {"driver materials {X}hpgl-cutter.vmd", 0,
     "Vinyl                2 variables\nFlock                2 variables\n"},
    {"driver dump {X}hpgl-cutter-plus.vmd", 0,
     "VM6DRV  Demo HPGL Cutter Plus\n  %DriverName% = Demo HPGL Cutter Plus  (String)\n"
     "  %DriverClass% = Cutter  (String)\n  %BaseDrv% = hpgl-cutter.vmd  (String)\n  %Speed% = 60  (String)\n"
     "  %PlotInit% =   (String, linked)\n  %PlotEnd% =   (String, linked)\n  %ComSettings% =   (String, "
     "linked)\n"},
    {"driver dialog {X}dialog-cutter.vmd", 0, "~%Offset%  Knife offset (mm)  [Double"},
    {"driver dialog {X}dialog-cutter.vmd", 0, "~range:      0 .. 1.5, step 0.05, enforced"},
    {"driver dialog {X}dialog-cutter.vmd", 0, "~conditions: %Optimize% == 1"},
    {"driver get {X}hpgl-cutter-plus.vmd %PlotInit%", 0, "IN;VS&T(%Speed%);FS&T(%Pressure%);\n"},
    {"driver get {X}hpgl-cutter.vmd %PenUp% --type int", 1, "~%PenUp% holds \"PU\", which is not a number"},
    {"driver get {X}hpgl-cutter.vmd %MatSpeed% --material Flock --json", 0,
     "{\"name\":\"%MatSpeed%\",\"value\":\"20\"}\n"},
    {"driver get {X}hpgl-cutter.vmd %Speed% --tool Nope", 1, "kerfline: the driver has no tool named Nope\n"},
    {"driver check {D}plus.vmd", 1, "~base driver hpgl-cutter.vmd cannot be read"},
    {"driver set {D}cutter.vmd %Overcut% 0.75", 0, ""},
    {"driver get {D}cutter.vmd %Overcut% --type double", 0, "0.75\n"},
    {"driver get {D}cutter.vmd %NoSuchThing%", 1, "~variable %NoSuchThing% not found (result -5)"},
    {"driver set {D}c.vmd %Speed% 9999", 1, "~\"9999\" for %Speed% is outside the dialog variable's range"},
    {"driver set {D}c.vmd %Speed% abc", 1, "~is not a value of the variable's type"},
    {"driver check {D}c.vmd", 0, ""},
    {"driver set {D}c.vmd %Speed% 9999 --force", 0, ""},
    {"driver check {D}c.vmd", 1, "warning: %Speed%: 9999 is outside its range 1 to 80\n"},
    {"driver info {D}c.vmd", 0, "~materials: 0\nwarning: %Speed%: 9999 is outside its range 1 to 80\n"},
    {"driver build {D}u.json -o {D}u.vmd", 0, ""},
    {"driver dump {D}u.vmd", 0, "~%Größe% = ä"},
    {"--home {D} devices list", 0, "~no devices in"},
    {R"(--home {D} devices add "Vinyl 1" --port /dev/ttyUSB0 --driver {D}gx.vdv)", 0,
     "~spool directory {D}SPOOLER{/}SL_VINYL 1{/}"},
    {"--home {D} devices add Big:2 --port COM3 --driver /drv/big.vmd", 0, "~added Big:2 on COM3"},
    {"--home {D} devices list --json", 0,
     "~\"name\": \"Vinyl 1\",\n    \"port\": \"/dev/ttyUSB0\",\n    \"driver\": \"{J}gx.vdv\""},
    {R"(--home {D} devices show "Vinyl 1")", 0, "~DevDrvInfo         Roland GX\n"},
    {"--home {D} devices show Big:2 --json", 0, "~\"class\": \"CCutterDeviceSettings\""},
    {"--home {D} devices show nobody", 1, "~no device \"nobody\""},
    {"--home {D} devices add a=b --port x --driver y", 1, "~cannot be a device name"},
    {"--home {D} devices add x --port 0123456789012345678901234567890123 --driver y", 2,
     "~at most 31 characters"},
    {R"(--home {D} devices remove "Vinyl 1")", 0, "~removed Vinyl 1"},
    {R"(--home {D} devices remove "Vinyl 1")", 1, "~no device"},
    {"--home {D} devices list", 0, "~Big:2"},
    // Shell rows. Windows has no full device, no file-size limit to trip a store and no sysfs to fake, hands
    // a program its arguments in the ANSI code page where the tool wants UTF-8, and the reference server of
    // `remote send` ({A}: its address) is kerfline-sim, started here the POSIX way.
    {"$ kerfline eval -e 中", 1, "~holds a character that Windows-1252 cannot hold"},
    {"$ kerfline eval -e Größe", 0, "Größe"},
    {"$ kerfline eval --raw -e Größe", 0,
     "Gr\xf6\xdf"
     "e"},
    {"$ kerfline driver get {D}u.vmd %Größe%", 0, "ä\n"},
    {"$ kerfline eval --driver {D}u.vmd -e '&T(%Größe%)'", 0, "ä"},
    {"$ kerfline eval -e x > /dev/full", 1,
     "kerfline: cannot write to standard output: No space left on device\n"},
    {"$ kerfline functions > /dev/full", 1, "~No space left on device"},
    {"$ (trap '' XFSZ; ulimit -f 0; kerfline driver set {D}c.vmd %Speed% 20; echo \"exit $?\") 2>&1 | cat", 0,
     "Kerfline error: Can not write driver:\n{D}c.vmd\n\nCode = (27)\n\nFile too large\n"
     "kerfline: cannot store {D}c.vmd\nexit 1\n"},
    {"driver get {D}c.vmd %Speed%", 0, "9999\n"},
    {"$ kerfline --home {D}remote remote send 'Remote 1' --state 3 9", 0,
     "{\"type\":\"State\",\"state\":3,\"job\":9}\n"},
    {"$ kerfline --home {D}remote remote send 'Remote 1' --msg 'say \"hi\"'", 0,
     "{\"type\":\"Msg\",\"text\":\"say \\\"hi\\\"\"}\n"},
    {"$ kerfline remote send {A} --query 5 Cutter", 0,
     "{\"type\":\"Query\",\"query\":5,\"param\":\"Cutter\"}\n"},
    {"$ kerfline remote send {A} --query 3 44", 0, "{\"type\":\"Query\",\"query\":3,\"job\":44}\n"},
    {"$ kerfline remote send {A} --query 1 ignored", 0, "{\"type\":\"Query\",\"query\":1}\n"},
    {"$ kerfline --home {D}remote remote send 'Remote 1' --int -7", 0, "{\"type\":\"Int\",\"value\":-7}\n"},
    {"$ kerfline --home {D}remote remote send 'Remote 1' --strings a '' c", 0,
     "{\"type\":\"StringList\",\"strings\":[\"a\",\"\",\"c\"]}\n"},
    {"$ kerfline remote send {A} --int 1 --msg x", 2,
     "kerfline: give exactly one of --state, --msg, --query, --int, --strings\n"},
    {"$ kerfline remote send {A} --query 3 job", 2, "kerfline: query 3 takes a job number\n"},
    // Root may open anything: ask as an ordinary user.
    {"$ KERFLINE_SYSTEM_ROOT={D}root "
     "$([ $(id -u) = 0 ] && echo setpriv --reuid=65534 --regid=65534 --clear-groups) kerfline device ports",
     0,
     "lp0\tlp0\t{D}root/dev/usb/lp0\n  {D}root/dev/usb/lp0: Permission denied. Install the udev rules "
     "share/kerfline/udev/70-kerfline.rules (to\n  /etc/udev/rules.d/, then reconnect the device) or add "
     "yourself "
     "to the group of the\n  device, usually dialout: sudo usermod -aG dialout $USER (log in again "
     "afterwards).\n"},
};

TEST(CliTruth, Session) {
  const kerfline::test::TempDir dir;
  const std::string x = std::string(KERFLINE_BUILT_EXAMPLES_DIR) + "/";
  dir.write("bad.vmd", "hello");
  dir.write("broken.json", "{ not json");
  dir.write("t.txt", "a&T(%x%)");
  dir.write("u.json", R"({"root": {"items": [{"name": "%Größe%", "value": "ä"}]}})");
  fs::copy_file(x + "hpgl-cutter.vmd", dir.str("cutter.vmd"));
  fs::copy_file(x + "hpgl-cutter-plus.vmd", dir.str("plus.vmd"));  // its base driver is not beside it
  fs::copy_file(x + "dialog-cutter.vmd", dir.str("c.vmd"));
  dir.write("gx.vdv", std::string("Roland GX  \0", 12));
  std::string address;
#ifndef _WIN32
  const kerfline::test::RemoteSim sim({});
  ASSERT_GT(sim.port(), 0);
  address = "--host 127.0.0.1 --port " + std::to_string(sim.port());
  dir.write("remote/plotman.ini",
            "[Remote 1]\nIP_PORT=" + std::to_string(sim.port() - 7867) + "\nTcpIpHostname=localhost\n");
  dir.write("root/sys/class/usbmisc/lp0/dev", "180:0\n");
  fs::permissions(dir.write("root/dev/usb/lp0", ""), fs::perms::none);
  fs::permissions(dir.path(), fs::perms(0755));
  for (const auto& entry : fs::recursive_directory_iterator(dir.path())) {
    if (entry.is_directory()) fs::permissions(entry.path(), fs::perms(0755));
  }
#endif
  const std::string json_dir = nlohmann::json(dir.str()).dump();
  const std::string vocabulary = read_source("docs/vocabulary.md");
  const std::pair<std::string, std::string> placeholders[] = {
      {"{D}", dir.str()},
      {"{J}", json_dir.substr(1, json_dir.size() - 2)},
      {"{X}", x},
      {"{R}", kIsADirectory},
      {"{N}", kNoSuchFile},
      {"{A}", address},
      {"{/}", fs::path("/").make_preferred().string()},
      {"{V}", vocabulary.substr(vocabulary.find("| number |"))}};
  const auto expand = [&](std::string text) {
    for (const auto& [key, value] : placeholders) {
      for (auto at = text.find(key); at != std::string::npos; at = text.find(key, at + value.size()))
        text.replace(at, key.size(), value);
    }
    return text;
  };
  for (const auto& [line, exit_code, wanted] : kSession) {
#ifdef _WIN32
    if (line.rfind("$ ", 0) == 0) continue;
    const auto r = kerfline::test::run_cli(expand(line));
#else
    const auto r = line.rfind("$ ", 0) == 0 ? kerfline::test::run_shell(expand(line.substr(2)))
                                            : kerfline::test::run_cli(expand(line));
#endif
    const std::string out = expand(wanted);
    EXPECT_EQ(r.exit_code, exit_code) << line << "\n" << r.out;
    if (out.rfind('~', 0) == 0) {
      EXPECT_NE(r.out.find(out.substr(1)), std::string::npos) << line << "\nwanted: " << out << "\n" << r.out;
    } else {
      EXPECT_EQ(r.out, out) << line;
    }
  }
  EXPECT_EQ(dir.read("out.txt"), "IN;");
  EXPECT_FALSE(fs::exists(dir.path() / "SPOOLER" / "SL_VINYL 1"));
  EXPECT_TRUE(fs::exists(dir.path() / "SPOOLER" / "SL_BIG_2" / "index.hot"));
  EXPECT_FALSE(fs::exists("-"));
#ifndef _WIN32
  // The guides' console examples run as written: each "$ " line, beside the example drivers, prints the lines
  // after it.
  fs::create_directory(dir.path() / "docs");
  for (const char* name : {"hpgl-cutter", "hpgl-cutter-plus", "dialog-cutter"}) {
    fs::copy_file(x + name + ".vmd", dir.path() / "docs" / (std::string(name) + ".vmd"));
  }
  for (const char* doc : {"docs/templates.md", "README.md"}) {
    std::istringstream lines(read_source(doc));
    std::vector<std::pair<std::string, std::string>> examples;  // command, output
    bool in_block = false;
    for (std::string line; std::getline(lines, line);) {
      if (line.rfind("```", 0) == 0) {
        in_block = !in_block && line == "```console";
      } else if (in_block && line.rfind("$ ", 0) == 0) {
        examples.emplace_back(line.substr(2), "");
      } else if (in_block && !examples.empty()) {
        examples.back().second += (examples.back().second.empty() ? "" : "\n") + line;
      }
    }
    EXPECT_FALSE(examples.empty()) << doc;
    for (const auto& [command, shown] : examples) {
      auto r = kerfline::test::run_shell("cd '" + dir.str("docs") + "' && " + command);
      if (!r.out.empty() && r.out.back() == '\n') r.out.pop_back();
      EXPECT_EQ(r.exit_code, 0) << command;
      EXPECT_EQ(r.out, shown) << command;
    }
  }
#endif
  std::ifstream built(x + "hpgl-cutter.vmd", std::ios::binary);
  EXPECT_EQ(kerfline::test::run_cli("driver build " KERFLINE_EXAMPLES_DIR "/hpgl-cutter.json -o -").out,
            std::string(std::istreambuf_iterator<char>(built), {}));
}

}  // namespace
