// Windows has no pseudo-terminal that serves as a serial port.
#include "platform/pseudo_terminal.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {

struct PseudoTerminal::Impl {
  ByteStream master;
  std::string path;
};

PseudoTerminal::PseudoTerminal(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
PseudoTerminal::PseudoTerminal(PseudoTerminal&&) noexcept = default;
PseudoTerminal& PseudoTerminal::operator=(PseudoTerminal&&) noexcept = default;
PseudoTerminal::~PseudoTerminal() = default;

Result<PseudoTerminal> PseudoTerminal::open() {
  return os_error(ERROR_NOT_SUPPORTED, "pseudo-terminals are not available on Windows");
}
const std::string& PseudoTerminal::device_path() const { return impl_->path; }
ByteStream& PseudoTerminal::master() { return impl_->master; }
void PseudoTerminal::release_slave() {}

}  // namespace kerfline::platform
