#include <string.h>

#include "platform/os_error.hpp"

namespace kerfline::platform {

OsError os_error(int code, const std::string& context) {
  char buf[256] = {};
  // The GNU strerror_r returns the text, which may not be buf.
  const char* text = strerror_r(code, buf, sizeof(buf));
  std::string message = context.empty() ? std::string(text) : context + ": " + text;
  return OsError{code, std::move(message)};
}

}  // namespace kerfline::platform
