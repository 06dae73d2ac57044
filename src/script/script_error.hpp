// The script language's one kind of error: a code and a detail text, printed
// into the output in brackets where the failing pass would have written.
#pragma once

#include <cstdint>
#include <string>

namespace kerfline::script {

enum ErrorCode : std::int32_t {
  kSyntaxError = 1,
  kNoEndFound = 2,
  kParameterCount = 3,
  kInternalError = 4,
  kRecursionLimit = 5,
  kUnrecognized = 6,
};

class ScriptError {
 public:
  ScriptError(std::int32_t code, std::string detail) : code_(code), detail_(std::move(detail)) {}

  [[nodiscard]] std::int32_t code() const { return code_; }
  [[nodiscard]] const std::string& detail() const { return detail_; }
  // "[message: detail]", or "[message]" when the detail is empty.
  [[nodiscard]] std::string printable() const;

 private:
  std::int32_t code_;
  std::string detail_;
};

// The message text of a code; unknown codes read as the internal error.
const char* error_message(std::int32_t code);

// What a failure that is not a ScriptError prints as.
std::string printable_internal_error();

}  // namespace kerfline::script
