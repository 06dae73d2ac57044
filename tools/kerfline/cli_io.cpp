#include "cli_io.hpp"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <iterator>

#include "platform/binary_file.hpp"
#include "platform/codepage.hpp"

namespace kerfline::cli {

std::optional<std::string> read_input(const std::string& path, const char* what) {
  if (path == "-") {
    std::string all((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
    if (std::cin.bad()) {
      std::fprintf(stderr, "kerfline: cannot read %s from standard input\n", what);
      return std::nullopt;
    }
    return all;
  }
  auto bytes = platform::read_binary_file(path);
  if (!bytes) {
    std::fprintf(stderr, "kerfline: cannot read %s %s: %s\n", what, path.c_str(),
                 platform::os_error(bytes.error().code, "").message.c_str());
    return std::nullopt;
  }
  return std::move(*bytes);
}

Output::Output(const std::string& path) : path_(path) {
  if (path.empty() || path == "-") {
    stream_ = stdout;
    return;
  }
  stream_ = std::fopen(path.c_str(), "wb");
  if (stream_ == nullptr) {
    std::fprintf(stderr, "kerfline: cannot write %s: %s\n", path.c_str(), std::strerror(errno));
    return;
  }
  owned_ = true;
}

Output::~Output() {
  if (owned_) std::fclose(stream_);
}

void Output::write(std::string_view bytes) {
  if (stream_ != nullptr && !bytes.empty()) std::fwrite(bytes.data(), 1, bytes.size(), stream_);
}

bool Output::finish() {
  if (stream_ == nullptr) return false;
  if (!owned_) return stdout_intact();
  const bool failed = std::ferror(stream_) != 0;
  const int saved = errno;
  const bool closed = std::fclose(stream_) == 0;
  stream_ = nullptr;
  owned_ = false;
  if (failed || !closed) {
    std::fprintf(stderr, "kerfline: cannot write %s: %s\n", path_.c_str(),
                 std::strerror(failed ? saved : errno));
    return false;
  }
  return true;
}

std::optional<std::string> from_terminal(const std::string& utf8, const char* what, bool echo) {
  auto converted = platform::cp1252::from_utf8(utf8);
  if (!converted) {
    const std::string shown = echo ? " \"" + utf8 + "\"" : "";
    std::fprintf(stderr,
                 "kerfline: the %s%s is not UTF-8 or holds a character that Windows-1252 cannot hold\n", what,
                 shown.c_str());
  }
  return converted;
}

std::string to_terminal(std::string_view cp1252) { return platform::cp1252::to_utf8(cp1252); }

bool stdout_intact() {
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return true;
  const int saved = errno;
  std::fprintf(stderr, "kerfline: cannot write to standard output: %s\n",
               saved != 0 ? std::strerror(saved) : "write error");
  return false;
}

}  // namespace kerfline::cli
