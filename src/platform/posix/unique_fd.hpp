// A file descriptor closed when it goes out of scope.
#pragma once

#include <unistd.h>

#include <utility>

namespace kerfline::platform {

class UniqueFd {
 public:
  explicit UniqueFd(int fd) : fd_(fd) {}
  ~UniqueFd() {
    if (fd_ >= 0) ::close(fd_);
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  [[nodiscard]] int get() const { return fd_; }
  // Gives the descriptor up without closing it.
  int release() { return std::exchange(fd_, -1); }

 private:
  int fd_;
};

}  // namespace kerfline::platform
