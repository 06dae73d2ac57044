#include "script/vb_bridge.hpp"

#include <cstdio>

#include "platform/host_hooks.hpp"

namespace kerfline::script {
namespace {

constexpr std::uint32_t kErrorBoxType = KERFLINE_MB_OK | KERFLINE_MB_ICONERROR;

std::string error_tail(const platform::ScriptError& error) {
  return error.description + "\r\n[" + error.source + "]\n";
}

void show_init_error(const platform::ScriptError& error) {
  char head[64];
  std::snprintf(head, sizeof head, "Line: %d\r\n", static_cast<int>(error.line));
  platform::host::message_box(head + error_tail(error), "VBCutter (VBInitGlobals):", kErrorBoxType);
}

void show_eval_error(const platform::ScriptError& error) {
  char head[96];
  std::snprintf(head, sizeof head, "Line: %d [Code: %ld]\r\n", static_cast<int>(error.line), error.number);
  platform::host::message_box(head + error_tail(error), "VBCutter:", kErrorBoxType);
}

}  // namespace

std::unique_ptr<VbBridge> VbBridge::start(std::string_view global_code) {
  platform::ScriptError error;
  std::unique_ptr<platform::ScriptHost> host = platform::ScriptHost::create(error);
  if (host == nullptr || !host->add_code(global_code, error)) {
    show_init_error(error);
    return nullptr;
  }
  return std::unique_ptr<VbBridge>(new VbBridge(std::move(host)));
}

std::optional<std::string> VbBridge::eval(std::string_view expression) {
  platform::ScriptError error;
  std::optional<std::string> value = host_->eval(expression, error);
  if (!value) show_eval_error(error);
  return value;
}

}  // namespace kerfline::script
