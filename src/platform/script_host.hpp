// An embedded script engine that driver texts use for expressions. Windows
// runs VBScript in the Script Control component; elsewhere a sandboxed Lua
// 5.4 state stands in for it (an expression is evaluated as
// "return <expression>"). One host belongs to the thread that created it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kerfline::platform {

// What the engine reports about a failed call: the line of the faulty code
// (1-based, 0 when unknown), the engine's error number, its description and
// the source text of the faulty line.
struct ScriptError {
  long line = 0;
  long number = 0;
  std::string description;
  std::string source;
};

// Limits of the Lua engine, for text that comes from anywhere: one call
// (global code or one expression) runs at most this many virtual-machine
// instructions, and one state never holds more than this many bytes.
inline constexpr int kScriptInstructionLimit = 10'000'000;
inline constexpr std::size_t kScriptMemoryLimit = std::size_t{16} * 1024U * 1024U;

class ScriptHost {
 public:
  // Starts and configures the engine; nothing (and the reason in error) when
  // this system has none or it could not be started.
  static std::unique_ptr<ScriptHost> create(ScriptError& error);

  virtual ~ScriptHost() = default;
  ScriptHost(const ScriptHost&) = delete;
  ScriptHost& operator=(const ScriptHost&) = delete;

  // Runs code whose functions and variables later expressions may use.
  virtual bool add_code(std::string_view code, ScriptError& error) = 0;

  // The value of the expression as text; nothing when it failed.
  virtual std::optional<std::string> eval(std::string_view expression, ScriptError& error) = 0;

 protected:
  ScriptHost() = default;
};

}  // namespace kerfline::platform
