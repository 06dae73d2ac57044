// One script engine with its global code, as driver texts use it: every
// failure is shown to the user in a message box and then reported as
// nothing.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/script_host.hpp"

namespace kerfline::script {

class VbBridge {
 public:
  // Starts the engine and runs the global code; nothing (after the
  // "VBCutter (VBInitGlobals):" box) when either fails.
  static std::unique_ptr<VbBridge> start(std::string_view global_code);

  // The expression's value as text; nothing after the "VBCutter:" box.
  std::optional<std::string> eval(std::string_view expression);

 private:
  explicit VbBridge(std::unique_ptr<platform::ScriptHost> host) : host_(std::move(host)) {}
  std::unique_ptr<platform::ScriptHost> host_;
};

}  // namespace kerfline::script
