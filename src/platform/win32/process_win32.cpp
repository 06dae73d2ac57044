#include <cerrno>

#include "platform/process.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {
namespace {

constexpr DWORD kTerminateExitCode = 1;
// The watcher thread's stack: it only waits.
constexpr SIZE_T kWatcherStack = 20000;

// std::mutex is missing from some mingw thread models; a slim lock is enough.
class SlimLock {
 public:
  explicit SlimLock(SRWLOCK& lock) : lock_(lock) { ::AcquireSRWLockExclusive(&lock_); }
  ~SlimLock() { ::ReleaseSRWLockExclusive(&lock_); }
  SlimLock(const SlimLock&) = delete;
  SlimLock& operator=(const SlimLock&) = delete;

 private:
  SRWLOCK& lock_;
};

DWORD WINAPI watch(void* arg) {
  // Waits on the process handle without limit; the thread's own end is the
  // done signal the caller waits for.
  ::WaitForSingleObject(static_cast<HANDLE>(arg), INFINITE);
  return 0;
}

}  // namespace

struct ChildProcess::Impl {
  win32::UniqueHandle process;
  DWORD pid = 0;
  mutable SRWLOCK lock = SRWLOCK_INIT;
  std::optional<int> code;

  bool read_exit_code() {
    const SlimLock held(lock);
    if (code) return true;
    DWORD status = 0;
    // An exit code that can no longer be read counts as ended.
    if (!::GetExitCodeProcess(process.get(), &status)) {
      code = -1;
      return true;
    }
    if (status == STILL_ACTIVE &&
        ::WaitForSingleObject(process.get(), 0) == WAIT_TIMEOUT) {  // 259 can be a real exit code
      return false;
    }
    code = static_cast<int>(status);
    return true;
  }

  // The child a start gave, or its error.
  static Result<ChildProcess> adopt(Result<PROCESS_INFORMATION> started) {
    if (!started) return started.error();
    auto impl = std::make_unique<Impl>();
    impl->process = win32::UniqueHandle(started->hProcess);
    impl->pid = started->dwProcessId;
    return ChildProcess(std::move(impl));
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

// output_file empty: the child gets the caller's standard streams.
Result<PROCESS_INFORMATION> start(std::string_view command_line, int show_command,
                                  const std::string& output_file) {
  const std::vector<std::string> args = split_command_line(command_line);
  if (args.empty() || args.front().empty()) return os_error(EINVAL, "no program in the command line");

  std::string line(command_line);  // CreateProcessA may write into it
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = static_cast<WORD>(show_command);
  win32::UniqueHandle input;
  win32::UniqueHandle output;
  if (!output_file.empty()) {
    // Only these two are inheritable, so the child gets nothing else.
    SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
    input.reset(::CreateFileA("NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                              OPEN_EXISTING, 0, nullptr));
    output.reset(::CreateFileA(output_file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS,
                               0, nullptr));
    if (!output.valid()) return os_error(static_cast<int>(::GetLastError()), "create " + output_file);
    startup.dwFlags |= STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = startup.hStdError = output.get();
  }
  PROCESS_INFORMATION info{};
  if (!::CreateProcessA(nullptr, line.data(), nullptr, nullptr, output_file.empty() ? FALSE : TRUE, 0,
                        nullptr, nullptr, &startup, &info)) {
    const DWORD error = ::GetLastError();
    return os_error(static_cast<int>(error), "start " + args.front());
  }
  ::CloseHandle(info.hThread);
  return info;
}

}  // namespace

Result<ChildProcess> ChildProcess::spawn(std::string_view command_line, int show_command) {
  return Impl::adopt(start(command_line, show_command, ""));
}

Result<ChildProcess> ChildProcess::spawn_captured(std::string_view command_line,
                                                  const std::string& output_file) {
  return Impl::adopt(start(command_line, SW_HIDE, output_file));
}

void ChildProcess::wait() {
  ::WaitForSingleObject(impl_->process.get(), INFINITE);
  impl_->read_exit_code();
}

bool ChildProcess::wait_with_watcher(const std::function<void()>& pump, const std::function<bool()>& stop,
                                     std::uint32_t interval_ms) {
  win32::UniqueHandle watcher(::CreateThread(nullptr, kWatcherStack, watch, impl_->process.get(),
                                             STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
  if (watcher.get() == nullptr) {
    // No thread: wait on this one, still pumping.
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
  for (;;) {
    pump();
    if (!stopped && stop()) {
      stopped = true;
      ::TerminateProcess(impl_->process.get(), kTerminateExitCode);
    }
    if (::WaitForSingleObject(watcher.get(), interval_ms) != WAIT_TIMEOUT) break;
  }
  impl_->read_exit_code();
  return !stopped;
}

bool ChildProcess::wait_for(std::uint32_t timeout_ms) {
  if (::WaitForSingleObject(impl_->process.get(), timeout_ms) == WAIT_TIMEOUT) return false;
  return impl_->read_exit_code();
}

bool ChildProcess::has_ended() { return impl_->read_exit_code(); }

void ChildProcess::terminate() {
  if (impl_->read_exit_code()) return;
  // Windows has no polite request to a windowless process; end it.
  ::TerminateProcess(impl_->process.get(), kTerminateExitCode);
  wait();
}

std::optional<int> ChildProcess::exit_code() const {
  const SlimLock held(impl_->lock);
  return impl_->code;
}

std::int64_t ChildProcess::id() const { return impl_->pid; }

}  // namespace kerfline::platform
