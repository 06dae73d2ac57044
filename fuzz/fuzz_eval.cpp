// DoEval on arbitrary templates: no crash, no leak, bounded time. Inputs are
// capped at 4 KiB (every bound of the language is then reached quickly), and
// templates that name Import are skipped so that the fuzzer never reads
// files chosen by its input. The functions that write files (or wait for
// them) are replaced by stand-ins registered first - the first registration
// of a name wins - since a template can assemble their names from pieces
// that the conditional pass joins.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>

#include "kerfline/kerfline.h"
#include "quiet_host.hpp"
#include "script/postfix.hpp"
#include "script/process_state.hpp"

namespace {

using kerfline::script::ArgStack;
using kerfline::script::Evaluator;
using kerfline::script::FunctionRecord;

void add(const char* name, kerfline::script::NativeRoutine routine, int n) {
  FunctionRecord record;
  record.name = name;
  record.routine = routine;
  record.parameter_count = n;
  kerfline::script::process_eval().registry().add(record);
}

std::string swallow(ArgStack& args, const FunctionRecord& record, Evaluator&) {
  for (int i = 0; i < record.parameter_count; ++i) args.pop();
  return {};
}

bool set_up() {
  add("FWrite", swallow, 3);
  add("AddIsoLineNr", swallow, 6);
  add("AddIsoLineNrExt", swallow, 8);
  add("Import", swallow, 1);
  kerfline::fuzz::answer_message_boxes_at_once();
  AddEvalUserFunc("Twice", "a", "Join(a, a)");
  AddEvalUserFunc("Self", "a", "Self(Join(a, a))");
  SetEvalVar("%x%", "12.5", 0xFFFFFFFFu);
  SetEvalVar("BLK", "{[&T(BLK) == 1][a][b]}", 0xFFFFFFFFu);
  InitEval(0, 0, nullptr);
  return true;
}

bool names_import(const std::string& text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower.find("import") != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool ready = set_up();
  (void)ready;
  if (size > 4096) return 0;
  // DoEval takes a zero-terminated text: cut at the first NUL.
  std::string text(reinterpret_cast<const char*>(data), size);
  text.resize(std::min(text.size(), text.find('\0')));
  if (names_import(text)) return 0;
  char* block = DoEval(text.c_str());
  FreeEval(block);
  return 0;
}
