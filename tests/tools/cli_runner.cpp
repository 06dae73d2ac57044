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
// The arguments are UTF-8: the child reads them from its wide command line.
int run(const std::string& args, const std::string& capture) {
  const std::string utf8 = "\"" KERFLINE_CLI "\" " + args;
  std::wstring line(utf8.size() + 1, L'\0');
  line.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, 0, utf8.c_str(), -1, line.data(), static_cast<int>(line.size()))));
  SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
  HANDLE out =
      CreateFileA(capture.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS, 0, nullptr);
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;  // no standard input
  start.hStdOutput = start.hStdError = out;
  PROCESS_INFORMATION child{};
  DWORD status = 0;
  const bool ran = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                                  nullptr, &start, &child) != 0 &&
                   WaitForSingleObject(child.hProcess, INFINITE) == WAIT_OBJECT_0 &&
                   GetExitCodeProcess(child.hProcess, &status) != 0;
  if (child.hProcess != nullptr) CloseHandle(child.hProcess);
  if (child.hThread != nullptr) CloseHandle(child.hThread);
  CloseHandle(out);
  return ran ? static_cast<int>(status) : -1;
}
#else
int run(std::vector<std::string> argv, const std::string& capture) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, 1, capture.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&files, 1, 2);
  std::vector<char*> pointers(argv.size() + 1, nullptr);
  for (std::size_t i = 0; i < argv.size(); ++i) pointers[i] = argv[i].data();
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
  const int code = run(std::move(command), dir.str("out"));
  std::ifstream in(dir.str("out"), std::ios::binary);
  return {code, std::string(std::istreambuf_iterator<char>(in), {})};
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
  static const std::regex tool_word(R"((^|[;&|( ])kerfline )");
  return run_captured(std::vector<std::string>{"/bin/sh", "-c",
                                               std::regex_replace(line, tool_word, "$1'" KERFLINE_CLI "' ")});
}
#endif

}  // namespace kerfline::test
