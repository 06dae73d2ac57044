// Runs the built `kerfline-sim --remote 0 ...` as a child process and reads
// the port it prints when ready.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

extern char** environ;

namespace kerfline::test {

class RemoteSim {
 public:
  explicit RemoteSim(std::vector<std::string> extra) {
    const char* dir = std::getenv("KERFLINE_TEST_BINARY_DIR");
    std::string exe = std::string(dir != nullptr ? dir : ".") + "/bin/kerfline-sim";
    std::vector<std::string> all{exe, "--remote", "0"};
    all.insert(all.end(), extra.begin(), extra.end());
    int out[2];
    if (::pipe2(out, O_CLOEXEC) != 0) return;
    posix_spawn_file_actions_t fa;
    posix_spawn_file_actions_init(&fa);
    posix_spawn_file_actions_adddup2(&fa, out[1], 1);
    std::vector<char*> argv;
    for (auto& a : all) argv.push_back(a.data());
    argv.push_back(nullptr);
    if (::posix_spawn(&pid_, exe.c_str(), &fa, nullptr, argv.data(), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&fa);
    ::close(out[1]);
    // The port line, waiting at most 10 s.
    std::string line;
    char c = 0;
    pollfd p{out[0], POLLIN, 0};
    while (::poll(&p, 1, 10000) > 0 && ::read(out[0], &c, 1) == 1 && c != '\n') line += c;
    ::close(out[0]);
    port_ = std::atoi(line.c_str());
  }
  ~RemoteSim() {
    if (pid_ > 0) {
      ::kill(pid_, SIGTERM);
      ::waitpid(pid_, nullptr, 0);
    }
  }
  RemoteSim(const RemoteSim&) = delete;
  RemoteSim& operator=(const RemoteSim&) = delete;

  [[nodiscard]] int port() const { return port_; }

 private:
  pid_t pid_ = -1;
  int port_ = 0;
};

}  // namespace kerfline::test
