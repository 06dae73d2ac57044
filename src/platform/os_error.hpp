// An operating-system failure, captured where the call failed (errno or
// GetLastError) and carried with the result so nobody has to re-read it.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace kerfline::platform {

struct OsError {
  int code = 0;         // errno on POSIX, GetLastError() on Windows
  std::string message;  // the system's own text for it, plus context
};

// The value of an operation that may fail with an OsError.
template <typename T>
class Result {
 public:
  Result(T value) : state_(std::move(value)) {}        // NOLINT(google-explicit-constructor)
  Result(OsError error) : state_(std::move(error)) {}  // NOLINT(google-explicit-constructor)

  [[nodiscard]] bool ok() const { return state_.index() == 0; }
  explicit operator bool() const { return ok(); }

  T& value() { return std::get<0>(state_); }
  const T& value() const { return std::get<0>(state_); }
  T* operator->() { return &value(); }
  T& operator*() { return value(); }

  const OsError& error() const { return std::get<1>(state_); }

 private:
  std::variant<T, OsError> state_;
};

// Builds an OsError from an errno/GetLastError value with context, e.g.
// os_error(ENOENT, "open /dev/ttyS0") -> "open /dev/ttyS0: No such file...".
OsError os_error(int code, const std::string& context);

// The same with the context "<action> <path>". Call it as
// os_error(errno, "open", path): nothing that could change errno runs before
// the code is taken (the message is built inside), whereas "open " + path as
// an argument may allocate before errno is read.
inline OsError os_error(int code, std::string_view action, std::string_view path) {
  std::string context(action);
  context += ' ';
  context += path;
  return os_error(code, context);
}

}  // namespace kerfline::platform
