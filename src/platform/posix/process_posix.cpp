#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

#include "platform/clock.hpp"
#include "platform/process.hpp"

extern char** environ;  // NOLINT: the caller's environment, passed on as it is

namespace kerfline::platform {
namespace {

// How long a child asked to stop may take before it is killed.
constexpr std::uint32_t kTerminateGraceMs = 500;
// Sleep between looks at a child that is waited for with a limit.
constexpr std::uint32_t kPollStepMs = 5;

int status_code(int status) {
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  return -1;
}

}  // namespace

// The pid is only collected (waitpid) under the mutex, and signals are only
// sent under it while the child is uncollected: a signal can never reach a
// later process that was given the same pid.
struct ChildProcess::Impl {
  pid_t pid = -1;
  std::mutex mutex;
  bool collected = false;
  std::optional<int> code;

  // Collects the child if it has ended; true when it is collected.
  bool try_collect() {
    const std::lock_guard lock(mutex);
    if (collected) return true;
    int status = 0;
    pid_t r = 0;
    do {
      r = ::waitpid(pid, &status, WNOHANG);
    } while (r < 0 && errno == EINTR);
    if (r == 0) return false;
    collected = true;  // ended, or (ECHILD) someone else collected it
    if (r == pid) code = status_code(status);
    return true;
  }

  void signal(int sig) {
    const std::lock_guard lock(mutex);
    if (!collected) ::kill(pid, sig);
  }
};

ChildProcess::ChildProcess(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;
ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  if (this != &other) {
    if (impl_) terminate();
    impl_ = std::move(other.impl_);
  }
  return *this;
}

ChildProcess::~ChildProcess() {
  if (impl_) terminate();
}

namespace {

// output_file empty: the child keeps the caller's standard streams.
Result<pid_t> start(std::string_view command_line, const std::string& output_file) {
  std::vector<std::string> args = split_command_line(command_line);
  if (args.empty() || args.front().empty()) return os_error(EINVAL, "no program in the command line");

  std::vector<char*> argv;
  argv.reserve(args.size() + 1);
  for (auto& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (!output_file.empty()) {
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, output_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
  }
#if defined(__GLIBC__) && (__GLIBC__ > 2 || (__GLIBC__ == 2 && __GLIBC_MINOR__ >= 34))
  // Windows starts the child without inheriting handles; do the same.
  posix_spawn_file_actions_addclosefrom_np(&actions, 3);
#endif
  pid_t pid = -1;
  const int rc = ::posix_spawnp(&pid, argv.front(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) return os_error(rc, "start " + args.front());
  return pid;
}

}  // namespace

Result<ChildProcess> ChildProcess::spawn(std::string_view command_line, int /*show_command*/) {
  return spawn_captured(command_line, "");
}

Result<ChildProcess> ChildProcess::spawn_captured(std::string_view command_line,
                                                  const std::string& output_file) {
  auto pid = start(command_line, output_file);
  if (!pid) return pid.error();
  auto impl = std::make_unique<Impl>();
  impl->pid = pid.value();
  return ChildProcess(std::move(impl));
}

void ChildProcess::wait() {
  // Wait without collecting, so that terminate() on another thread never
  // signals a collected pid; collect under the lock afterwards.
  siginfo_t info{};
  int r = 0;
  do {
    r = ::waitid(P_PID, static_cast<id_t>(impl_->pid), &info, WEXITED | WNOWAIT);
  } while (r < 0 && errno == EINTR);
  if (impl_->try_collect()) return;
  // Not ours to wait for (ECHILD): nothing more can be learnt.
  const std::lock_guard lock(impl_->mutex);
  impl_->collected = true;
}

bool ChildProcess::wait_with_watcher(const std::function<void()>& pump, const std::function<bool()>& stop,
                                     std::uint32_t interval_ms) {
  std::mutex mutex;
  std::condition_variable changed;
  bool done = false;
  std::thread watcher;
  try {
    watcher = std::thread([&] {
      wait();
      const std::lock_guard lock(mutex);
      done = true;
      changed.notify_all();
    });
  } catch (const std::system_error&) {
    // No thread to be had: wait on this one, still pumping.
    while (!wait_for(interval_ms)) {
      pump();
      if (stop()) {
        terminate();
        return false;
      }
    }
    return true;
  }
  bool stopped = false;
  std::unique_lock lock(mutex);
  while (!done) {
    lock.unlock();
    pump();
    if (!stopped && stop()) {
      stopped = true;
      terminate();  // the watcher sees the end and reports it
    }
    lock.lock();
    changed.wait_for(lock, std::chrono::milliseconds(interval_ms), [&] { return done; });
  }
  lock.unlock();
  watcher.join();
  return !stopped;
}

bool ChildProcess::wait_for(std::uint32_t timeout_ms) {
  const std::uint64_t start = tick_ms64();
  while (!impl_->try_collect()) {
    const std::uint64_t waited = tick_ms64() - start;
    if (waited >= timeout_ms) return false;
    sleep_ms(static_cast<std::uint32_t>(std::min<std::uint64_t>(kPollStepMs, timeout_ms - waited)));
  }
  return true;
}

bool ChildProcess::has_ended() { return impl_->try_collect(); }

void ChildProcess::terminate() {
  if (impl_->try_collect()) return;
  impl_->signal(SIGTERM);
  if (wait_for(kTerminateGraceMs)) return;
  impl_->signal(SIGKILL);
  wait();
}

std::optional<int> ChildProcess::exit_code() const {
  const std::lock_guard lock(impl_->mutex);
  return impl_->code;
}

std::int64_t ChildProcess::id() const { return impl_->pid; }

}  // namespace kerfline::platform
