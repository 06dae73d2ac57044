// Msg, through the host's message box, and the functions of the device
// layer: the device dialogue (ReadVar and its kin, WaitCmd, ZundToolOffset,
// MsgExt), private-profile and registry access, sockets, mail and job
// termination. They are registered with their texts so that drivers parse;
// until the device layer provides them each consumes its arguments and
// returns the empty text.
#include "platform/host_hooks.hpp"
#include "script/builtins.hpp"

namespace kerfline::script::builtin {

std::string msg(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [text, title] = pop_args<2>(args);
  platform::host::message_box(text, title, KERFLINE_MB_OK);
  return {};
}

std::string device_pending(ArgStack& args, const FunctionRecord& record, Evaluator&) {
  for (std::int32_t i = 0; i < record.parameter_count; ++i) args.pop();
  return {};
}

}  // namespace kerfline::script::builtin
