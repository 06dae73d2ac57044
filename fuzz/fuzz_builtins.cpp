// Calls of the built-in functions with random arguments: nested calls,
// numbers at the edges of every range, random texts, wrong argument counts.
// File functions only ever see names inside a private temporary directory,
// removed when the process exits (only outermost calls of other functions get
// wrong argument counts, so no other value can reach their path), and Import
// is replaced by a stand-in so that no file's text is evaluated. Sockets
// only ever reach a loopback device of the harness's own.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "chatty_device.hpp"
#include "kerfline/kerfline.h"
#include "quiet_host.hpp"
#include "sandbox.hpp"
#include "script/postfix.hpp"
#include "script/process_state.hpp"

namespace {

using kerfline::script::ArgStack;
using kerfline::script::Evaluator;
using kerfline::script::FunctionRecord;

const std::filesystem::path& sandbox() { return kerfline::fuzz::sandbox_dir("builtins"); }

std::string stand_in(ArgStack& args, const FunctionRecord&, Evaluator&) { return args.pop(); }

std::vector<const FunctionRecord*>& functions() {
  static std::vector<const FunctionRecord*> list;
  return list;
}

bool set_up() {
  (void)sandbox();
  kerfline::fuzz::answer_message_boxes_at_once();
  FunctionRecord import;
  import.name = "Import";
  import.routine = stand_in;
  import.parameter_count = 1;
  kerfline::script::process_eval().registry().add(import);
  InitEval(0, 0, nullptr);
  for (const FunctionRecord* f : kerfline::script::process_eval().registry().entries())
    functions().push_back(f);
  return true;
}

bool takes_path(const std::string& name) {
  return name == "Size" || name == "SizeK" || name == "Date" || name == "Time" || name == "FExist" ||
         name == "FWrite" || name == "AddIsoLineNr" || name == "AddIsoLineNrExt";
}

const char* const kEdgeValues[] = {"0",           "-0",         "",           "-",
                                   ".",           "1.5",        "-1",         "2147483647",
                                   "-2147483648", "4294967296", "1e308",      "99999999999999999999999",
                                   "0.0000001",   "abc",        "0x7FFFFFFF", "-2.5",
                                   "3.14159",     "1000000000", "10",         "12.01"};

// A literal without quotes or backslashes (escapes are the tokenizer
// fuzzer's business).
std::string literal(FuzzedDataProvider& in) {
  std::string text = in.ConsumeRandomLengthString(64);
  std::string out = "\"";
  for (const char c : text) {
    if (c != '"' && c != '\\' && c != '\0') out.push_back(c);
  }
  return out + "\"";
}

std::string sandboxed_path(FuzzedDataProvider& in) {
  std::string name;
  for (const char c : in.ConsumeRandomLengthString(12)) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_')
      name.push_back(c);
  }
  return "\"" + (sandbox() / ("f" + name)).string() + "\"";
}

std::string call(FuzzedDataProvider& in, int depth);

std::string argument(FuzzedDataProvider& in, int depth) {
  switch (in.ConsumeIntegralInRange(0, 4)) {
    case 0:
      return "\"" + std::string(in.PickValueInArray(kEdgeValues)) + "\"";
    case 1:
      return std::to_string(in.ConsumeIntegralInRange<std::int64_t>(-100000, 100000));
    case 2:
      return depth < 3 ? call(in, depth + 1) : literal(in);
    default:
      return literal(in);
  }
}

std::string call(FuzzedDataProvider& in, int depth) {
  const FunctionRecord& f = *functions()[in.ConsumeIntegralInRange<std::size_t>(0, functions().size() - 1)];
  int count = f.parameter_count;
  // A wrong count shifts what a routine pops, and the values of enclosing
  // calls share the stack: only outermost calls of functions that touch no
  // file get one (nested calls pop exactly their own arguments).
  if (depth == 0 && !takes_path(f.name) && in.ConsumeIntegralInRange(0, 15) == 0)
    count += in.ConsumeBool() ? 1 : -1;
  std::string text = f.name + "(";
  for (int i = 0; i < count; ++i) {
    if (i > 0) text += ", ";
    if (i == 0 && takes_path(f.name)) {
      text += sandboxed_path(in);
    } else if (i == 2 && f.name == "FWrite") {
      text += in.ConsumeBool() ? "\"Append\"" : "\"\"";  // never WaitForRemoved: nobody removes the file
    } else if (i == 3 && f.name == "WaitCmd") {
      // With no device nothing ever answers, so the call would wait out its
      // whole time (up to an hour, as a script may ask): one try only.
      text += "\"0\"";
    } else if (i == 3 && f.name == "QuerySocket") {
      text += "\"0.5\"";  // the device answers within 10 ms; a bound for a lost line
    } else if (f.name == "CreateSocket") {
      text += i == 0 ? "\"127.0.0.1\"" : std::to_string(kerfline::fuzz::chatty_device_port());
    } else {
      text += argument(in, depth);
    }
  }
  return text + ")";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool ready = set_up();
  (void)ready;
  if (size > 4096) return 0;
  // Every input starts from an empty sandbox: runs stay independent, and
  // files grown by earlier runs cannot pile up.
  std::error_code ec;
  std::filesystem::remove_all(sandbox(), ec);
  std::filesystem::create_directories(sandbox(), ec);
  FuzzedDataProvider in(data, size);
  std::string templ;
  Evaluator* evaluator = kerfline::script::process_eval().evaluator();
  (void)evaluator->evaluate("<&CloseSocket(\"\", \"All\")>", -1);  // none left open by the last run
  const int calls = in.ConsumeIntegralInRange(1, 4);
  for (int i = 0; i < calls && in.remaining_bytes() > 0; ++i) templ += "<&" + call(in, 0) + ">";
  if (std::getenv("KERFLINE_FUZZ_PRINT") != nullptr) std::fprintf(stderr, "%s\n", templ.c_str());
  // The template pass alone: the conditional pass would read braces inside
  // the literals as blocks and could assemble calls outside the sandbox.
  const std::string result = evaluator->evaluate(templ, -1);
  (void)result;
  return 0;
}
