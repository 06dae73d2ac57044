// Runs the built kerfline-sim as a child process and reads the line it
// prints when it is ready (its device path, directory or port).
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

extern char** environ;

namespace kerfline::test {

class SimProcess {
 public:
  explicit SimProcess(const std::vector<std::string>& args) {
    int out[2];
    if (::pipe2(out, O_CLOEXEC) != 0) return;
    posix_spawn_file_actions_t fa;
    posix_spawn_file_actions_init(&fa);
    posix_spawn_file_actions_adddup2(&fa, out[1], 1);
    std::vector<std::string> all{KERFLINE_SIM};
    all.insert(all.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (auto& a : all) argv.push_back(a.data());
    argv.push_back(nullptr);
    if (::posix_spawn(&pid_, KERFLINE_SIM, &fa, nullptr, argv.data(), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&fa);
    ::close(out[1]);
    stdout_ = out[0];
  }
  ~SimProcess() {
    if (pid_ > 0) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, nullptr, 0);
    }
    if (stdout_ >= 0) ::close(stdout_);
  }
  SimProcess(const SimProcess&) = delete;
  SimProcess& operator=(const SimProcess&) = delete;

  // The first line of stdout, waiting at most 10 s.
  std::string ready_line() {
    std::string line;
    char c = 0;
    pollfd p{stdout_, POLLIN, 0};
    while (::poll(&p, 1, 10000) > 0 && ::read(stdout_, &c, 1) == 1 && c != '\n') line += c;
    return line;
  }

  void signal(int sig) const { ::kill(pid_, sig); }

  // Waits at most timeout_ms for the exit; its code, or -1 while it runs on.
  int wait_exit(int timeout_ms) {
    for (int waited = 0; waited <= timeout_ms; waited += 20) {
      int status = 0;
      if (::waitpid(pid_, &status, WNOHANG) == pid_) {
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      }
      ::usleep(20000);
    }
    return -1;
  }

 private:
  pid_t pid_ = -1;
  int stdout_ = -1;
};

}  // namespace kerfline::test
