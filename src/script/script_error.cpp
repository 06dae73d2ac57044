#include "script/script_error.hpp"

namespace kerfline::script {

const char* error_message(std::int32_t code) {
  switch (code) {
    case kSyntaxError:
      return "syntax error";
    case kNoEndFound:
      return "invalid expression (no end found)";
    case kParameterCount:
      return "incorrect number of parameters";
    case kRecursionLimit:
      return "internal recursion limit reached";
    case kUnrecognized:
      return "unrecognized variable or operator";
    default:
      return "fatal internal error";
  }
}

std::string ScriptError::printable() const {
  std::string out = "[";
  out += error_message(code_);
  if (!detail_.empty()) {
    out += ": ";
    out += detail_;
  }
  out += ']';
  return out;
}

std::string printable_internal_error() { return ScriptError(kInternalError, "").printable(); }

}  // namespace kerfline::script
