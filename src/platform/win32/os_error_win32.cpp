#include <string>

#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

OsError os_error(int code, const std::string& context) {
  char* text = nullptr;
  const DWORD n = FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      static_cast<DWORD>(code), 0, reinterpret_cast<LPSTR>(&text), 0, nullptr);
  std::string what;
  if (n > 0 && text != nullptr) {
    what.assign(text, n);
    // The system texts end in ".\r\n".
    while (!what.empty() && (what.back() == '\n' || what.back() == '\r' || what.back() == ' '))
      what.pop_back();
  } else {
    what = "error " + std::to_string(code);
  }
  if (text != nullptr) LocalFree(text);
  return OsError{code, context.empty() ? what : context + ": " + what};
}

}  // namespace kerfline::platform
