// The line is a named pipe: this side holds the server end.
#include <atomic>

#include "platform/line_pair.hpp"
#include "platform/win32/pipe_io_win32.hpp"

namespace kerfline::platform {

struct LinePair::Impl {
  ByteStream server;
  std::string path;
  std::shared_ptr<std::atomic<bool>> released = std::make_shared<std::atomic<bool>>(false);
};

LinePair::LinePair(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
LinePair::LinePair(LinePair&&) noexcept = default;
LinePair& LinePair::operator=(LinePair&&) noexcept = default;
LinePair::~LinePair() = default;

Result<LinePair> LinePair::open() {
  static std::atomic<unsigned> count{0};
  auto impl = std::make_unique<Impl>();
  impl->path =
      "\\\\.\\pipe\\kerfline-line-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
  HANDLE pipe = win32::create_pipe_instance(impl->path, true);
  if (pipe == INVALID_HANDLE_VALUE) return win32::last_error("CreateNamedPipe " + impl->path);
  impl->server = win32::make_pipe_stream(pipe, impl->path, impl->released);
  return LinePair(std::move(impl));
}

const std::string& LinePair::device_path() const { return impl_->path; }
ByteStream& LinePair::stream() { return impl_->server; }
void LinePair::release_device() { impl_->released->store(true); }

Result<ByteStream> open_line_device(const std::string& path) {
  HANDLE h = win32::open_pipe_client(path, GENERIC_READ | GENERIC_WRITE);
  if (h == INVALID_HANDLE_VALUE) return win32::last_error("CreateFile " + path);
  return win32::make_pipe_stream(h, "", nullptr);
}

}  // namespace kerfline::platform
