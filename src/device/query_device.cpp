// One question to the device and its answer, with the "readplt.log" a user
// asks for by holding Ctrl and Shift.
#include <cstdarg>
#include <cstdio>
#include <memory>

#include "device/port_access.hpp"
#include "platform/clock.hpp"
#include "platform/host_hooks.hpp"
#include "platform/paths.hpp"

namespace kerfline::device {
namespace {

namespace port = platform::port;

constexpr std::size_t kAnswerSize = 128;
constexpr char kFlushSequence[] = "X1b;@:\r\nEND.\r\n";
// Pipe reads return what is there: the waits between them give the device
// its time.
constexpr port::ReadTimeouts kPipeRead{20, 0};
constexpr port::ReadTimeouts kSerialRead{50, 0};

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

class QueryLog {
 public:
  QueryLog(Handle read_handle, Handle write_handle, const std::string& instruction) {
    if (!platform::host::diagnostics_requested()) return;
    const std::string path = platform::join_path(platform::home_dir(), "readplt.log");
    if (platform::host::message_box("Create logfile ? :" + path, "Reading plotter:", KERFLINE_MB_YESNO) !=
        KERFLINE_IDYES) {
      return;
    }
    file_.reset(std::fopen(path.c_str(), "wb"));
    printf("Creating log:\r\n  Handle(Read):%d\r\n Handle(Write):%d\r\n", static_cast<int>(read_handle),
           static_cast<int>(write_handle));
    printf("Instruction: %s\r\n", instruction.c_str());
  }

  // Every call passes a literal format, which the attribute has the
  // compiler check against the arguments.
  __attribute__((format(printf, 2, 3))) void printf(const char* format, ...) {
    if (!file_) return;
    va_list args;
    va_start(args, format);
    std::vfprintf(file_.get(), format, args);
    va_end(args);
  }

  void write_record(const port::IoResult& r) {
    printf("Writing:\r\n State (Return): %d\r\n State (Bytes written): %d\r\n LastError: %d\r\n",
           r.ok ? 1 : 0, static_cast<int>(r.count), r.ok ? 0 : r.error);
  }

  void read_record(const port::IoResult& r) {
    printf("ReadFile:\r\n State (Return): %d\r\n State(Bytes reed): %d\r\n LastError: %d\r\n", r.ok ? 1 : 0,
           static_cast<int>(r.count), r.ok ? 0 : r.error);
  }

  void close() { file_.reset(); }

 private:
  std::unique_ptr<std::FILE, FileCloser> file_;
};

// Sleeps until ms have passed since mark, and moves the mark on.
void wait_since(std::uint64_t& mark, std::uint32_t ms) {
  const std::uint64_t until = mark + ms;
  const std::uint64_t now = platform::tick_ms64();
  if (until > now) platform::sleep_ms(static_cast<std::uint32_t>(until - now));
  mark = platform::tick_ms64();
}

// Reads single bytes while the port says input waits (a pipe says nothing).
void drain(Handle h) {
  auto waiting = port::input_count(h);
  bool got = true;
  while (waiting.ok() && waiting.value() != 0 && got) {
    unsigned char byte = 0;
    got = port::read(h, &byte, 1, kSerialRead).count == 1;
    waiting = port::input_count(h);
  }
}

port::IoResult write_text(Handle h, const std::string& text) {
  return port::write(h, text.data(), text.size());
}

std::string serial_query(Handle h, const std::string& instruction, const char* mark, QueryLog& log) {
  std::string answer(kAnswerSize, '\0');
  port::purge(h);
  if (mark != nullptr &&
      platform::host::message_box(mark, "Marke anfahren?", KERFLINE_MB_YESNO) == KERFLINE_IDYES) {
    write_text(h, mark);
  }
  const port::IoResult written = write_text(h, instruction);
  log.write_record(written);
  // The flush record repeats the write's outcome: no flush is made here.
  log.printf("FlushFileBuffers:\r\n State (Return): %d\r\n LastError: %d\r\n", written.ok ? 1 : 0,
             written.ok ? 0 : written.error);
  std::uint64_t mark_time = platform::tick_ms64();
  wait_since(mark_time, 10);
  std::uint32_t got = 0;
  auto waiting = port::input_count(h);
  for (int round = 0; round < 20 && got == 0; ++round) {
    if (waiting.ok() && waiting.value() > 0) {
      const port::IoResult r = port::read(h, answer.data(), kAnswerSize, kSerialRead);
      got = r.count;
      log.read_record(r);
    }
    if (got == 0) wait_since(mark_time, 100);
    waiting = port::input_count(h);
  }
  answer.resize(got);
  return answer;
}

void flush_pipe(Handle read_handle, Handle write_handle) {
  char discard[127];
  for (int i = 0; i < 5; ++i) {
    const bool empty = port::read(read_handle, discard, sizeof discard, kPipeRead).count == 0;
    platform::sleep_ms(20);
    if (empty) break;
  }
  port::write(write_handle, kFlushSequence, sizeof kFlushSequence - 1);
  platform::sleep_ms(500);
  for (int i = 0; i < 5; ++i) {
    const bool empty = port::read(read_handle, discard, sizeof discard, kPipeRead).count == 0;
    platform::sleep_ms(100);
    if (empty) break;
  }
}

std::optional<std::string> pipe_query(Handle read_handle, Handle write_handle, const std::string& instruction,
                                      QueryLog& log) {
  const LinkState& state = link_state();
  if (state.pipe_flag && !state.no_flush) flush_pipe(read_handle, write_handle);
  const port::IoResult written = write_text(write_handle, instruction);
  log.write_record(written);
  if (!written.ok) return std::nullopt;
  std::uint64_t mark_time = platform::tick_ms64();
  wait_since(mark_time, 500);
  std::string answer(kAnswerSize, '\0');
  port::IoResult r;
  for (int i = 0; i < 5; ++i) {
    r = port::read(read_handle, answer.data(), kAnswerSize, kPipeRead);
    log.read_record(r);
    if (r.count > 0) break;
    wait_since(mark_time, 200);
  }
  if (!r.ok) return std::nullopt;
  answer.resize(r.count);
  return answer;
}

}  // namespace

std::optional<std::string> QueryDevice(Handle read_handle, Handle write_handle, const char* instruction,
                                       const char* mark_instruction) {
  const std::string text = instruction != nullptr ? instruction : "";
  QueryLog log(read_handle, write_handle, text);
  std::optional<std::string> answer;
  if (text.empty()) {
    log.printf("Error: Empty instr.");
  } else {
    drain(read_handle);
    if (read_handle == write_handle && !link_state().pipe_flag) {
      answer = serial_query(write_handle, text, mark_instruction, log);
    } else {
      answer = pipe_query(read_handle, write_handle, text, log);
    }
  }
  // Both handles are closed on every road out, a failed write included, so
  // a failing device leaks no descriptor.
  close_pair(read_handle, write_handle);
  log.close();
  return answer;
}

}  // namespace kerfline::device
