#include "cli_runner.hpp"

#ifdef _WIN32
#  include <windows.h>
#else
#  include <fcntl.h>
#  include <spawn.h>
#  include <sys/wait.h>

#  include <cerrno>
#  include <regex>
#  include <vector>

#  include "platform/process.hpp"
extern char** environ;
#endif

#include <fstream>
#include <iterator>

#include "fixtures/temp_dir.hpp"

namespace kerfline::test {
namespace {

#ifdef _WIN32
// The tool's C runtime splits `line` itself. Waits at most two minutes.
int run(const std::string& line, const std::string& capture) {
  SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
  HANDLE out = CreateFileA(capture.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
  HANDLE in = CreateFileA("NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, OPEN_EXISTING, 0,
                          nullptr);
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = in;
  start.hStdOutput = out;
  start.hStdError = out;
  PROCESS_INFORMATION child{};
  // The arguments are UTF-8: the child reads them from the wide command line.
  const std::string utf8 = "\"" KERFLINE_CLI "\" " + line;
  std::wstring wide(utf8.size() + 1, L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, 0, utf8.c_str(), -1, wide.data(), static_cast<int>(wide.size()))));
  int code = -1;
  if (out != INVALID_HANDLE_VALUE &&
      CreateProcessW(nullptr, wide.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &start,
                     &child) != 0) {
    DWORD status = 0;
    if (WaitForSingleObject(child.hProcess, 120000) == WAIT_OBJECT_0 &&
        GetExitCodeProcess(child.hProcess, &status) != 0) {
      code = static_cast<int>(status);
    } else {
      TerminateProcess(child.hProcess, 1);
    }
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
  }
  if (in != INVALID_HANDLE_VALUE) CloseHandle(in);
  if (out != INVALID_HANDLE_VALUE) CloseHandle(out);
  return code;
}
#else
int run(std::vector<std::string> argv, const std::string& capture) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, 1, capture.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&files, 1, 2);
  std::vector<char*> pointers;
  for (std::string& arg : argv) pointers.push_back(arg.data());
  pointers.push_back(nullptr);
  pid_t pid = -1;
  int status = 0;
  const bool started = ::posix_spawnp(&pid, pointers[0], &files, nullptr, pointers.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&files);
  while (started && ::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return started && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
#endif

template <typename Command>
CliResult run_captured(Command command) {
  const TempDir dir;
  const std::string capture = dir.str("out");
  CliResult result;
  result.exit_code = run(std::move(command), capture);
  std::ifstream in(capture, std::ios::binary);
  result.out.assign(std::istreambuf_iterator<char>(in), {});
  return result;
}

}  // namespace

#ifdef _WIN32
CliResult run_cli(const std::string& args) { return run_captured(args); }
#else
CliResult run_cli(const std::string& args) {
  auto argv = platform::split_command_line("kerfline " + args);
  argv[0] = KERFLINE_CLI;
  return run_captured(std::move(argv));
}

CliResult run_shell(const std::string& line) {
  static const std::regex tool_word(R"((^|[;&| ])kerfline )");
  return run_captured(std::vector<std::string>{"/bin/sh", "-c",
                                               std::regex_replace(line, tool_word, "$1'" KERFLINE_CLI "' ")});
}
#endif

}  // namespace kerfline::test
